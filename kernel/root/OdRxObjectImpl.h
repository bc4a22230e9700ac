#pragma once

#include <atomic>
#include <cstddef>
#include <utility>

#include "OdAlloc.h"
#include "OdSmartPtr.h"

// The implementation wrapper that gives a run-time class its reference count.
//
// T is the class that implements everything but counting (a concrete class, or the
// implementation class of an interface); TInterface is the class that createObject hands
// out, T by default. Objects are made only through createObject, start with one reference
// that the returned smart pointer owns, live in memory from odrxAlloc and are freed through
// odrxFree when the last reference is released; so an object made in one shared library can
// be released in another.
//
// The count is atomic so that handing a reference to another thread is safe; the object
// itself is not made thread-safe by this.
template <class T, class TInterface = T>
class OdRxObjectImpl : public T {
 public:
  // Creates an object, passing `args` to T's constructor.
  template <class... Args>
  static OdSmartPtr<TInterface> createObject(Args&&... args) {
    TInterface* obj = new OdRxObjectImpl(std::forward<Args>(args)...);
    return OdSmartPtr<TInterface>(obj, kOdRxObjAttach);
  }

  void addRef() override { refs_.fetch_add(1, std::memory_order_relaxed); }
  void release() override {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  long numRefs() const override { return refs_.load(std::memory_order_relaxed); }

  static void* operator new(std::size_t size) { return odrxAlloc(size); }
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

 protected:
  template <class... Args>
  explicit OdRxObjectImpl(Args&&... args) : T(std::forward<Args>(args)...) {}
  ~OdRxObjectImpl() override = default;

 private:
  std::atomic<long> refs_{1};
};
