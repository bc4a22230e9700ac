#include "StAppServices.h"

#include "OdRxObjectImpl.h"
#include "StAppServicesImpl.h"
#include "StFileSystemService.h"
#include "StManagerCache.h"
#include "StMessage.h"
#include "StPluginRegistrator.h"
#include "StSettingsStorage.h"
#include "StStateSaver.h"

namespace st {

ODRX_NO_CONS_DEFINE_MEMBERS(StAppServices, OdRxObject);

namespace {

// The module's one services object; everything runs on the host's one thread, so the lazy
// creation takes no lock.
StAppServicesPtr g_services;
// Whether obtaining the services registered their run-time class, which releasing them then
// removes again.
bool g_registeredClass = false;

template <class Service>
Service* serviceAt(int index) {
  StAppServicesPtr services = stAppServices();
  return dynamic_cast<Service*>(services->getService(index));
}

}  // namespace

StAppServicesPtr stAppServices() {
  if (g_services) return g_services;
  if (!StAppServices::desc()) {
    StAppServices::rxInit();
    g_registeredClass = true;
  }
  OdRxObjectPtr created = OdRxObjectImpl<StAppServicesImpl, OdRxObject>::createObject();
  // Stored before the services are initialised: a service's init reaches the services of
  // lower index through the accessors, which must find this object, not make another.
  // The checked conversion throws OdError_NotThatKindOfClass should the class be wrong.
  g_services = StAppServicesPtr(created.get());
  auto* impl = static_cast<StAppServicesImpl*>(g_services.get());
  try {
    impl->populate();
    impl->initAll();
  } catch (...) {
    g_services = nullptr;
    throw;
  }
  return g_services;
}

void stReleaseAppServices() {
  g_services = nullptr;
  if (g_registeredClass && StAppServices::desc()) StAppServices::rxUninit();
  g_registeredClass = false;
}

StStateSaver* stStateSaver() {
  return serviceAt<StStateSaver>(kStStateSaverService);
}
StPluginRegistrator* stPluginRegistrator() {
  return serviceAt<StPluginRegistrator>(kStPluginRegistratorService);
}
StManagerCache* stManagerCache() {
  return serviceAt<StManagerCache>(kStManagerCacheService);
}
StMessage* stMessage() {
  return serviceAt<StMessage>(kStMessageService);
}
StFileSystemService* stFileSystemService() {
  return serviceAt<StFileSystemService>(kStFileSystemService);
}

}  // namespace st

st::StSettingsStorage* stSettingsStorage() {
  return st::serviceAt<st::StSettingsStorage>(st::kStSettingsService);
}
