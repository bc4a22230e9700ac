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
  // Each holder joins the target as soon as it is moved, so that an error part way leaves
  // the index telling the truth about what was moved and what was not.
  for (std::size_t i = 0; i < moving.size(); ++i) {
    if (moving[i].isErased()) continue;  // erased since: refers to nothing any more
    try {
      drawing_->retargetRecordReferences(moving[i], from, to);
    } catch (...) {
      std::vector<OdDbObjectId>& left = references_[from];
      left.insert(left.end(), moving.begin() + static_cast<std::ptrdiff_t>(i), moving.end());
      throw;
    }
    target.push_back(moving[i]);
  }
}

}  // namespace st
