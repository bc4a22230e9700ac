#pragma once

#include "StSymbolTablePlugin.h"

namespace st {

// Checks dimension styles: every dimension variable the releases of both the drawing and the
// standards file store, a variable a style leaves out compared as its default, shown under
// its variable name (DIMSCALE, DIMCLRD...), with references to text styles, linetypes and
// arrow blocks shown by name. "Standard" is compared where a standard defines it and never
// reported as non-standard or erased. A fix copies the standard's definition over the
// drawing's (the variables the standard's release cannot store stay as they were, and those
// the drawing's cannot store are left out), bringing in the text style and linetypes it
// names when the drawing lacks them;
// replacing a non-standard style moves the dimensions, leaders and tolerances of every
// block. Registered as "StDWSDimstylePlugin"; watches AcDbDimStyleTableRecord.
class StDWSDimstylePlugin : public StSymbolTablePlugin {
 public:
  ODRX_DECLARE_MEMBERS(StDWSDimstylePlugin);
  StDWSDimstylePlugin();
  // A 16 × 16 picture of the kind of object checked (see StIcon.h: the caller frees it).
  StIconHandle icon() const override;

 protected:
  OdDbObjectId tableOf(OdDbDatabase* db) const override;
  bool isReserved(const OdString& name) const override;
  void readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const override;
  bool applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) override;
  std::vector<const char*> headerVariables() const override { return {"$DIMSTYLE"}; }
};

}  // namespace st
