#pragma once

#include "OdDbSymbolTableRecord.h"

// A text style: font files, height, width factor, obliquing angle and flags.
class OdDbTextStyleTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbTextStyleTableRecord);

  OdString fileName() const;
  void setFileName(const OdString& name);
  OdString bigFontFileName() const;
  void setBigFontFileName(const OdString& name);
  // The typeface named in the style's extended data (for TrueType fonts), or empty.
  OdString typeface() const;
  // The fixed text height; 0 when texts choose their own.
  double textSize() const;
  void setTextSize(double height);
  double xScale() const;  // the width factor
  void setXScale(double factor);
  // In radians (files store degrees).
  double obliquingAngle() const;
  void setObliquingAngle(double radians);
  double priorSize() const;
  // Generation flags (group 71): 2 backwards, 4 upside down.
  int textGenerationFlags() const;
  void setTextGenerationFlags(int flags);
  bool isShapeFile() const { return (flags() & 1) != 0; }
  void setIsShapeFile(bool shape) { setFlagBit(1, shape); }
  bool isVertical() const { return (flags() & 4) != 0; }
  void setIsVertical(bool vertical) { setFlagBit(4, vertical); }

 protected:
  OdDbTextStyleTableRecord() = default;
  void initNewObject() override;
  const char* subclass() const override { return "AcDbTextStyleTableRecord"; }
};

using OdDbTextStyleTableRecordPtr = OdSmartPtr<OdDbTextStyleTableRecord>;
