#pragma once

#include <memory>

class HeadlessHost;

namespace stcheck {

// A headless host with the standards module loaded: what every subcommand that goes through
// the module runs in. One per process, since the host and the module are process-wide.
class ModuleHost {
 public:
  enum class Config {
    // The user's configuration, read and written in place: for commands that change the
    // plug-in registry or the settings.
    kUser,
    // A private copy of the user's configuration, kept in memory (a detached tree): the module
    // sees the user's registry and settings, and nothing the run changes (nor the defaults the
    // module writes on first use) reaches the user's file, which is never created. A corrupt
    // user file is still set aside, with a warning naming it.
    kPrivateCopy,
  };

  // Loads the module; throws OdError when it cannot be loaded or its services are missing.
  explicit ModuleHost(Config config);
  ~ModuleHost();
  ModuleHost(const ModuleHost&) = delete;
  ModuleHost& operator=(const ModuleHost&) = delete;

  HeadlessHost& host() { return *host_; }

 private:
  std::unique_ptr<HeadlessHost> host_;
};

}  // namespace stcheck
