#pragma once

// What the service tests share: a configuration file in a temporary folder, prepared and
// inspected through the host's own tree, and host runs over it that start the module's
// services and let them go again before the host shuts down.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "StAppServices.h"
#include "TestSupport.h"

namespace servicestest {

using Path = HostConfigTree::Path;

inline const Path kModule{"cmddata", "StandardsAudit"};
inline const Path kPlugins{"cmddata", "StandardsAudit", "Plugins"};
inline const Path kStandard{"cmddata", "StandardsAudit", "Plugins", "StStandardPlugins"};

// One run of a headless host over the configuration file; the services go before the host.
class HostRun {
 public:
  explicit HostRun(const std::filesystem::path& config)
      : host_(HeadlessHost::Options{config, nullptr}) {}
  ~HostRun() { st::stReleaseAppServices(); }
  HeadlessHost& host() { return host_; }
  const std::string& output() const { return host_.output(); }

 private:
  HeadlessHost host_;
};

// A temporary folder holding the configuration file.
class ConfigFile {
 public:
  std::filesystem::path path() const { return dir_.path() / "config.json"; }
  const std::filesystem::path& dir() const { return dir_.path(); }
  // The tree as stored in the file now (a fresh reader, as the next run sees it).
  std::shared_ptr<HostConfigTree> tree() const { return HostConfigTree::open(path()); }

 private:
  testsupport::TempDir dir_;
};

inline std::vector<std::string> keys(const HostConfigTree& tree, const Path& path) {
  return tree.subkeyNames(path);
}

inline Path child(Path path, const std::string& name) {
  path.push_back(name);
  return path;
}

inline std::size_t count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (auto pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + 1)) ++n;
  return n;
}

}  // namespace servicestest
