#pragma once

// Declaring a run-time class.
//
// In the class body (the class derives, directly or not, from OdRxObject):
//
//   class StError : public OdRxObject {
//     ODRX_DECLARE_MEMBERS(StError);
//     ...
//   };
//
// and in one .cpp file, inside the class's namespace so that the class registers under its
// plain name, one of the definition macros below. Together they give the class
//   desc()                  its descriptor: null until rxInit, null again after rxUninit
//   isA()                   desc(), for an instance
//   queryX(cls)             this object (with a reference added) for the class and its
//                           bases, else whatever the parent class answers
//   cast(obj)               obj as a smart pointer of the class, or null when it is not one
//   createObject()          a new object with one reference, as a smart pointer of the class
//   pseudoConstructor()     the same as a plain pointer owning that reference; it is the
//                           constructor the descriptor records
//   rxInit()                registers the class under its own name with its parent's
//   rxInit(appNameChange)   descriptor; throws OdError(eAlreadyRegistered) when registered
//                           already and OdError(eNotInitializedYet) when the parent is not
//   rxUninit()              deletes the descriptor and sets it back to null; throws
//                           OdError(eNotInitializedYet) when the class is not registered
// Each class keeps its descriptor in its own static g_pDesc.
//
// The definition macros differ in what createObject makes:
//   ODRX_DEFINE_MEMBERS(Class, Parent)             Class itself (it must be concrete apart
//                                                  from reference counting)
//   ODRX_DEFINE_MEMBERS_IMPL(Class, Parent, Impl)  Impl, a class derived from Class that
//                                                  implements it (an interface StError with its
//                                                  implementation StErrorImpl); Impl must be
//                                                  complete where the macro is used
//   ODRX_NO_CONS_DEFINE_MEMBERS(Class, Parent)     nothing: an abstract class. The descriptor
//                                                  has no constructor, and createObject and
//                                                  pseudoConstructor are left undefined, so a
//                                                  call fails to link instead of at run time
// and the ODRX_DXF_ forms also record the name the class has in drawing files and the
// application that defines it. Parent is the C++ base class that carries the parent
// run-time class.
//
// The macros leave the class body in public access.

#include "OdRxClass.h"
#include "OdRxObject.h"
#include "OdRxObjectImpl.h"
#include "OdSmartPtr.h"
#include "OdString.h"

// Registers a class for its macros: stores the new descriptor in `slot`. `parent` is the
// parent's descriptor (a null one throws OdError(eNotInitializedYet)); `slot` already set
// throws OdError(eAlreadyRegistered).
void odrxInitClass(OdRxClass*& slot, const char* name, OdRxClass* parent, const char* parentName,
                   OdPseudoConstructorType constructor, const OdString& dxfName,
                   const OdString& appName, OdRxClass::AppNameChangeFuncPtr appNameChange);
// Deletes the descriptor in `slot` and nulls it; throws OdError(eNotInitializedYet) when
// `slot` is null.
void odrxUninitClass(OdRxClass*& slot, const char* name);

// The static members are marked maybe_unused so that a class defined in an unnamed namespace
// need not use every one of them.
#define ODRX_DECLARE_MEMBERS(ClassName)                                               \
 public:                                                                              \
  [[maybe_unused]] static OdRxClass* desc();                                          \
  OdRxClass* isA() const override;                                                    \
  OdRxObject* queryX(const OdRxClass* cls) const override;                            \
  [[maybe_unused]] static OdSmartPtr<ClassName> cast(const OdRxObject* obj);          \
  [[maybe_unused]] static OdSmartPtr<ClassName> createObject();                       \
  [[maybe_unused]] static OdRxObject* pseudoConstructor();                            \
  [[maybe_unused]] static void rxInit();                                              \
  [[maybe_unused]] static void rxInit(OdRxClass::AppNameChangeFuncPtr appNameChange); \
  [[maybe_unused]] static void rxUninit();                                            \
                                                                                      \
 private:                                                                             \
  static OdRxClass* g_pDesc;                                                          \
                                                                                      \
 public:                                                                              \
  static_assert(true, "ODRX_DECLARE_MEMBERS is used with a semicolon")

