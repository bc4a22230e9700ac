#include "StDWSDimstylePlugin.h"

#include "OdDbDimStyleTableRecord.h"
#include "OdDbDimension.h"
#include "OdDbFcf.h"
#include "OdDbLeader.h"
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
  if ((code >= 40 && code <= 49) || (code >= 140 && code <= 149))
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
  // A drawing before release 13 has no handles, so it cannot name a text style, linetype or
  // arrow block in a dimension style: those are compared only where the drawing can hold them.
  const bool byHandle = drawing() && drawing()->versionNumber() >= 1012;
  for (int code : OdDbDimStyleTableRecord::dimVarCodes()) {
    if (isReference(code) && !byHandle) continue;
    OdResBufPtr value = style.getDimVar(code);
    if (!value.isNull())
      out.emplace_back(OdDbDimStyleTableRecord::dimVarName(code),
                       dimVarValue(*value, record.database()));
  }
}

bool StDWSDimstylePlugin::applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) {
  return cloneStyle(record.database(), standard, OdDb::kDrcReplace) == record;
}

OdDbObjectId StDWSDimstylePlugin::copyIn(OdDbDatabase* drawing, OdDbDatabase* standard,
                                         const OdString& name) {
  OdDbSymbolTablePtr styles = standard->getDimStyleTableId().safeOpenObject();
  const OdDbObjectId id = styles->getAt(name);
  return id.isNull() ? id : cloneStyle(drawing, id, OdDb::kDrcIgnore);
}

void StDWSDimstylePlugin::collectReferences(OdDbDatabase* drawing, StReferenceIndex& index) const {
  StReferenceIndex::forEachEntity(drawing, [&](OdDbEntity& entity) {
    OdDbObjectId style;
    if (OdDbDimensionPtr dimension = OdDbDimension::cast(&entity); !dimension.isNull())
      style = dimension->dimensionStyle();
    else if (OdDbLeaderPtr leader = OdDbLeader::cast(&entity); !leader.isNull())
      style = leader->dimensionStyle();
    else if (OdDbFcfPtr tolerance = OdDbFcf::cast(&entity); !tolerance.isNull())
      style = tolerance->dimensionStyle();
    index.add(style, {entity.objectId(), StReferenceKind::kEntityDimStyle});
  });
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
