#include "StStateSaverImpl.h"

#include <string>

#include "HostApp.h"
#include "HostEntryPoints.h"
#include "StStandardRegistration.h"

namespace st {

namespace {

// Names travel to the tree as UTF-8, the tree's own encoding, and come back the same way.
std::string narrow(const OdString& name) {
  return name.toUtf8();
}

OdArray<OdString> subkeyNames(const HostConfigKey* key) {
  OdArray<OdString> names;
  if (!key) return names;
  HostConfigNames walk = key->subkeys();
  std::string name;
  while (walk.next(name)) names.append(OdString::fromUtf8(name));
  return names;
}

}  // namespace

StStateSaverImpl::~StStateSaverImpl() {
  pluginsKey_ = nullptr;
  moduleKey_ = nullptr;
}

HostConfigKeyPtr StStateSaverImpl::configurationRoot() {
  OdSmartPtr<HostApp> app(GetApp(), kOdRxObjAttach);
  return app ? app->configuration() : nullptr;
}

void StStateSaverImpl::init() {
  HostConfigKeyPtr root = configurationRoot();
  if (!root) return;
  HostConfigKeyPtr commandData = root->openSubkey(config::kHostCommandData, false);
  if (!commandData) return;
  moduleKey_ = commandData->openSubkey(config::kModuleKey, true);
  if (!moduleKey_) return;
  pluginsKey_ = moduleKey_->openSubkey(config::kPluginsKey, true);
  if (pluginsKey_ && !pluginsKey_->openSubkey(config::kStandardLibrary, false))
    writeDefaultRegistration();
}

void StStateSaverImpl::writeDefaultRegistration() {
  HostConfigKeyPtr library = pluginsKey_->openSubkey(config::kStandardLibrary, true);
  if (!library) return;
  library->setValue(config::kPluginDll, OdVariant(OdString(config::kStandardLibraryDll)));
  for (const char* plugin : config::kStandardPlugins) {
    HostConfigKeyPtr key = library->openSubkey(plugin, true);
    if (!key) continue;
    key->setValue(config::kPluginClassName, OdVariant(OdString(plugin)));
    key->setValue(config::kPluginInUse, OdVariant(std::int32_t{1}));
  }
}

HostConfigKeyPtr StStateSaverImpl::libraryKey(const OdString& library, bool create) const {
  return pluginsKey_ ? pluginsKey_->openSubkey(narrow(library).c_str(), create) : nullptr;
}

void StStateSaverImpl::setValue(const OdString& name, OdVariant value) {
  if (moduleKey_) moduleKey_->setValue(narrow(name).c_str(), value);
}

void StStateSaverImpl::setLibraryValue(const OdString& library, const OdString& name,
                                       OdVariant value) {
  if (HostConfigKeyPtr key = libraryKey(library, true)) key->setValue(narrow(name).c_str(), value);
}

void StStateSaverImpl::setPluginValue(const OdString& library, const OdString& plugin,
                                      const OdString& name, OdVariant value) {
  HostConfigKeyPtr key = libraryKey(library, true);
  if (key) key = key->openSubkey(narrow(plugin).c_str(), true);
  if (key) key->setValue(narrow(name).c_str(), value);
}

bool StStateSaverImpl::getValue(const OdString& name, OdVariant& value) {
  return moduleKey_ && moduleKey_->getValue(narrow(name).c_str(), value);
}

bool StStateSaverImpl::getLibraryValue(const OdString& library, const OdString& name,
                                       OdVariant& value) {
  HostConfigKeyPtr key = libraryKey(library, false);
  return key && key->getValue(narrow(name).c_str(), value);
}

bool StStateSaverImpl::getPluginValue(const OdString& library, const OdString& plugin,
                                      const OdString& name, OdVariant& value) {
  HostConfigKeyPtr key = libraryKey(library, false);
  if (key) key = key->openSubkey(narrow(plugin).c_str(), false);
  return key && key->getValue(narrow(name).c_str(), value);
}

OdArray<OdString> StStateSaverImpl::getPluginKeys(const OdString& library) {
  return subkeyNames(libraryKey(library, false).get());
}

OdArray<OdString> StStateSaverImpl::getLibraryKeys() {
  return subkeyNames(pluginsKey_.get());
}

}  // namespace st
