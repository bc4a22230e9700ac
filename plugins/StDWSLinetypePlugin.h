#pragma once

#include "StSymbolTablePlugin.h"

namespace st {

// Checks linetypes: description and dash pattern. ByLayer and ByBlock are left alone;
// Continuous is compared where a standard defines it and never reported as non-standard or
// erased. A fix copies the standard's definition over the drawing's (complex patterns
// included); replacing a non-standard linetype moves the entities of every block, the layers
// and the dimension styles that use it. Registered as "StDWSLinetypePlugin"; watches
// AcDbLinetypeTableRecord.
class StDWSLinetypePlugin : public StSymbolTablePlugin {
 public:
  ODRX_DECLARE_MEMBERS(StDWSLinetypePlugin);
  StDWSLinetypePlugin();
  // A 16 × 16 picture of the kind of object checked (see StIcon.h: the caller frees it).
  StIconHandle icon() const override;

 protected:
  OdDbObjectId tableOf(OdDbDatabase* db) const override;
  bool isReserved(const OdString& name) const override;
  bool isChecked(OdDbSymbolTableRecord& record) const override;
  void readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const override;
  bool applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) override;
  std::vector<const char*> headerVariables() const override { return {"$CELTYPE"}; }
};

}  // namespace st
