#pragma once

// Internal to TD_Db: copies symbol table records from one database into another for
// OdDbDatabase::wblockCloneObjects.
//
// A record's tags are copied whole except what ties them to the source: the handle, the
// owner, the reactor and extension dictionary groups. References by handle to records of
// other tables (a dimension style's text style and linetypes, a complex linetype's text
// style) are cloned along when the target lacks a record of that name and mapped to the
// target's record when it has one; references by name (a layer's linetype) likewise make
// sure the target has the record. A reference to a block (a dimension style's arrowheads)
// goes to the target's block of that name, and a block the target lacks is copied in whole:
// its record, its BLOCK and ENDBLK and its entities, with the layers, linetypes and text
// styles these name. Handles to other objects are pointed at the target's
// counterparts of layer "0" (plot style, material) or dropped. Applications named in
// extended data are registered in the target.

#include <functional>

#include "OdDb.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbIdMapping.h"

class OdDbCloner {
 public:
  OdDbCloner(OdDbDatabaseImpl& source, OdDbDatabaseImpl& target, OdDbIdMapping& map)
      : source_(source), target_(target), map_(map) {}

  // Clones `record` (a record of table `kind` of the source) under rule `drc` and returns
  // the target record it maps to.
  OdDbObjectId clone(OdDbStub* record, OdDbDatabaseImpl::TableKind kind,
                     OdDb::DuplicateRecordCloning drc, bool primary);

  // The target's record of table `kind` named `name`, or the source's cloned into the target
  // when the target lacks one (kDrcIgnore); null when neither has it.
  OdDbObjectId ensureByName(OdDbDatabaseImpl::TableKind kind, const OdString& name);
  // The target object a copy's reference to the source object `ref` goes to: what the map
  // says it became, else for a symbol table record the target's record of that name (made
  // as ensureByName and ensureBlock make it); null when there is none.
  OdDbObjectId mapReference(OdDbStub* ref);
  // Points the pointer groups of a copied `body` (tags of the target) at the target's
  // objects (mapReference; a plot style or material that maps to nothing goes to layer
  // "0"'s), dropping those that map to nothing; extended data is left as it is.
  void translate(std::vector<DxfTag>& body);
  // Registers in the target the applications that name extended data in `body`.
  void registerApps(const std::vector<DxfTag>& body);
  // Who brings blocks over when a copy names or points to one: by default ensureBlock
  // below; a caller that copies blocks its own way (under other names, with notifications)
  // puts its function here, which gets the source block's name and returns the target's
  // block record (null when there is none).
  void setBlockResolver(std::function<OdDbObjectId(const OdString&)> resolver) {
    blockResolver_ = std::move(resolver);
  }

 private:
  // The target's block called `name`, copied in from the source's when the target lacks it;
  // null when neither has it or a release-12 drawing (which keeps blocks without records)
  // takes part.
  OdDbObjectId ensureBlock(const OdString& name);
  OdDbObjectId copyBlock(OdDbStub* record);
  // Makes sure the target has the records an entity of the copied block names by name.
  void ensureEntityNames(const DxfObject& entity);
  OdDbObjectId layerZeroReference(int code);

  OdDbDatabaseImpl& source_;
  OdDbDatabaseImpl& target_;
  OdDbIdMapping& map_;
  std::function<OdDbObjectId(const OdString&)> blockResolver_;
};
