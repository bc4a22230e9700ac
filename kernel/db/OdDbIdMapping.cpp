#include "OdDbIdMapping.h"

#include "OdError.h"

void OdDbIdMapping::assign(const OdDbIdPair& pair) {
  auto [it, added] = index_.try_emplace(pair.key, pairs_.size());
  if (added)
    pairs_.push_back(pair);
  else
    pairs_[it->second] = pair;
}

bool OdDbIdMapping::compute(OdDbIdPair& pair) const {
  auto it = index_.find(pair.key);
  if (it == index_.end()) return false;
  pair = pairs_[it->second];
  return true;
}

bool OdDbIdMapping::del(const OdDbObjectId& key) {
  auto it = index_.find(key);
  if (it == index_.end()) return false;
  std::size_t at = it->second;
  index_.erase(it);
  pairs_.erase(pairs_.begin() + static_cast<std::ptrdiff_t>(at));
  for (auto& entry : index_)
    if (entry.second > at) --entry.second;
  return true;
}

const OdDbIdPair& OdDbIdMapping::pairAt(std::size_t index) const {
  if (index >= pairs_.size()) throw OdError_InvalidIndex();
  return pairs_[index];
}
