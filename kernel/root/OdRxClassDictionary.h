#pragma once

#include <map>
#include <memory>

#include "OdArray.h"
#include "OdRxClass.h"
#include "OdString.h"

// The registry of run-time classes, by name. Names are case-sensitive.
//
// There is one dictionary per process (odrxClassDictionary()); it owns every descriptor.
// Classes enter it through newOdRxClass and leave through deleteOdRxClass. Like the rest of
// the run-time class system it is used from one thread at a time.
class OdRxClassDictionary {
 public:
  OdRxClassDictionary(const OdRxClassDictionary&) = delete;
  OdRxClassDictionary& operator=(const OdRxClassDictionary&) = delete;

  // The class registered under `name`, or null.
  OdRxClass* getAt(const OdString& name) const;
  bool has(const OdString& name) const { return getAt(name) != nullptr; }
  int numEntries() const noexcept { return static_cast<int>(classes_.size()); }
  // The registered names in code point order.
  OdArray<OdString> names() const;

 private:
  friend OdRxClassDictionary* odrxClassDictionary();
  friend OdRxClass* newOdRxClass(const OdString&, OdRxClass*, OdPseudoConstructorType,
                                 const OdString&, const OdString&, OdRxClass::AppNameChangeFuncPtr);
  friend void deleteOdRxClass(OdRxClass*);

  OdRxClass* add(const OdString& name, OdRxClass* parent, OdPseudoConstructorType constructor,
                 const OdString& dxfName, const OdString& appName,
                 OdRxClass::AppNameChangeFuncPtr appNameChange);
  void remove(OdRxClass* cls);

  struct ClassDeleter {
    void operator()(OdRxClass* cls) const;
  };

  OdRxClassDictionary() = default;
  ~OdRxClassDictionary() = default;

  std::map<OdString, std::unique_ptr<OdRxClass, ClassDeleter>> classes_;
};

// The process's class dictionary; never null. It lives until the process ends and is never
// torn down, so class lookups stay valid while other libraries' statics are destroyed.
OdRxClassDictionary* odrxClassDictionary();
