#pragma once

#include <vector>

#include "OdDbSymbolTableRecord.h"

// A linetype: its description and its dash pattern.
class OdDbLinetypeTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbLinetypeTableRecord);

  OdString comments() const;
  void setComments(const OdString& text);
  double patternLength() const;
  int numDashes() const;
  // The dash lengths in order (positive: dash, negative: gap, zero: dot).
  std::vector<double> dashes() const;
  // Replaces the pattern with simple dashes (dropping shapes and texts in it), and sets the
  // pattern length to the sum of their absolute lengths.
  void setDashes(const std::vector<double>& dashes);

 protected:
  OdDbLinetypeTableRecord() = default;
  void initNewObject() override;
  const char* subclass() const override { return "AcDbLinetypeTableRecord"; }
};

using OdDbLinetypeTableRecordPtr = OdSmartPtr<OdDbLinetypeTableRecord>;
