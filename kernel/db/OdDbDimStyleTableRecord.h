#pragma once

#include <vector>

#include "OdDbSymbolTableRecord.h"
#include "OdResBuf.h"

// A dimension style: a name and its dimension variables (DIMSCALE, DIMTXT, DIMCLRD...),
// each stored under its own group code.
class OdDbDimStyleTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbDimStyleTableRecord);

  // The group code of a dimension variable ("DIMSCALE" -> 40, case-insensitive), or 0.
  static int dimVarCode(const OdString& name);
  // The name of the variable stored under `code`, or empty.
  static OdString dimVarName(int code);
  // Every variable's group code, in the order files write them.
  static const std::vector<int>& dimVarCodes();
  // Whether files of release `versionNumber` (OdDbDatabase::formatRelease()) store the
  // variable under `code`. Later
  // releases added variables, and release 2000 moved the arrow blocks from names (5-7) to
  // references (342-344). False for a code that is no dimension variable.
  static bool isDimVarHeldBy(int code, int versionNumber);
  // The value a style that does not store the variable under `code` stands for (those of a
  // new imperial drawing; angles in degrees as the record stores them, texts empty), or
  // null for a reference (a missing one refers to nothing) and a code that is no variable.
  static OdResBufPtr dimVarDefault(int code);

  // The value the style stores for the variable under `code` (a buffer of that type), or
  // null when the style does not store it (dimVarDefault applies). DIMTFILLCLR (70) is the
  // group 70 after the record's flags.
  OdResBufPtr getDimVar(int code) const;
  OdResBufPtr getDimVar(const OdString& name) const { return getDimVar(dimVarCode(name)); }
  // Stores the buffer's value under its type. Throws OdError(eInvalidInput) for a type that
  // is not a dimension variable.
  void setDimVar(const OdResBuf* value);

  // The text style of the dimension text (DIMTXSTY), or null.
  OdDbObjectId dimtxsty() const;
  void setDimtxsty(const OdDbObjectId& id);

 protected:
  OdDbDimStyleTableRecord() = default;
  void initNewObject() override;
  const char* subclass() const override { return "AcDbDimStyleTableRecord"; }
};

using OdDbDimStyleTableRecordPtr = OdSmartPtr<OdDbDimStyleTableRecord>;
