#pragma once

#include "OdRxObject.h"
#include "OdString.h"

// Makes a new object of a run-time class and hands its single reference to the caller, or
// returns null when it cannot.
using OdPseudoConstructorType = OdRxObject* (*)();

// The descriptor of a run-time class: its name, its parent and how to make an instance.
//
// Descriptors are made by newOdRxClass (or a class's rxInit) and owned by the class
// dictionary; a pointer to one stays valid until deleteOdRxClass removes it. They are not
// reference counted and not copied.
class OdRxClass {
 public:
  // Told when the application name stored for the class is about to be written, so that a
  // class can give another name for a given file version. Receives the class, the name (to
  // change in place) and the file version.
  using AppNameChangeFuncPtr = void (*)(const OdRxClass* cls, OdString& appName, int saveVersion);

  OdRxClass(const OdRxClass&) = delete;
  OdRxClass& operator=(const OdRxClass&) = delete;

  // The name the class is registered under ("OdRxObject", "StError", "AcDbLayerTableRecord").
  const OdString& name() const noexcept { return name_; }
  // The parent class; null only for OdRxObject.
  OdRxClass* myParent() const noexcept { return parent_; }
  // True when this class is `other` or descends from it; false for a null `other`.
  bool isDerivedFrom(const OdRxClass* other) const noexcept;

  // A new object of the class (its reference count is one and owned by the result), or null
  // when the class has no constructor (an abstract class) or the constructor gives none.
  OdRxObjectPtr create() const;
  OdPseudoConstructorType constructor() const noexcept { return constructor_; }

  // The name used when the class is written to a drawing file; empty when none was given.
  const OdString& dxfName() const noexcept { return dxfName_; }
  // The application that defines the class; empty when none was given.
  const OdString& appName() const noexcept { return appName_; }
  AppNameChangeFuncPtr appNameCallbackPtr() const noexcept { return appNameChange_; }
  // Calls the application-name callback when one is set and says whether it was called.
  bool notifyAppNameChange(OdString& appName, int saveVersion) const;

 private:
  friend class OdRxClassDictionary;
  OdRxClass(const OdString& name, OdRxClass* parent, OdPseudoConstructorType constructor,
            const OdString& dxfName, const OdString& appName, AppNameChangeFuncPtr appNameChange);
  ~OdRxClass() = default;

  OdString name_;
  OdRxClass* parent_;
  OdPseudoConstructorType constructor_;
  OdString dxfName_;
  OdString appName_;
  AppNameChangeFuncPtr appNameChange_;
};

// Registers a run-time class and returns its descriptor (owned by the class dictionary).
// Throws OdError(eAlreadyRegistered) when a class of that name is registered already, and
// OdError(eInvalidInput) for an empty name. `parent` may be null only for a root class.
OdRxClass* newOdRxClass(const OdString& name, OdRxClass* parent,
                        OdPseudoConstructorType constructor = nullptr,
                        const OdString& dxfName = OdString(), const OdString& appName = OdString(),
                        OdRxClass::AppNameChangeFuncPtr appNameChange = nullptr);

// Unregisters and frees a descriptor. Throws OdError(eNotInitializedYet) when `cls` is null or
// not registered, and OdError(eInvalidInput) while another registered class names it as its
// parent (children go first, so that no descriptor is left pointing at a freed parent).
void deleteOdRxClass(OdRxClass* cls);

// A new object of the class registered as `className`; null when no class has that name or
// the class has no constructor.
OdRxObjectPtr odrxCreateObject(const OdString& className);
