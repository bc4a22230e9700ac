#pragma once

#include "OdRxObject.h"
#include "OdSmartPtr.h"
#include "OdString.h"
#include "UICmdProcess.h"

// Adds commands to the running host: what new_ICmdFactory() (HostEntryPoints.h) hands a
// module. A reference-counted view of the host's command registry; every call goes to the
// host running at the time of the call, and fails (false, 0) when none runs.
//
// A module registers its commands when it is loaded and must remove them before it is
// unloaded: the host keeps the creator, which is code of the module.
class ICmdFactory : public OdRxObject {
 public:
  // Registers `name` (no blanks; matched without regard to case) in `group` with flags of
  // HostCommandFlags (0 for an ordinary command). False when no host runs, the name is
  // taken or not valid, or the creator is null.
  virtual bool registerCommand(const OdString& name, const OdString& group, int flags,
                               UICmdCreator creator) = 0;
  // False when no such command is registered.
  virtual bool unregisterCommand(const OdString& name) = 0;
  // Removes every command of the group; returns how many.
  virtual int unregisterGroup(const OdString& group) = 0;

 protected:
  ICmdFactory() = default;
};

using ICmdFactoryPtr = OdSmartPtr<ICmdFactory>;
