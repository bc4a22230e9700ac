#pragma once

// Run-time class members of drawing objects. Drawing objects register under their DXF
// class names ("AcDbLayerTableRecord"), not their C++ names, and count their references
// themselves (a database-resident object is closed, not freed, when its last reference
// goes), so they use these forms instead of ODRX_DEFINE_MEMBERS:
//
//   class OdDbXrecord : public OdDbObject {
//     ODRX_DECLARE_MEMBERS(OdDbXrecord);
//   };
//   ODDB_DEFINE_MEMBERS(OdDbXrecord, OdDbObject, "AcDbXrecord", "XRECORD");
//
// createObject() gives a new object that belongs to no database, with one reference.

#include "OdRxMacros.h"

#define ODDB_DEFINE_MEMBERS(ClassName, ParentClass, RxName, DxfName)                            \
  ODRX_DEFINE_RTTI_MEMBERS(ClassName, ParentClass);                                             \
  OdSmartPtr<ClassName> ClassName::createObject() {                                             \
    ClassName* obj = new ClassName();                                                           \
    obj->initNewObject();                                                                       \
    return OdSmartPtr<ClassName>(obj, kOdRxObjAttach);                                          \
  }                                                                                             \
  OdRxObject* ClassName::pseudoConstructor() {                                                  \
    return createObject().detach();                                                             \
  }                                                                                             \
  void ClassName::rxInit() {                                                                    \
    rxInit(nullptr);                                                                            \
  }                                                                                             \
  void ClassName::rxInit(OdRxClass::AppNameChangeFuncPtr appNameChange) {                       \
    odrxInitClass(g_pDesc, RxName, ParentClass::desc(), #ParentClass,                           \
                  &ClassName::pseudoConstructor, OdString(DxfName), OdString(), appNameChange); \
  }                                                                                             \
  static_assert(true, "")
