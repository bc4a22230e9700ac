#include "StDWSLinetypePlugin.h"

#include "OdDbLinetypeTableRecord.h"
#include "OdDbSymbolTable.h"
#include "StIcon.h"
#include "StRecordCloning.h"

namespace st {

ODRX_DEFINE_MEMBERS(StDWSLinetypePlugin, StDWSPlugin);

namespace {

bool isByLayerOrByBlock(const OdString& name) {
  return name.iCompare(L"ByLayer") == 0 || name.iCompare(L"ByBlock") == 0;
}

// The dash lengths as a user reads them: "0.5, -0.25, 0".
OdString patternText(OdDbLinetypeTableRecord& linetype) {
  OdString text;
  for (double dash : linetype.dashes()) {
    if (!text.isEmpty()) text += L", ";
    text += OdString::format(L"%g", dash);
  }
  return text;
}

}  // namespace

StDWSLinetypePlugin::StDWSLinetypePlugin()
    : StSymbolTablePlugin(L"Linetypes",
                          L"Checks that the linetypes of a drawing are those of its standards "
                          L"and have their descriptions and dash patterns.",
                          L"linetype", L"Linetype", L"AcDbLinetypeTableRecord") {}

OdDbObjectId StDWSLinetypePlugin::tableOf(OdDbDatabase* db) const {
  return db ? db->getLinetypeTableId() : OdDbObjectId();
}

bool StDWSLinetypePlugin::isReserved(const OdString& name) const {
  return name.iCompare(L"Continuous") == 0 || isByLayerOrByBlock(name);
}

bool StDWSLinetypePlugin::isChecked(OdDbSymbolTableRecord& record) const {
  return !isByLayerOrByBlock(record.getName());
}

void StDWSLinetypePlugin::readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const {
  auto& linetype = static_cast<OdDbLinetypeTableRecord&>(record);
  out.emplace_back(L"Description", OdVariant(linetype.comments()));
  out.emplace_back(L"Pattern", OdVariant(patternText(linetype)));
}

bool StDWSLinetypePlugin::applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) {
  // A linetype is a definition: the standard's record is copied over the drawing's, keeping
  // its handle, so shapes and texts in the pattern come along too.
  OdDbSymbolTableRecordPtr model = standard.safeOpenObject();
  OdDbObjectId id;
  return stCloneLinetypeTableRecord(record.database(), standard.database(), model->getName(), id) ==
             eOk &&
         id == record;
}

StIconHandle StDWSLinetypePlugin::icon() const {
  static const char* const kRows[StIcon::kSize] = {
      "................", "................", "................", "####..####..####",
      "####..####..####", "................", "................", "######.#.######.",
      "######.#.######.", "................", "................", "##.##.##.##.##.#",
      "##.##.##.##.##.#", "................", "................", "................",
  };
  return stCreateIcon(kRows, 0xFF3A3A3A);
}

}  // namespace st
