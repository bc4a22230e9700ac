#include "StAppServicesImpl.h"

#include "StFileSystemServiceImpl.h"
#include "StManagerCacheImpl.h"
#include "StMessageImpl.h"
#include "StPluginRegistratorImpl.h"
#include "StSettingsStorageImpl.h"
#include "StStateSaverImpl.h"

namespace st {

StService* StAppServicesImpl::getService(int index) {
  auto found = services_.find(index);
  return found == services_.end() ? nullptr : found->second.get();
}

void StAppServicesImpl::setService(int index, std::unique_ptr<StService> service) {
  services_[index] = std::move(service);
}

void StAppServicesImpl::populate() {
  setService(kStStateSaverService, std::make_unique<StStateSaverImpl>());
  setService(kStSettingsService, std::make_unique<StSettingsStorageImpl>());
  setService(kStManagerCacheService, std::make_unique<StManagerCacheImpl>());
  setService(kStPluginRegistratorService, std::make_unique<StPluginRegistratorImpl>());
  setService(kStMessageService, std::make_unique<StMessageImpl>());
  setService(kStFileSystemService, std::make_unique<StFileSystemServiceImpl>());
}

void StAppServicesImpl::initAll() {
  // Ascending index: the configuration store is open before the settings load, and both
  // before the plug-in registrations are read.
  for (auto& [index, service] : services_) service->init();
}

StAppServicesImpl::~StAppServicesImpl() {
  for (auto& [index, service] : services_) service.reset();
}

}  // namespace st
