#include "OdRxObject.h"

#include "OdRxClass.h"
#include "OdRxModule.h"

OdRxClass* OdRxObject::g_pDesc = nullptr;

// Registers the kernel's own run-time classes while TD_Root loads, before any other library
// can register a class under them. They are registered here together, parents first, because
// the order in which the library's files are initialised is unspecified. They are never
// unregistered: descriptors of other classes point at them for as long as the process may
// use them.
struct OdRxObjectRegistrar {
  OdRxObjectRegistrar() {
    OdRxObject::g_pDesc = newOdRxClass(OdString(L"OdRxObject"), nullptr);
    OdRxModule::rxInit();
  }
};
static const OdRxObjectRegistrar g_registerOdRxObject;

OdRxClass* OdRxObject::desc() {
  return g_pDesc;
}

OdRxClass* OdRxObject::isA() const {
  return g_pDesc;
}

OdRxObject* OdRxObject::queryX(const OdRxClass* cls) const {
  if (!cls || cls != g_pDesc) return nullptr;
  OdRxObject* self = const_cast<OdRxObject*>(this);
  self->addRef();
  return self;
}

bool OdRxObject::isKindOf(const OdRxClass* cls) const {
  const OdRxClass* mine = isA();
  return mine && mine->isDerivedFrom(cls);
}

OdRxObjectPtr OdRxObject::cast(const OdRxObject* obj) {
  return OdRxObjectPtr(const_cast<OdRxObject*>(obj));
}
