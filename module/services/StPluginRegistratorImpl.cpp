#include "StPluginRegistratorImpl.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "OdError.h"
#include "OdRxDynamicLinker.h"
#include "StAppServices.h"
#include "StConfigValue.h"
#include "StPluginLibraries.h"
#include "StStandardRegistration.h"
#include "StStateSaver.h"
#include "StStringTable.h"

namespace st {

namespace {

bool sameClass(const OdString& a, const OdString& b) {
  return a.iCompare(b) == 0;
}

}  // namespace

void StPluginRegistratorImpl::init() {
  readRegistrations();
  loadLibraries();
}

void StPluginRegistratorImpl::readRegistrations() {
  StStateSaver* store = stStateSaver();
  if (!store) return;
  const OdString dllValue(config::kPluginDll);
  const OdString classValue(config::kPluginClassName);
  const OdString inUseValue(config::kPluginInUse);
  for (const OdString& key : store->getLibraryKeys()) {
    OdVariant value;
    Library library;
    if (!store->getLibraryValue(key, dllValue, value) ||
        !StConfigValue::toText(value, library.dllName))
      continue;
    library.name = key;
    for (const OdString& pluginKey : store->getPluginKeys(key)) {
      StPluginInfo info;
      if (store->getPluginValue(key, pluginKey, classValue, value))
        StConfigValue::toText(value, info.className);
      std::int64_t inUse = 0;
      if (store->getPluginValue(key, pluginKey, inUseValue, value) &&
          StConfigValue::toInteger(value, inUse))
        info.inUse = inUse != 0;
      library.plugins.push_back(info);
    }
    libraries_.push_back(std::move(library));
  }
}

void StPluginRegistratorImpl::loadLibraries() {
  OdRxDynamicLinker* linker = odrxDynamicLinker();
  for (Library& library : libraries_) {
    // A configuration may come with a project from anywhere: its libraries load by name from
    // the module search path only, never from a path it gives.
    OdRxModulePtr module = OdRxDynamicLinker::isSearchPathName(library.dllName)
                               ? linker->getModule(library.dllName)
                               : OdRxModulePtr();
    OdString reason;
    if (!module) {
      try {
        module = linker->loadFromSearchPath(library.dllName, reason);
        if (module) stRememberPluginLibrary(library.dllName);
      } catch (const OdError& e) {
        // The library's own start-up failed: the user learns which library and why, and the
        // other libraries still load.
        module = nullptr;
        reason = e.description();
      }
    }
    library.loaded = static_cast<bool>(module);
    if (!library.loaded) {
      // One line: the configured name, then the loader's reason.
      if (HostServices* host = hostServices())
        host->cmdPrint(
            stFormatString(kStrFailedToLoadPlugin, library.dllName + OdString(L": ") + reason));
    }
  }
}

StPluginInfo* StPluginRegistratorImpl::find(const OdString& className) {
  for (Library& library : libraries_)
    for (StPluginInfo& info : library.plugins)
      if (sameClass(info.className, className)) return &info;
  return nullptr;
}

bool StPluginRegistratorImpl::getPluginInfo(const OdString& className, StPluginInfo& info) {
  const StPluginInfo* found = find(className);
  if (found) info = *found;
  return found != nullptr;
}

OdArray<StPluginInfo> StPluginRegistratorImpl::getPluginInfos() {
  OdArray<StPluginInfo> infos;
  for (const Library& library : libraries_)
    for (const StPluginInfo& info : library.plugins) infos.append(info);
  return infos;
}

// The first library holding a plug-in of another class. With one library of several
// plug-ins that is the plug-in's own library; the rule is kept as it is because existing
// configurations were written by it.
OdString StPluginRegistratorImpl::persistenceLibrary(const OdString& className) const {
  for (const Library& library : libraries_)
    for (const StPluginInfo& info : library.plugins)
      if (!sameClass(info.className, className)) return library.name;
  return OdString();
}

void StPluginRegistratorImpl::setInUse(const OdString& className, bool inUse) {
  StPluginInfo* info = find(className);
  if (!info) return;
  info->inUse = inUse;
  // The caller may spell the class in any case; the configuration's keys are matched
  // exactly, so the switch goes under the registered spelling, the plug-in's own key.
  const OdString registered = info->className;
  OdString library = persistenceLibrary(registered);
  StStateSaver* store = stStateSaver();
  if (library.isEmpty() || !store) return;
  store->setPluginValue(library, registered, OdString(config::kPluginInUse),
                        OdVariant(std::int32_t{inUse ? 1 : 0}));
}

}  // namespace st
