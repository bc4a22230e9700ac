#pragma once

#include "OdRxMacros.h"
#include "OdRxObject.h"
#include "OdRxObjectImpl.h"
#include "OdSmartPtr.h"
#include "OdString.h"

// The version of the kernel interface that modules are built against. A module built for
// another version is refused at load.
using OdRxApiVersion = unsigned int;
inline constexpr OdRxApiVersion kOdRxApiVersion = 1;

// The object that stands for a loaded module (a shared library loaded at run time by
// odrxDynamicLinker()).
//
// A module derives from OdRxModule, implements initApp and uninitApp, and exports the two
// entry points with ODRX_DEFINE_MODULE(ItsClass). The linker creates the object once per
// load, calls initApp after loading and uninitApp before unloading; a module registers its
// run-time classes in initApp and removes them in uninitApp.
//
// Its run-time class "OdRxModule" is registered by TD_Root itself, like OdRxObject's.
class OdRxModule : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(OdRxModule);

  virtual void initApp() = 0;
  virtual void uninitApp() = 0;

  // The name the module is known under: the name it was loaded by, without directory, "lib"
  // prefix and ".dll"/".so" suffix ("StandardsAudit").
  const OdString& moduleName() const noexcept { return name_; }
  // The full path of the file it was loaded from.
  const OdString& moduleFileName() const noexcept { return fileName_; }

 protected:
  OdRxModule() = default;
  ~OdRxModule() override;

 private:
  friend class OdRxDynamicLinker;
  OdString name_;
  OdString fileName_;
};

using OdRxModulePtr = OdSmartPtr<OdRxModule>;

// Defines a module's exported entry points for its module class (one derived from
// OdRxModule). Use once, at namespace scope, in one .cpp of the module:
//   odrxCreateModuleObject  makes the module object, handing its one reference to the caller
//   odrxGetAPIVersion       the kernel interface version the module was built with
#define ODRX_DEFINE_MODULE(ModuleClass)                                                    \
  extern "C" __attribute__((visibility("default"))) OdRxModule* odrxCreateModuleObject() { \
    return OdRxObjectImpl<ModuleClass>::createObject().detach();                           \
  }                                                                                        \
  extern "C" __attribute__((visibility("default"))) OdRxApiVersion odrxGetAPIVersion() {   \
    return kOdRxApiVersion;                                                                \
  }                                                                                        \
  static_assert(true, "")
