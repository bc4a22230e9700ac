#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "OdDbDatabase.h"
#include "OdDbObjectId.h"

namespace st {

// Who refers to which record of a table, taken in one walk over the whole drawing (entities of
// every block with their attributes and vertices, table records, objects, extension
// dictionaries, extended data) and kept up to date as fixes move references, so that fixing
// every problem of a check walks the drawing once instead of once per problem.
//
// A reference is a pointer to the record or its name as text, wherever the format lets it
// stand (see OdDbDatabase::recordReferences): replacing the record moves it. Objects the
// record is the container of (its extension dictionary, objects it is a reactor of) are
// listed apart: they belong to the record, cannot be moved, and keep it.
class StReferenceIndex {
 public:
  // Indexes what refers to `records` (records of one table of `drawing`, which must outlive
  // the index).
  StReferenceIndex(OdDbDatabase* drawing, const OdDbObjectIdArray& records);

  // The objects that refer to `record`; empty when nothing does.
  const std::vector<OdDbObjectId>& referencesTo(const OdDbObjectId& record) const;
  // The objects `record` is the container of; empty when there are none.
  const std::vector<OdDbObjectId>& containedIn(const OdDbObjectId& record) const;
  // Points every reference to `from` at `to` (a record of the same table of the drawing), one
  // object at a time, and moves them in the index. Throws the kernel's OdError when an object
  // cannot be changed; the index then still lists under `from` what was not moved.
  void moveAll(const OdDbObjectId& from, const OdDbObjectId& to);
  // After `record` was renamed from `oldName`: points every name of it by `oldName` at its new
  // name; pointers stay. Throws as moveAll.
  void renameAll(const OdDbObjectId& record, const OdString& oldName);
  // The number of (record, referrer) pairs found by the walk.
  std::size_t size() const { return count_; }

 private:
  OdDbDatabase* drawing_;
  std::unordered_map<OdDbObjectId, std::vector<OdDbObjectId>> references_;
  std::unordered_map<OdDbObjectId, std::vector<OdDbObjectId>> containers_;
  std::size_t count_ = 0;
};

}  // namespace st
