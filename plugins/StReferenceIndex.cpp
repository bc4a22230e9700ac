#include "StReferenceIndex.h"

namespace st {

namespace {

const std::vector<OdDbObjectId>& listed(
    const std::unordered_map<OdDbObjectId, std::vector<OdDbObjectId>>& map,
    const OdDbObjectId& record) {
  static const std::vector<OdDbObjectId> kNone;
  auto it = map.find(record);
  return it == map.end() ? kNone : it->second;
}

}  // namespace

StReferenceIndex::StReferenceIndex(OdDbDatabase* drawing, const OdDbObjectIdArray& records)
    : drawing_(drawing) {
  for (const OdDbDatabase::RecordReference& reference : drawing->recordReferences(records)) {
    auto& list = reference.link == OdDbDatabase::RecordLink::kContainer
                     ? containers_[reference.record]
                     : references_[reference.record];
    // An object naming a record twice (by handle and by name) is listed once.
    if (list.empty() || list.back() != reference.holder) list.push_back(reference.holder);
    ++count_;
  }
}

const std::vector<OdDbObjectId>& StReferenceIndex::referencesTo(const OdDbObjectId& record) const {
  return listed(references_, record);
}

const std::vector<OdDbObjectId>& StReferenceIndex::containedIn(const OdDbObjectId& record) const {
  return listed(containers_, record);
}

void StReferenceIndex::moveAll(const OdDbObjectId& from, const OdDbObjectId& to) {
  if (from == to) return;
  auto it = references_.find(from);
  if (it == references_.end()) return;
  std::vector<OdDbObjectId> moving = std::move(it->second);
  references_.erase(it);
  std::vector<OdDbObjectId>& target = references_[to];
  // Every holder is changed in one call; when one cannot be, those before it have moved and
  // the index says so.
  std::size_t done = 0;
  try {
    drawing_->retargetRecordReferences(moving, from, to, done);
  } catch (...) {
    target.insert(target.end(), moving.begin(), moving.begin() + static_cast<std::ptrdiff_t>(done));
    std::vector<OdDbObjectId>& left = references_[from];
    left.insert(left.end(), moving.begin() + static_cast<std::ptrdiff_t>(done), moving.end());
    throw;
  }
  for (const OdDbObjectId& holder : moving)
    if (!holder.isErased()) target.push_back(holder);
}

void StReferenceIndex::renameAll(const OdDbObjectId& record, const OdString& oldName) {
  auto it = references_.find(record);
  if (it == references_.end()) return;
  std::size_t done = 0;
  drawing_->renameRecordReferences(it->second, record, oldName, done);
}

}  // namespace st
