#pragma once

// Drawings built with the kernel for tests, and read back through real files as a user's
// drawing arrives.

#include <filesystem>
#include <vector>

#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "OdDbLinetypeTableRecord.h"
#include "OdDbText.h"

namespace testsupport {

// Saves `db` as `file` and reads the file back.
// The entities of a block record (model space, say), in its order; erased ones left out.
inline std::vector<OdDbObjectId> entitiesOf(const OdDbObjectId& block) {
  std::vector<OdDbObjectId> ids;
  OdDbBlockTableRecordPtr record = block.safeOpenObject();
  for (OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step())
    ids.push_back(it->objectId());
  return ids;
}

inline OdDbDatabasePtr saveAndReload(OdDbDatabase& db, const std::filesystem::path& file) {
  db.writeFile(file);
  return OdDbDatabase::readFile(file);
}

inline OdDbObjectId addLinetype(OdDbDatabase& db, const wchar_t* name, const wchar_t* comments,
                                std::vector<double> dashes) {
  OdDbLinetypeTablePtr table = db.getLinetypeTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLinetypeTableRecordPtr linetype = OdDbLinetypeTableRecord::createObject();
  linetype->setName(name);
  linetype->setComments(comments);
  linetype->setDashes(dashes);
  return table->add(linetype.get());
}

// A layer; the lineweight is set only when one is given, and the linetype (by name) too.
inline OdDbObjectId addLayer(OdDbDatabase& db, const wchar_t* name, short color,
                             OdDb::LineWeight weight = OdDb::kLnWtByLnDefault,
                             const wchar_t* linetype = nullptr) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  OdDbObjectId id = table->add(layer.get());
  layer->setColorIndex(color);
  if (weight != OdDb::kLnWtByLnDefault) layer->setLineWeight(weight);
  if (linetype) {
    OdDbLinetypeTablePtr linetypes = db.getLinetypeTableId().safeOpenObject();
    layer->setLinetypeObjectId(linetypes->getAt(linetype));
  }
  return id;
}

// A text in `block` (model space when null) on `layer`.
inline OdDbObjectId addText(OdDbDatabase& db, const wchar_t* layer, const wchar_t* contents,
                            OdDbObjectId block = OdDbObjectId()) {
  OdDbBlockTableRecordPtr owner =
      (block.isNull() ? db.getModelSpaceId() : block).safeOpenObject(OdDb::kForWrite);
  OdDbTextPtr text = OdDbText::createObject();
  OdDbObjectId id = owner->appendOdDbEntity(text.get());
  text->setTextString(contents);
  OdDbLayerTablePtr layers = db.getLayerTableId().safeOpenObject();
  text->setLayer(layers->getAt(layer));
  return id;
}

}  // namespace testsupport
