#pragma once

#include "OdDbObject.h"

// A named record of a symbol table (a layer, a linetype, a text style...).
class OdDbSymbolTableRecord : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbSymbolTableRecord);

  OdString getName() const;
  // Renames the record. Throws OdError(eInvalidInput) for an empty name and
  // OdError(eDuplicateRecordName) when another record of its table has the name already
  // (compared without regard to case).
  void setName(const OdString& name);

  // Xref-dependent: the record came from an external reference (its name has a '|', or its
  // flags say dependent (16) or resolved (32)).
  bool isDependent() const;
  // True for an xref-dependent record: a file keeps only records of xrefs that were
  // resolved when it was saved.
  bool isResolved() const { return isDependent(); }

  // The standard flags (group 70).
  int flags() const;

 protected:
  OdDbSymbolTableRecord() = default;
  // The subclass marker that holds the record's own tags ("AcDbLayerTableRecord").
  virtual const char* subclass() const;
  void setFlagBit(int bit, bool on);
};

using OdDbSymbolTableRecordPtr = OdSmartPtr<OdDbSymbolTableRecord>;
