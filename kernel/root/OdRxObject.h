#pragma once

class OdRxClass;
template <class T>
class OdSmartPtr;
class OdRxObject;

// A reference to an object of any run-time class.
using OdRxObjectPtr = OdSmartPtr<OdRxObject>;

// Chooses the smart-pointer constructor that takes over a reference the caller already holds,
// instead of adding one.
enum OdRxObjMod { kOdRxObjAttach };

// The root of every run-time class: an object that knows its class and is shared by
// reference counting.
//
// Counting is left to the implementation wrapper OdRxObjectImpl<T>, which creates objects
// with a count of one and frees them through odrxFree when the count reaches zero; an
// OdRxObject is never deleted directly and never lives on the stack. Objects are handed
// around through OdSmartPtr, which adds and releases references.
//
// Copying is disabled: an object is shared, not copied.
//
// OdRxObject's own run-time class ("OdRxObject") is registered by TD_Root itself when the
// library is loaded, so desc() is never null and every class can name it as its parent.
class OdRxObject {
 public:
  OdRxObject(const OdRxObject&) = delete;
  OdRxObject& operator=(const OdRxObject&) = delete;

  virtual void addRef() = 0;
  // Drops one reference; the object is freed when this was the last.
  virtual void release() = 0;
  virtual long numRefs() const = 0;

  // The descriptor of OdRxObject's class.
  static OdRxClass* desc();
  // A null-tolerant cast: `obj` as an OdRxObjectPtr (a null `obj` gives null).
  static OdRxObjectPtr cast(const OdRxObject* obj);

  // The run-time class of this object: the nearest class in its hierarchy that declares
  // run-time members. Null when that class is not registered.
  virtual OdRxClass* isA() const;
  // This object with a reference added when it is of class `cls` or of a class derived from
  // it; otherwise null (also for a null `cls`). The caller owns the reference it receives.
  // Classes override it to answer for their own class and pass the rest to their parent.
  virtual OdRxObject* queryX(const OdRxClass* cls) const;
  // True when isA() is `cls` or derived from it.
  bool isKindOf(const OdRxClass* cls) const;

 protected:
  OdRxObject() = default;
  virtual ~OdRxObject() = default;

 private:
  static OdRxClass* g_pDesc;
  friend struct OdRxObjectRegistrar;
};

// Completes OdRxObjectPtr for everyone who includes this header.
#include "OdSmartPtr.h"
