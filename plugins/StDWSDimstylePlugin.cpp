#include "StDWSDimstylePlugin.h"

#include "OdDbDimStyleTableRecord.h"
#include "OdDbSymbolTable.h"
#include "OdError.h"
#include "OdResBuf.h"
#include "StIcon.h"

namespace st {

ODRX_DEFINE_MEMBERS(StDWSDimstylePlugin, StDWSPlugin);

namespace {

bool isReference(int code) {
  return code >= 320 && code <= 369;
}

constexpr int kTextStyleCode = 340;  // DIMTXSTY

// Whether `db` is of a release that stores the variable under `code`; a null drawing (none
// to compare with) does not restrict.
bool holds(const OdDbDatabase* db, int code) {
  return !db || OdDbDimStyleTableRecord::isDimVarHeldBy(code, db->formatRelease());
}

// A dimension variable's value as compared and shown: references by the referenced record's
// name (handles mean nothing across drawings), numbers in the width their group code has.
OdVariant dimVarValue(const OdResBuf& value, OdDbDatabase* db) {
  const int code = value.restype();
  if (isReference(code)) {
    OdDbSymbolTableRecordPtr record =
        OdDbSymbolTableRecord::cast(value.getObjectId(db).openObject().get());
    return OdVariant(record.isNull() ? OdString() : record->getName());
  }
  if (code >= 1 && code <= 9) return OdVariant(value.getString());
  if ((code >= 40 && code <= 59) || (code >= 140 && code <= 149))
    return OdVariant(value.getDouble());
  if (code >= 90 && code <= 99) return OdVariant(value.getInt32());
  return OdVariant(value.getInt16());
}

// Copies the standard's style into the drawing under `rule`; the drawing's id, or null.
OdDbObjectId cloneStyle(OdDbDatabase* drawing, const OdDbObjectId& standard,
                        OdDb::DuplicateRecordCloning rule) {
  try {
    OdDbObjectIdArray ids;
    ids.push_back(standard);
    OdDbIdMapping map;
    standard.database()->wblockCloneObjects(ids, drawing->getDimStyleTableId(), map, rule);
    OdDbIdPair pair(standard);
    return map.compute(pair) ? pair.value : OdDbObjectId();
  } catch (const OdError&) {
    return OdDbObjectId();
  }
}

}  // namespace

StDWSDimstylePlugin::StDWSDimstylePlugin()
    : StSymbolTablePlugin(L"Dimension styles",
                          L"Checks that the dimension styles of a drawing are those of its "
                          L"standards and have their dimension variables.",
                          L"dimension style", L"Dimension style", L"AcDbDimStyleTableRecord") {}

OdDbObjectId StDWSDimstylePlugin::tableOf(OdDbDatabase* db) const {
  return db ? db->getDimStyleTableId() : OdDbObjectId();
}

bool StDWSDimstylePlugin::isReserved(const OdString& name) const {
  return name.iCompare(L"Standard") == 0;
}

void StDWSDimstylePlugin::readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const {
  auto& style = static_cast<OdDbDimStyleTableRecord&>(record);
  // Only the variables both the drawing checked and the record's own drawing store (a drawing
  // before release 13 has no handles to name a text style, linetype or arrow block with); a
  // variable the record leaves out compares as its default.
  for (int code : OdDbDimStyleTableRecord::dimVarCodes()) {
    if (!holds(drawing(), code) || !holds(record.database(), code)) continue;
    OdResBufPtr value = style.getDimVar(code);
    if (value.isNull()) value = OdDbDimStyleTableRecord::dimVarDefault(code);
    OdVariant shown =
        value.isNull() ? OdVariant(OdString()) : dimVarValue(*value, record.database());
    // A style that names no text style uses the drawing's "Standard".
    if (code == kTextStyleCode && shown.getString().isEmpty())
      shown = OdVariant(OdString(L"Standard"));
    out.emplace_back(OdDbDimStyleTableRecord::dimVarName(code), shown);
  }
}

bool StDWSDimstylePlugin::applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) {
  // The copy brings only what the drawing's release stores; what the standard's release
  // cannot store is not the standard's to change, so the drawing's values are put back.
  OdDbDatabase* from = standard.database();
  std::vector<OdResBufPtr> kept;
  {
    OdDbDimStyleTableRecordPtr style = record.safeOpenObject();
    for (int code : OdDbDimStyleTableRecord::dimVarCodes())
      if (!holds(from, code))
        if (OdResBufPtr value = style->getDimVar(code); !value.isNull()) kept.push_back(value);
  }
  if (cloneStyle(record.database(), standard, OdDb::kDrcReplace) != record) return false;
  if (kept.empty()) return true;
  OdDbDimStyleTableRecordPtr style = record.safeOpenObject(OdDb::kForWrite);
  for (const OdResBufPtr& value : kept) style->setDimVar(value.get());
  return true;
}

StIconHandle StDWSDimstylePlugin::icon() const {
  static const char* const kRows[StIcon::kSize] = {
      "................", "#..............#", "#..............#", "#.#..........#.#",
      "###..........###", "################", "###..........###", "#.#..........#.#",
      "#..............#", "#..............#", "................", ".....######.....",
      ".....#.##.#.....", "......#..#......", "......####......", "................",
  };
  return stCreateIcon(kRows, 0xFFBF5F1F);
}

}  // namespace st
