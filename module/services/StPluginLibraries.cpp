#include "StPluginLibraries.h"

#include <algorithm>
#include <vector>

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "OdError.h"
#include "OdRxDynamicLinker.h"

namespace st {

namespace {

std::vector<OdString>& libraries() {
  static std::vector<OdString> loaded;
  return loaded;
}

}  // namespace

void stRememberPluginLibrary(const OdString& name) {
  auto& loaded = libraries();
  if (std::find(loaded.begin(), loaded.end(), name) == loaded.end()) loaded.push_back(name);
}

void stUnloadPluginLibraries() {
  auto& loaded = libraries();
  while (!loaded.empty()) {
    OdString name = loaded.back();
    loaded.pop_back();
    try {
      odrxDynamicLinker()->unloadModule(name);
    } catch (const OdError& e) {
      if (HostServices* host = hostServices())
        host->cmdPrintf(L"cannot unload plug-in library %ls: %ls\n", name.c_str(),
                        e.description().c_str());
    }
  }
}

}  // namespace st
