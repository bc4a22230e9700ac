#include "StSettingsStorage.h"

namespace st {

StSettingsStorage::StSettingsStorage() = default;
StSettingsStorage::StSettingsStorage(const StSettingsStorage&) = default;
StSettingsStorage& StSettingsStorage::operator=(const StSettingsStorage&) = default;
StSettingsStorage::~StSettingsStorage() = default;

}  // namespace st
