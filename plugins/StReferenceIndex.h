#pragma once

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdDbObjectId.h"

namespace st {

// How an object refers to a symbol table record, so that the reference can be moved.
enum class StReferenceKind {
  kEntityLayer,        // an entity's layer
  kEntityLinetype,     // an entity's linetype
  kLayerLinetype,      // a layer's linetype
  kTextStyle,          // a text's, attribute definition's or multi-line text's style
  kDimStyleTextStyle,  // a dimension style's text style (DIMTXSTY)
  kDimStyleLinetype,   // a dimension style's linetypes (DIMLTYPE, DIMLTEX1, DIMLTEX2)
  kEntityDimStyle,     // a dimension's, leader's or tolerance's dimension style
};

struct StReference {
  OdDbObjectId holder;  // the object that holds the reference
  StReferenceKind kind;
  int code = 0;  // for kDimStyleLinetype: the group code of the variable
};

// Who refers to which record of one kind, taken in one walk over the drawing and kept up to
// date as fixes move references, so that fixing every problem of a check walks the entities
// a bounded number of times instead of once per problem.
//
// The index lists what a fix may move: entities of every block (model space, layouts, block
// definitions) with their attributes, vertices and SEQENDs, layers, dimension styles. Apart
// from these it notes the objects that refer to a record by handle (a linetype's text style,
// an object of a type the kernel has no class for), which cannot be moved: a record such an
// object still names must be kept.
class StReferenceIndex {
 public:
  // Adds `reference` to the records that refer to `record`.
  void add(const OdDbObjectId& record, const StReference& reference);
  // The references to `record`; empty when nothing refers to it.
  const std::vector<StReference>& referencesTo(const OdDbObjectId& record) const;
  // Points every reference to `from` at `to` (a record of the same table of the same
  // drawing), and moves them in the index. Throws the kernel's OdError when an object
  // cannot be opened for write.
  void moveAll(const OdDbObjectId& from, const OdDbObjectId& to);
  // References to `record` are not listed from now on (records that are never replaced).
  void skipReferencesTo(const OdDbObjectId& record) { skipped_.insert(record); }
  // Notes the objects of `drawing` that refer to any of `records` by handle, in one walk.
  void addHandleReferences(OdDbDatabase* drawing, const OdDbObjectIdArray& records);
  // Whether an object noted by addHandleReferences still refers to `record` by handle.
  bool isHeldByHandle(const OdDbObjectId& record) const;
  // The number of references added.
  std::size_t size() const { return count_; }

  // Points one reference at `to`.
  static void retarget(const StReference& reference, const OdDbObjectId& to);
  // Calls `visit` with every entity of every block of `db`, and with the attributes,
  // vertices and SEQEND that belong to it, each open for read.
  static void forEachEntity(OdDbDatabase* db, const std::function<void(OdDbEntity&)>& visit);

 private:
  std::unordered_map<OdDbObjectId, std::vector<StReference>> references_;
  std::unordered_set<OdDbObjectId> skipped_;
  std::unordered_map<OdDbObjectId, std::vector<OdDbObjectId>> handleHolders_;
  std::size_t count_ = 0;
};

}  // namespace st
