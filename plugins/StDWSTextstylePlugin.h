#pragma once

#include "StSymbolTablePlugin.h"

namespace st {

// Checks text styles: font, big font, height, width factor, oblique angle and generation
// flags. Shape-file entries (unnamed styles that complex linetypes use) are left alone;
// "Standard" is compared where a standard defines it and never reported as non-standard or
// erased. A fix copies the standard's definition over the drawing's; replacing a non-standard
// style moves the texts of every block and the dimension styles that use it. Registered as
// "StDWSTextstylePlugin"; watches AcDbTextStyleTableRecord.
class StDWSTextstylePlugin : public StSymbolTablePlugin {
 public:
  ODRX_DECLARE_MEMBERS(StDWSTextstylePlugin);
  StDWSTextstylePlugin();
  // A 16 × 16 picture of the kind of object checked (see StIcon.h: the caller frees it).
  StIconHandle icon() const override;

 protected:
  OdDbObjectId tableOf(OdDbDatabase* db) const override;
  bool isReserved(const OdString& name) const override;
  bool isChecked(OdDbSymbolTableRecord& record) const override;
  void readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const override;
  bool applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) override;
  std::vector<const char*> headerVariables() const override { return {"$TEXTSTYLE", "$DIMTXSTY"}; }
};

}  // namespace st
