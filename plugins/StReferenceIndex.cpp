#include "StReferenceIndex.h"

#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbDimension.h"
#include "OdDbFcf.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLeader.h"
#include "OdDbMText.h"
#include "OdDbText.h"
#include "OdResBuf.h"

namespace st {

void StReferenceIndex::add(const OdDbObjectId& record, const StReference& reference) {
  if (record.isNull() || skipped_.count(record)) return;
  references_[record].push_back(reference);
  ++count_;
}

const std::vector<StReference>& StReferenceIndex::referencesTo(const OdDbObjectId& record) const {
  static const std::vector<StReference> kNone;
  auto it = references_.find(record);
  return it == references_.end() ? kNone : it->second;
}

void StReferenceIndex::addHandleReferences(OdDbDatabase* drawing,
                                           const OdDbObjectIdArray& records) {
  for (const auto& [record, holder] : drawing->handleReferences(records))
    if (!skipped_.count(record)) handleHolders_[record].push_back(holder);
}

bool StReferenceIndex::isHeldByHandle(const OdDbObjectId& record) const {
  auto it = handleHolders_.find(record);
  if (it == handleHolders_.end()) return false;
  for (const OdDbObjectId& holder : it->second)
    if (record.database()->refersByHandle(holder, record)) return true;
  return false;
}

void StReferenceIndex::moveAll(const OdDbObjectId& from, const OdDbObjectId& to) {
  if (from == to) return;
  auto it = references_.find(from);
  if (it == references_.end()) return;
  std::vector<StReference> moving = std::move(it->second);
  references_.erase(it);
  std::vector<StReference>& target = references_[to];
  // Each reference joins the target as soon as it is moved, so that an error part way leaves
  // the index telling the truth about what was moved and what was not.
  for (std::size_t i = 0; i < moving.size(); ++i) {
    if (moving[i].holder.isErased()) continue;  // erased since: refers to nothing any more
    try {
      retarget(moving[i], to);
    } catch (...) {
      std::vector<StReference>& left = references_[from];
      left.insert(left.end(), moving.begin() + static_cast<std::ptrdiff_t>(i), moving.end());
      throw;
    }
    target.push_back(moving[i]);
  }
}

void StReferenceIndex::retarget(const StReference& reference, const OdDbObjectId& to) {
  OdDbObjectPtr object = reference.holder.safeOpenObject(OdDb::kForWrite);
  switch (reference.kind) {
    case StReferenceKind::kEntityLayer:
      OdDbEntity::cast(object.get())->setLayer(to);
      break;
    case StReferenceKind::kEntityLinetype:
      OdDbEntity::cast(object.get())->setLinetype(to);
      break;
    case StReferenceKind::kLayerLinetype:
      OdDbLayerTableRecord::cast(object.get())->setLinetypeObjectId(to);
      break;
    case StReferenceKind::kTextStyle:
      if (OdDbTextPtr text = OdDbText::cast(object.get()); !text.isNull())
        text->setTextStyle(to);
      else
        OdDbMText::cast(object.get())->setTextStyle(to);
      break;
    case StReferenceKind::kDimStyleTextStyle:
      OdDbDimStyleTableRecord::cast(object.get())->setDimtxsty(to);
      break;
    case StReferenceKind::kDimStyleLinetype:
      OdDbDimStyleTableRecord::cast(object.get())
          ->setDimVar(OdResBuf::newRb(reference.code, to.getHandle()).get());
      break;
    case StReferenceKind::kEntityDimStyle:
      if (OdDbDimensionPtr dimension = OdDbDimension::cast(object.get()); !dimension.isNull())
        dimension->setDimensionStyle(to);
      else if (OdDbLeaderPtr leader = OdDbLeader::cast(object.get()); !leader.isNull())
        leader->setDimensionStyle(to);
      else
        OdDbFcf::cast(object.get())->setDimensionStyle(to);
      break;
  }
}

void StReferenceIndex::forEachEntity(OdDbDatabase* db,
                                     const std::function<void(OdDbEntity&)>& visit) {
  OdDbBlockTablePtr blocks = db->getBlockTableId().safeOpenObject();
  for (auto block = blocks->newIterator(); !block->done(); block->step()) {
    OdDbBlockTableRecordPtr record = block->getRecord();
    for (auto it = record->newIterator(); !it->done(); it->step()) {
      OdDbEntityPtr entity = OdDbEntity::cast(it->entity().get());
      if (entity.isNull()) continue;
      visit(*entity);
      for (const OdDbObjectId& id : entity->subEntityIds()) {
        if (id.isErased()) continue;
        OdDbEntityPtr part = OdDbEntity::cast(id.openObject().get());
        if (!part.isNull()) visit(*part);
      }
    }
  }
}

}  // namespace st
