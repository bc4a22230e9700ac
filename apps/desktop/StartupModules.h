#pragma once

#include <vector>

#include "OdString.h"

class HostApplication;

// The modules the desktop host loads when it starts, as its configuration names them, the way
// any third-party module is registered: one key per module under "Applications", with the
// values
//   LoadOnStartup  true to load it at start-up
//   LoadOrder      a number; lower loads first (a module's user interface after the module)
// A module is a bare library name found on the module search path (never a path: code a
// configuration names from anywhere else is not run).
class StartupModules {
 public:
  struct Failure {
    OdString module;
    OdString reason;  // the loader's one line, or what the module threw as it started
  };

  // Registers the modules that come with the host (the standards module, then its user
  // interface) when the configuration has no key for them and their library is on the module
  // search path; a key the user made or changed is left as it is.
  static void registerBundled(HostApplication& app);

  // Loads every module registered to load at start-up, by LoadOrder then name. Each module
  // that fails is named with the reason on the command line, one line, and the rest still
  // load. Returns the failures.
  static std::vector<Failure> loadAll(HostApplication& app);
};
