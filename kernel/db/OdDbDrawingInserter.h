#pragma once

// Internal to TD_Db: inserts one drawing into another as a block, for OdDbDatabase::insert
// (whose header states what the caller sees).
//
// Entities are copied tag for tag: the tags of the source object are remade in the target's
// document, without the handle, the owner and the application groups of their common part;
// the target gives a new handle and the new owner. Records the copies name are brought over
// by OdDbCloner, which shares this class's id map, so a pointer of a copy to a copied object
// of any kind is translated through one map. Blocks go through resolveBlock, also when the
// cloner meets one (a dimension style's arrow), so every block copy is made here.
//
// The copies of one block are made in three steps: every name they use is resolved first
// (which may copy other blocks and records, anywhere in the document), then the copies are
// placed one after the other in the block, then their pointers are translated, once every
// object they may point to has its counterpart. Reactors hear of the new objects at the end,
// when their tags are complete.

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "OdDbCloner.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbIdMapping.h"

class OdDbDrawingInserter {
 public:
  // Checks that `source` can go into `target` (see OdDbDatabase::insert for what throws).
  OdDbDrawingInserter(OdDbDatabaseImpl& source, OdDbDatabaseImpl& target);

  // The insert: the block, its copies, the insert in model space. On an error what was made
  // is erased again and the error goes on.
  OdDbDatabase::InsertResult insert(const OdString& name);

  // `wanted` made a valid block name of the target that no block of it has.
  OdString freeBlockName(const OdString& wanted);

 private:
  // The target's block for the source's block `name`: the target's own when it has one of
  // that name (unless it is anonymous), else a copy; null when neither drawing has it.
  OdDbObjectId resolveBlock(const OdString& name);
  // A new block `name` of the target, empty, opened like the source's `sourceRecord` (base
  // point, flags, description) or from scratch when that is null; returns its record (in a
  // drawing without a block table, as release 12 has none, its BLOCK entity). `flags` is the group
  // 70 of a block from scratch.
  OdDbStub* makeBlock(const OdString& name, OdDbStub* sourceRecord, int flags);
  // Copies `entities` of the source (top-level ones) and what belongs to them into the block
  // `record` of the target; returns how many top-level entities were copied.
  std::size_t copyEntities(const std::vector<OdDbStub*>& entities, OdDbStub* record);
  OdDbStub* copyEntity(OdDbStub* entity, std::size_t section, std::size_t index,
                       const std::string& owner);
  // Makes sure the target has what `entity` names: layer, linetype, text style, dimension
  // style, block.
  void resolveNames(const DxfObject& entity);
  // The tags of `src` remade in the target without its type, handle, owner and the
  // application groups of its common part; the block name of an insert or dimension becomes
  // its name in the target.
  std::vector<DxfTag> bodyOf(const DxfObject& src);
  // Places an object made of `type` and `body` at `index` of `section`, with a new handle in
  // group `handleCode` and, in a drawing of release 13 or later, the owner `owner`.
  OdDbStub* place(std::size_t section, std::size_t index, const DxfTag& type,
                  std::vector<DxfTag> body, int handleCode, const std::string& owner);
  // Translates the pointers and extended-data handles of a placed copy.
  void translate(OdDbStub* made);
  // Erases every object made since the stub count was `firstNew`.
  void undo(std::size_t firstNew);

  OdDbDatabaseImpl& source_;
  OdDbDatabaseImpl& target_;
  OdDbIdMapping map_;
  OdDbCloner cloner_;
  bool modern_;  // release 13 or later: subclass markers, owners and block records
  // Source block names (upper case) and the names their blocks have in the target.
  std::unordered_map<std::wstring, OdString> blockNames_;
  // Objects made here, in order, for the reactors to hear of once complete.
  std::vector<OdDbStub*> made_;
};
