#pragma once

#include "StSymbolTablePlugin.h"

namespace st {

// Checks layers: colour, linetype, lineweight, plot flag, plot style and transparency; true
// colours, and the properties after the linetype, only between drawings of releases that
// store them (R2004 and R2000 on), and only those are written by a fix.
// Layers "0" and "Defpoints" are compared where a standard defines them and never reported
// as non-standard or erased. Replacing a non-standard layer moves the entities of every block onto
// the standard layer. Registered as "StDWSLayerPlugin"; watches AcDbLayerTableRecord.
class StDWSLayerPlugin : public StSymbolTablePlugin {
 public:
  ODRX_DECLARE_MEMBERS(StDWSLayerPlugin);
  StDWSLayerPlugin();
  // A 16 × 16 picture of the kind of object checked (see StIcon.h: the caller frees it).
  StIconHandle icon() const override;

 protected:
  OdDbObjectId tableOf(OdDbDatabase* db) const override;
  bool isReserved(const OdString& name) const override;
  void readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const override;
  bool applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) override;
  std::vector<const char*> headerVariables() const override { return {"$CLAYER"}; }
};

}  // namespace st
