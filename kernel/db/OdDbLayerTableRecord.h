#pragma once

#include <cstdint>

#include "OdDbSymbolTableRecord.h"

// A layer: the properties a drawing standard compares (colour, linetype, lineweight,
// plotting, plot style, visibility, transparency, description).
class OdDbLayerTableRecord : public OdDbSymbolTableRecord {
  ODRX_DECLARE_MEMBERS(OdDbLayerTableRecord);

  // The colour index 1-255 (a file stores an off layer's index negated; this is positive).
  short colorIndex() const;
  // Sets the index and drops a true colour; keeps the layer on or off.
  void setColorIndex(short index);
  // The true colour as 0x00RRGGBB, or -1 when the layer has none.
  std::int32_t trueColor() const;
  void setTrueColor(std::int32_t rgb);

  bool isOff() const;
  void setIsOff(bool off);
  bool isFrozen() const { return (flags() & 1) != 0; }
  void setIsFrozen(bool frozen) { setFlagBit(1, frozen); }
  bool isLocked() const { return (flags() & 4) != 0; }
  void setIsLocked(bool locked) { setFlagBit(4, locked); }
  bool isPlottable() const;
  void setIsPlottable(bool plot);

  // The linetype record the layer names, or a null id when the drawing has no linetype of
  // that name.
  OdDbObjectId linetypeObjectId() const;
  OdString linetypeName() const;
  // Points the layer at a linetype record of the same drawing (errors as
  // OdDbDatabaseImpl::checkedRecordName: eWrongDatabase, eInvalidInput...).
  void setLinetypeObjectId(const OdDbObjectId& id);

  // kLnWtByLnDefault when the layer stores none.
  OdDb::LineWeight lineWeight() const;
  void setLineWeight(OdDb::LineWeight weight);

  // The plot style placeholder object the layer names (group 390), or null.
  OdDbObjectId plotStyleNameId() const;
  void setPlotStyleName(const OdDbObjectId& id);

  // The transparency as stored (0x02000000 | alpha 0-255), or 0 when it is by layer.
  std::uint32_t transparency() const;
  void setTransparency(std::uint32_t value);

  OdString description() const;
  void setDescription(const OdString& text);

 protected:
  OdDbLayerTableRecord() = default;
  void initNewObject() override;
  const char* subclass() const override { return "AcDbLayerTableRecord"; }
};

using OdDbLayerTableRecordPtr = OdSmartPtr<OdDbLayerTableRecord>;
