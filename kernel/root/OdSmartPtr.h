#pragma once

#include <cstddef>
#include <type_traits>

#include "OdRxObject.h"

// Throws OdError_NotThatKindOfClass for an object that is not of class `wanted`. Kept out of
// line so that this header does not pull in the error and string headers.
[[noreturn]] void odrxThrowNotThatKindOfClass(const OdRxObject* obj, const OdRxClass* wanted);

// A counted reference to a run-time object of class T (OdRxObject or a class derived from it).
//
// Holding a non-null pointer holds one reference; the destructor, release() and reassignment
// give it back. Two ways in:
//  - from a T* (or a pointer to a class derived from T): no check, a reference is added;
//    with kOdRxObjAttach the caller's reference is taken over instead;
//  - from an object of some other static class (an OdRxObject*, an OdRxObjectPtr): checked
//    through obj->queryX(T::desc()). An object that is not a T throws
//    OdError_NotThatKindOfClass; T::cast(obj) is the form that gives null instead.
// A null pointer is accepted everywhere and gives a null smart pointer.
// The check is as precise as T's run-time class: a class that does not declare its own
// run-time members (ODRX_DECLARE_MEMBERS) is checked as its nearest base that does.
template <class T>
class OdSmartPtr {
 public:
  OdSmartPtr() noexcept = default;
  OdSmartPtr(std::nullptr_t) noexcept {}
  OdSmartPtr(T* obj) noexcept : obj_(obj) { addRefObj(); }
  OdSmartPtr(T* obj, OdRxObjMod) noexcept : obj_(obj) {}
  // Checked construction from an object of another class.
  OdSmartPtr(const OdRxObject* obj) requires(!std::is_same_v<T, OdRxObject>) { assignChecked(obj); }
  // Checked, taking over the caller's reference to `obj` (which is given back whether or not
  // `obj` is a T).
  OdSmartPtr(OdRxObject* obj, OdRxObjMod) requires(!std::is_same_v<T, OdRxObject>) {
    try {
      assignChecked(obj);
    } catch (...) {
      obj->release();
      throw;
    }
    if (obj) obj->release();
  }

  OdSmartPtr(const OdSmartPtr& other) noexcept : obj_(other.obj_) { addRefObj(); }
  OdSmartPtr(OdSmartPtr&& other) noexcept : obj_(other.obj_) { other.obj_ = nullptr; }
  // From a smart pointer of another class: unchecked when U derives from T, checked otherwise.
  template <class U>
  OdSmartPtr(const OdSmartPtr<U>& other) {
    if constexpr (std::is_convertible_v<U*, T*>) {
      obj_ = other.get();
      addRefObj();
    } else {
      assignChecked(other.get());
    }
  }

  ~OdSmartPtr() { releaseObj(); }

  OdSmartPtr& operator=(const OdSmartPtr& other) noexcept {
    OdSmartPtr(other).swap(*this);
    return *this;
  }
  OdSmartPtr& operator=(OdSmartPtr&& other) noexcept {
    OdSmartPtr(static_cast<OdSmartPtr&&>(other)).swap(*this);
    return *this;
  }
  OdSmartPtr& operator=(T* obj) noexcept {
    OdSmartPtr(obj).swap(*this);
    return *this;
  }
  OdSmartPtr& operator=(std::nullptr_t) noexcept {
    release();
    return *this;
  }
  template <class U>
  OdSmartPtr& operator=(const OdSmartPtr<U>& other) {
    OdSmartPtr(other).swap(*this);
    return *this;
  }

  T* get() const noexcept { return obj_; }
  T* operator->() const noexcept { return obj_; }
  T& operator*() const noexcept { return *obj_; }
  explicit operator bool() const noexcept { return obj_ != nullptr; }
  bool isNull() const noexcept { return obj_ == nullptr; }

  // Gives the reference back and becomes null.
  void release() noexcept {
    releaseObj();
    obj_ = nullptr;
  }
  // Takes over the caller's reference to `obj` without adding one; the reference held
  // before is given back.
  void attach(T* obj) noexcept {
    releaseObj();
    obj_ = obj;
  }
  // Hands the reference over to the caller (who must release it) and becomes null.
  [[nodiscard]] T* detach() noexcept {
    T* obj = obj_;
    obj_ = nullptr;
    return obj;
  }
  void swap(OdSmartPtr& other) noexcept {
    T* obj = obj_;
    obj_ = other.obj_;
    other.obj_ = obj;
  }

  // Identity: two smart pointers are equal when they hold the same object.
  template <class U>
  bool operator==(const OdSmartPtr<U>& other) const noexcept {
    return static_cast<const OdRxObject*>(obj_) == static_cast<const OdRxObject*>(other.get());
  }
  bool operator==(const T* obj) const noexcept { return obj_ == obj; }
  bool operator==(std::nullptr_t) const noexcept { return obj_ == nullptr; }

 private:
  void addRefObj() noexcept {
    if (obj_) obj_->addRef();
  }
  void releaseObj() noexcept {
    if (obj_) obj_->release();
  }
  // queryX answers with a reference added, which this pointer keeps.
  void assignChecked(const OdRxObject* obj) {
    if (!obj) return;
    OdRxObject* found = obj->queryX(T::desc());
    if (!found) odrxThrowNotThatKindOfClass(obj, T::desc());
    obj_ = static_cast<T*>(found);
  }

  T* obj_ = nullptr;
};
