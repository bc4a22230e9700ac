#include "StSettingsStorageImpl.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "HostSysVars.h"
#include "StAppServices.h"
#include "StConfigValue.h"
#include "StHostText.h"
#include "StStandardRegistration.h"
#include "StStateSaver.h"
#include "StStateSaverImpl.h"

namespace st {

namespace {

// Shown when the host names no publisher of the standard plug-ins.
const wchar_t* const kDefaultDeveloper = L"The standards-audit project";
const wchar_t* const kDefaultWebSite = L"https://standards-audit.example";

bool readInteger(StStateSaver* store, const char* name, std::int64_t& out) {
  OdVariant value;
  return store && store->getValue(OdString(name), value) && StConfigValue::toInteger(value, out);
}

}  // namespace

void StSettingsStorageImpl::init() {
  StStateSaver* store = stStateSaver();
  std::int64_t number = 0;
  if (readInteger(store, config::kAutoFixProperties, number)) autoFixProperties_ = number == 1;
  if (readInteger(store, config::kShowIgnoredProblems, number)) showIgnoredProblems_ = number == 1;
  OdVariant text;
  if (store && store->getValue(OdString(config::kPreferredFile), text))
    StConfigValue::toText(text, preferredFile_);
  if (readInteger(store, config::kAutoFixCommands, number))
    autoFixCommands_ = static_cast<std::uint32_t>(number);
  loadPublisher();
}

void StSettingsStorageImpl::loadPublisher() {
  if (HostConfigKeyPtr root = StStateSaverImpl::configurationRoot()) {
    if (HostConfigKeyPtr key = root->openSubkey(config::kPublisherKey, true)) {
      HostConfigNames names = key->values();
      std::string name;
      while (names.next(name)) {
        OdString valueName = OdString::fromUtf8(name);
        OdString* field = nullptr;
        if (valueName.iCompare(OdString(config::kPublisherDeveloper)) == 0)
          field = &developer_;
        else if (valueName.iCompare(OdString(config::kPublisherWebSite)) == 0)
          field = &webSite_;
        OdVariant value;
        OdString text;
        if (field && key->getValue(name.c_str(), value) && StConfigValue::toText(value, text))
          *field = StHostText::translate(text);
      }
    }
  }
  if (developer_.isEmpty()) developer_ = StHostText::translate(kDefaultDeveloper);
  if (webSite_.isEmpty()) webSite_ = StHostText::translate(kDefaultWebSite);
}

void StSettingsStorageImpl::save() {
  StStateSaver* store = stStateSaver();
  if (!store) return;
  store->setValue(OdString(config::kAutoFixProperties),
                  OdVariant(std::int32_t{autoFixProperties_ ? 1 : 0}));
  store->setValue(OdString(config::kShowIgnoredProblems),
                  OdVariant(std::int32_t{showIgnoredProblems_ ? 1 : 0}));
  store->setValue(OdString(config::kPreferredFile), OdVariant(preferredFile_));
  store->setValue(OdString(config::kAutoFixCommands), OdVariant(autoFixCommands_));
}

int StSettingsStorageImpl::getNotificationMode() {
  HostServices* host = hostServices();
  OdResBufPtr value = host ? host->getSysVar(config::kNotificationSysVar) : nullptr;
  return value ? value->getInt32() : kStNotifyStatusBar;
}

void StSettingsStorageImpl::setNotificationMode(int mode) {
  HostServices* host = hostServices();
  if (!host || !host->currentDatabase()) return;
  OdResBufPtr value = OdResBuf::newRb(kHostRtInt32, mode);
  host->setSysVar(config::kNotificationSysVar, value.get());
}

void StSettingsStorageImpl::setShowIgnoredProblems(bool show) {
  showIgnoredProblems_ = show;
  save();
}

void StSettingsStorageImpl::setAutoFixProperties(bool autoFix) {
  autoFixProperties_ = autoFix;
  save();
}

void StSettingsStorageImpl::setPreferredFile(const OdString& path) {
  preferredFile_ = path;
  save();
}

void StSettingsStorageImpl::setAutoFixCommands(unsigned commands) {
  autoFixCommands_ = commands;
  save();
}

}  // namespace st
