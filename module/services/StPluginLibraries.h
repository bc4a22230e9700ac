#pragma once

#include "OdString.h"

namespace st {

// The plug-in libraries the module itself loaded (the plug-in registry loads them at start-up),
// so that the module unloads them when it goes. Their plug-in classes derive from the module's
// own plug-in class, which cannot be unregistered while they are; and the plug-ins they made
// must all be gone first, which is why the libraries outlive the registry that loaded them.

// Remembers a library loaded by the module (by the name it was loaded under); a name already
// remembered is not added again.
void stRememberPluginLibrary(const OdString& name);
// Unloads every remembered library, the last loaded first, and forgets them. A library that
// fails to unload is reported on the host's command line and the rest are still unloaded.
void stUnloadPluginLibraries();

}  // namespace st