// desc, isA, queryX, cast and rxUninit.
#define ODRX_DEFINE_RTTI_MEMBERS(ClassName, ParentClass)                          \
  OdRxClass* ClassName::g_pDesc = nullptr;                                        \
  OdRxClass* ClassName::desc() {                                                  \
    return g_pDesc;                                                               \
  }                                                                               \
  OdRxClass* ClassName::isA() const {                                             \
    return g_pDesc;                                                               \
  }                                                                               \
  OdRxObject* ClassName::queryX(const OdRxClass* cls) const {                     \
    if (cls && cls == g_pDesc) {                                                  \
      ClassName* self = const_cast<ClassName*>(this);                             \
      self->addRef();                                                             \
      return self;                                                                \
    }                                                                             \
    return ParentClass::queryX(cls);                                              \
  }                                                                               \
  OdSmartPtr<ClassName> ClassName::cast(const OdRxObject* obj) {                  \
    OdRxObject* found = obj ? obj->queryX(g_pDesc) : nullptr;                     \
    return OdSmartPtr<ClassName>(static_cast<ClassName*>(found), kOdRxObjAttach); \
  }                                                                               \
  void ClassName::rxUninit() {                                                    \
    odrxUninitClass(g_pDesc, #ClassName);                                         \
  }                                                                               \
  static_assert(true, "")

// createObject and pseudoConstructor, making ImplClass.
#define ODRX_DEFINE_PSEUDOCONSTRUCTOR(ClassName, ImplClass)      \
  OdSmartPtr<ClassName> ClassName::createObject() {              \
    return OdRxObjectImpl<ImplClass, ClassName>::createObject(); \
  }                                                              \
  OdRxObject* ClassName::pseudoConstructor() {                   \
    return createObject().detach();                              \
  }                                                              \
  static_assert(true, "")

// Both rxInit overloads.
#define ODRX_DEFINE_INIT_MEMBERS(ClassName, ParentClass, Constructor, DxfName, AppName) \
  void ClassName::rxInit() {                                                            \
    rxInit(nullptr);                                                                    \
  }                                                                                     \
  void ClassName::rxInit(OdRxClass::AppNameChangeFuncPtr appNameChange) {               \
    odrxInitClass(g_pDesc, #ClassName, ParentClass::desc(), #ParentClass, Constructor,  \
                  OdString(DxfName), OdString(AppName), appNameChange);                 \
  }                                                                                     \
  static_assert(true, "")

#define ODRX_DEFINE_MEMBERS(ClassName, ParentClass) \
  ODRX_DEFINE_MEMBERS_IMPL(ClassName, ParentClass, ClassName)

#define ODRX_DEFINE_MEMBERS_IMPL(ClassName, ParentClass, ImplClass) \
  ODRX_DXF_DEFINE_MEMBERS_IMPL(ClassName, ParentClass, ImplClass, "", "")

#define ODRX_NO_CONS_DEFINE_MEMBERS(ClassName, ParentClass) \
  ODRX_DXF_NO_CONS_DEFINE_MEMBERS(ClassName, ParentClass, "", "")

#define ODRX_DXF_DEFINE_MEMBERS(ClassName, ParentClass, DxfName, AppName) \
  ODRX_DXF_DEFINE_MEMBERS_IMPL(ClassName, ParentClass, ClassName, DxfName, AppName)

#define ODRX_DXF_DEFINE_MEMBERS_IMPL(ClassName, ParentClass, ImplClass, DxfName, AppName) \
  ODRX_DEFINE_RTTI_MEMBERS(ClassName, ParentClass);                                       \
  ODRX_DEFINE_PSEUDOCONSTRUCTOR(ClassName, ImplClass);                                    \
  ODRX_DEFINE_INIT_MEMBERS(ClassName, ParentClass, &ClassName::pseudoConstructor, DxfName, AppName)

#define ODRX_DXF_NO_CONS_DEFINE_MEMBERS(ClassName, ParentClass, DxfName, AppName) \
  ODRX_DEFINE_RTTI_MEMBERS(ClassName, ParentClass);                               \
  ODRX_DEFINE_INIT_MEMBERS(ClassName, ParentClass, nullptr, DxfName, AppName)
