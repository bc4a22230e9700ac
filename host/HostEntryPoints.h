#pragma once

// The entry points a module finds the host by. They answer for the host application that is
// running (HostApplication), and null when none is.

class HostApp;
class HostApDocManager;
class HostServices;
class ICmdFactory;

// Selectors of get_host_funcptr.
enum HostFuncSelector : int {
  kHostFuncServices = 0,    // HostServices*
  kHostFuncDocManager = 2,  // HostApDocManager*
};

extern "C" {
// The host's table of services: selector kHostFuncServices gives a HostServices*,
// kHostFuncDocManager a HostApDocManager*; owned by the host. Null for another selector or
// when no host runs.
__attribute__((visibility("default"))) void* get_host_funcptr(int selector);
// The application object with a reference added, which the caller releases; null when no
// host runs.
__attribute__((visibility("default"))) HostApp* GetApp();
// A command factory with a reference the caller releases (ICmdFactoryPtr(p, kOdRxObjAttach));
// null when no host runs.
__attribute__((visibility("default"))) ICmdFactory* new_ICmdFactory();
}

// Typed forms of get_host_funcptr.
inline HostServices* hostServices() {
  return static_cast<HostServices*>(get_host_funcptr(kHostFuncServices));
}
inline HostApDocManager* hostDocManager() {
  return static_cast<HostApDocManager*>(get_host_funcptr(kHostFuncDocManager));
}
