#include "OdRxMacros.h"

#include <string>

#include "OdError.h"

void odrxInitClass(OdRxClass*& slot, const char* name, OdRxClass* parent, const char* parentName,
                   OdPseudoConstructorType constructor, const OdString& dxfName,
                   const OdString& appName, OdRxClass::AppNameChangeFuncPtr appNameChange) {
  if (slot) {
    throw OdError(eAlreadyRegistered,
                  "run-time class " + std::string(name) + " is already registered");
  }
  if (!parent) {
    throw OdError(eNotInitializedYet, "cannot register run-time class " + std::string(name) +
                                          ": its parent class " + parentName +
                                          " is not registered");
  }
  slot =
      newOdRxClass(OdString::fromUtf8(name), parent, constructor, dxfName, appName, appNameChange);
}

void odrxUninitClass(OdRxClass*& slot, const char* name) {
  if (!slot) {
    throw OdError(eNotInitializedYet, "cannot unregister run-time class " + std::string(name) +
                                          ": it is not registered");
  }
  deleteOdRxClass(slot);
  slot = nullptr;
}
