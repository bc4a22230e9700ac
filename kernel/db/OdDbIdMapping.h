#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "OdDb.h"
#include "OdDbObjectId.h"

class OdDbDatabase;

// One entry of an id mapping: an object of the source database (key) and the object of the
// target database it became (value).
struct OdDbIdPair {
  OdDbIdPair() = default;
  explicit OdDbIdPair(const OdDbObjectId& k) : key(k) {}
  OdDbIdPair(const OdDbObjectId& k, const OdDbObjectId& v, bool cloned, bool primary = true)
      : key(k), value(v), isCloned(cloned), isPrimary(primary) {}

  OdDbObjectId key;
  OdDbObjectId value;
  bool isCloned = false;  // a copy was made or written over; false when an existing
                          // record was kept
  bool isPrimary = true;  // asked for by the caller, not brought along as a reference
  bool isOwnerXlated = true;
};

// The record of a cloning operation: which source object became which target object. Filled
// by OdDbDatabase::wblockCloneObjects; a plain value, not shared.
class OdDbIdMapping {
 public:
  OdDbIdMapping() = default;

  // Adds or replaces the pair for `pair.key`.
  void assign(const OdDbIdPair& pair);
  // Fills `pair.value` and the flags for `pair.key`; false (pair unchanged) when absent.
  bool compute(OdDbIdPair& pair) const;
  // Removes the pair for `key`; false when absent.
  bool del(const OdDbObjectId& key);

  OdDbDatabase* origDb() const noexcept { return origDb_; }
  OdDbDatabase* destDb() const noexcept { return destDb_; }
  void setOrigDb(OdDbDatabase* db) noexcept { origDb_ = db; }
  void setDestDb(OdDbDatabase* db) noexcept { destDb_ = db; }
  OdDb::DuplicateRecordCloning duplicateRecordCloning() const noexcept { return drc_; }
  void setDuplicateRecordCloning(OdDb::DuplicateRecordCloning drc) noexcept { drc_ = drc; }

  // The pairs in the order they were first assigned.
  std::size_t size() const noexcept { return pairs_.size(); }
  const OdDbIdPair& pairAt(std::size_t index) const;  // throws OdError_InvalidIndex

 private:
  std::vector<OdDbIdPair> pairs_;
  std::unordered_map<OdDbObjectId, std::size_t> index_;
  OdDbDatabase* origDb_ = nullptr;
  OdDbDatabase* destDb_ = nullptr;
  OdDb::DuplicateRecordCloning drc_ = OdDb::kDrcNotApplicable;
};
