#pragma once

#include "OdRxMacros.h"
#include "StExport.h"

namespace st {

class StService;
class StStateSaver;
class StSettingsStorage;
class StPluginRegistrator;
class StManagerCache;
class StMessage;
class StFileSystemService;

// The fixed index of each internal service. They are created, and initialised, in this order.
enum StServiceIndex : int {
  kStStateSaverService = 0,
  kStSettingsService = 1,
  kStPluginRegistratorService = 2,
  kStManagerCacheService = 3,
  kStMessageService = 4,
  kStFileSystemService = 5,
};

// The module's service locator: one object that owns the internal services and hands each
// out by index. It is created, and every service initialised, by the first call of any
// accessor below, and lives until stReleaseAppServices (the module's unload).
class ST_EXPORT StAppServices : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(StAppServices);

  // The service under `index`, or null for an index that holds none. Owned by this object.
  virtual StService* getService(int index) = 0;
};

using StAppServicesPtr = OdSmartPtr<StAppServices>;

// The services object, creating and initialising it on the first call. Registers the
// StAppServices run-time class when nobody has. Throws std::bad_alloc when it cannot be
// allocated; an error thrown by a service's init reaches the caller and leaves no services
// object behind, so the next call starts afresh.
ST_EXPORT StAppServicesPtr stAppServices();

// Lets the module's reference to the services object go: when nobody else holds one, every
// service is destroyed, in ascending index order. The next accessor call creates a new set.
// Called when the module unloads.
ST_EXPORT void stReleaseAppServices();

// One accessor per service: the service, cast to its interface; null when the service is
// absent. The pointers stay owned by the services object.
ST_EXPORT StStateSaver* stStateSaver();
ST_EXPORT StPluginRegistrator* stPluginRegistrator();
ST_EXPORT StManagerCache* stManagerCache();
ST_EXPORT StMessage* stMessage();
ST_EXPORT StFileSystemService* stFileSystemService();

}  // namespace st

// The settings record, for the module and for other modules (service index 1); owned by the
// module, never freed by the caller.
ST_EXPORT st::StSettingsStorage* stSettingsStorage();
