#include "OdRxClass.h"

#include "OdRxClassDictionary.h"

// Parameters are spelled apart from the accessors they would otherwise shadow.
OdRxClass::OdRxClass(const OdString& className, OdRxClass* parentClass,
                     OdPseudoConstructorType pseudoConstructor, const OdString& dxfClassName,
                     const OdString& application, AppNameChangeFuncPtr appNameChange)
    : name_(className),
      parent_(parentClass),
      constructor_(pseudoConstructor),
      dxfName_(dxfClassName),
      appName_(application),
      appNameChange_(appNameChange) {}

bool OdRxClass::isDerivedFrom(const OdRxClass* other) const noexcept {
  if (!other) return false;
  for (const OdRxClass* cls = this; cls; cls = cls->parent_) {
    if (cls == other) return true;
  }
  return false;
}

OdRxObjectPtr OdRxClass::create() const {
  if (!constructor_) return OdRxObjectPtr();
  return OdRxObjectPtr(constructor_(), kOdRxObjAttach);
}

bool OdRxClass::notifyAppNameChange(OdString& appName, int saveVersion) const {
  if (!appNameChange_) return false;
  appNameChange_(this, appName, saveVersion);
  return true;
}

OdRxClass* newOdRxClass(const OdString& name, OdRxClass* parent,
                        OdPseudoConstructorType constructor, const OdString& dxfName,
                        const OdString& appName, OdRxClass::AppNameChangeFuncPtr appNameChange) {
  return odrxClassDictionary()->add(name, parent, constructor, dxfName, appName, appNameChange);
}

void deleteOdRxClass(OdRxClass* cls) {
  odrxClassDictionary()->remove(cls);
}

OdRxObjectPtr odrxCreateObject(const OdString& className) {
  const OdRxClass* cls = odrxClassDictionary()->getAt(className);
  return cls ? cls->create() : OdRxObjectPtr();
}
