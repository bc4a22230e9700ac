#include "StDWSTextstylePlugin.h"

#include "OdDbSymbolTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "StIcon.h"
#include "StRecordCloning.h"

namespace st {

ODRX_DEFINE_MEMBERS(StDWSTextstylePlugin, StDWSPlugin);

StDWSTextstylePlugin::StDWSTextstylePlugin()
    : StSymbolTablePlugin(L"Text styles",
                          L"Checks that the text styles of a drawing are those of its standards "
                          L"and have their fonts, height, width factor, oblique angle and "
                          L"flags.",
                          L"text style", L"Text style", L"AcDbTextStyleTableRecord") {}

OdDbObjectId StDWSTextstylePlugin::tableOf(OdDbDatabase* db) const {
  return db ? db->getTextStyleTableId() : OdDbObjectId();
}

bool StDWSTextstylePlugin::isReserved(const OdString& name) const {
  return name.iCompare(L"Standard") == 0;
}

bool StDWSTextstylePlugin::isChecked(OdDbSymbolTableRecord& record) const {
  auto& style = static_cast<OdDbTextStyleTableRecord&>(record);
  return !style.isShapeFile() && !style.getName().isEmpty();
}

void StDWSTextstylePlugin::readProperties(OdDbSymbolTableRecord& record,
                                          StPropertyList& out) const {
  auto& style = static_cast<OdDbTextStyleTableRecord&>(record);
  out.emplace_back(L"Font", OdVariant(style.fileName()));
  out.emplace_back(L"Big font", OdVariant(style.bigFontFileName()));
  out.emplace_back(L"Height", OdVariant(style.textSize()));
  out.emplace_back(L"Width factor", OdVariant(style.xScale()));
  out.emplace_back(L"Oblique angle", OdVariant(style.obliquingAngle()));
  out.emplace_back(L"Text flags",
                   OdVariant(static_cast<std::int16_t>(style.textGenerationFlags())));
  out.emplace_back(L"Vertical", OdVariant(style.isVertical()));
}

bool StDWSTextstylePlugin::applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) {
  // The standard's record is copied over the drawing's, keeping its handle: the typeface a
  // TrueType style names in its extended data comes along with the font file.
  OdDbSymbolTableRecordPtr model = standard.safeOpenObject();
  OdDbObjectId id;
  return stCloneTextStyleTableRecord(record.database(), standard.database(), model->getName(),
                                     id) == eOk &&
         id == record;
}

StIconHandle StDWSTextstylePlugin::icon() const {
  static const char* const kRows[StIcon::kSize] = {
      "................", "......####......", ".....##..##.....", "....##....##....",
      "....##....##....", "...##......##...", "...##......##...", "..############..",
      "..##........##..", ".##..........##.", ".##..........##.", "####........####",
      "................", "................", "................", "................",
  };
  return stCreateIcon(kRows, 0xFF8A3FAF);
}

}  // namespace st
