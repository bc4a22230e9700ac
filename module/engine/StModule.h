#pragma once

#include <array>

#include "OdRxModule.h"
#include "StExport.h"

namespace st {

// The standards-audit module as the host loads it.
//
// Loading the library (odrxCreateModuleObject) registers the commands CHECKSTANDARDS and
// STANDARDS (group "HOST") with the host's command factory. initApp then registers the
// module's run-time classes in the order of registeredClasses(), makes the application
// services (StAppServices) and adds the document reactor (StDocManagerReactor) to the
// host's document manager. uninitApp undoes all of it: it removes the document reactor,
// lets the application services go (the managers with their plug-ins), unloads the plug-in
// libraries the services loaded, deletes the class descriptors in the same order as they
// were registered (deliberately not reversed) and removes the commands.
//
// Without a running host the commands and the document reactor are left out; the classes
// and services are still set up.
class ST_EXPORT StModule : public OdRxModule {
 public:
  // One run-time class the module registers.
  struct RegisteredClass {
    const char* name;
    void (*rxInit)();
    void (*rxUninit)();
    OdRxClass* (*desc)();
  };
  // StAppServices, StDbReactor, StDbReaderWriter, StBlockProxy, StTableProxy, StError, StFix,
  // StDWSPlugin, StManager: the order of both registering and deleting.
  static const std::array<RegisteredClass, 9>& registeredClasses();

  // Registers the classes; a class registered already (or an error of a later step) throws
  // OdError after undoing what this call had done, so the module can be loaded again.
  void initApp() override;
  // Undoes initApp and the registration of the commands (see above). A class that is not
  // registered throws OdError(eNotInitializedYet) once everything else is done: the first
  // such error is the one thrown.
  void uninitApp() override;

  // Registers the two commands with the running host; false when none runs or the host
  // refused one (a name already taken).
  static bool registerCommands();
  // Removes them again; nothing when no host runs.
  static void unregisterCommands();

 protected:
  StModule() = default;
};

}  // namespace st
