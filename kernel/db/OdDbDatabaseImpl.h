#pragma once

// Internal to TD_Db: the state of an OdDbDatabase. The document holds the tags; the
// database adds one stub per object (found by handle, and by section position through a
// slot list parallel to each section's objects), the objects made so far, the reactors,
// and where the well-known tables and blocks are.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "DxfDocument.h"
#include "OdDbHandleIndex.h"
#include "OdDbObjectId.h"
#include "OdDbSlotList.h"
#include "OdDbStub.h"
#include "OdDbStubTable.h"
#include "OdString.h"

class OdDbDatabase;
class OdDbDatabaseReactor;
class OdDbObject;

class OdDbDatabaseImpl {
 public:
  // The symbol tables, by the name a file gives them after "0 TABLE / 2".
  enum TableKind {
    kVport,
    kLtype,
    kLayer,
    kStyle,
    kView,
    kUcs,
    kAppid,
    kDimstyle,
    kBlockRecord,
    kTableKinds
  };
  static const char* tableName(TableKind kind);
  static const char* recordType(TableKind kind);
  // The record type's kind ("LAYER" -> kLayer), or kTableKinds.
  static TableKind kindOfRecordType(std::string_view type);

  explicit OdDbDatabaseImpl(OdDbDatabase* self);
  ~OdDbDatabaseImpl();
  OdDbDatabaseImpl(const OdDbDatabaseImpl&) = delete;
  OdDbDatabaseImpl& operator=(const OdDbDatabaseImpl&) = delete;

  // Takes the document and indexes it. A symbol table that holds a record of another type
  // (a LAYERX among the LAYER records) makes the file malformed: throws OdError(eBadDxfFile)
  // naming the file, the record's line (or byte offset) and group code 0.
  void load(std::unique_ptr<DxfDocument> doc);
  DxfDocument& doc() const noexcept { return *doc_; }
  OdDbDatabase* self() const noexcept { return self_; }

  // The tags behind a stub.
  DxfObject& dxf(const OdDbStub* stub) const;
  // The object behind a stub, made on first use (with no references).
  OdDbObject* materialize(OdDbStub* stub);
  // Takes a new object that joined the database into its care.
  void adopt(OdDbObject* object) { objects_.push_back(object); }
  // Puts a table the file lacks into the document (TABLE head and ENDTAB), so records can
  // be added to it.
  void materializeTable(TableKind kind);
  OdDbStub* stubByHandle(std::uint64_t handle) const;
  std::size_t numStubs() const noexcept { return stubs_.size(); }
  // The stubs in the order they were made; unchecked: `position` < numStubs().
  OdDbStub* stubAt(std::size_t position) const noexcept { return &stubs_[position]; }
  // The stub of the object at a position, or null (section heads, ENDTAB, unindexed sections).
  OdDbStub* slot(std::size_t section, std::size_t index) const;
  // Checked: throws std::out_of_range for a section the document lacks.
  const OdDbSlotList& slots(std::size_t section) const { return slots_.at(section); }

  std::size_t sectionIndex(std::string_view name) const;  // SIZE_MAX when absent
  // The section called `name`, made (before EOF, or before `before` when that exists) when
  // the file lacks it.
  std::size_t ensureSection(std::string_view name);

  // Well-known objects (null when the drawing lacks them).
  OdDbStub* table(TableKind kind) const noexcept { return tables_[kind]; }
  OdDbStub* namedObjects() const noexcept { return namedObjects_; }
  OdDbStub* modelSpace();
  OdDbStub* paperSpace();
  bool isR12BlockTable() const noexcept { return r12Blocks_; }
  // Records of a table in file order, erased ones included.
  std::vector<OdDbStub*> tableRecords(const OdDbStub* table) const;
  // The record of `table` named `name` (case-insensitive), erased ones skipped; null if none.
  OdDbStub* findRecord(const OdDbStub* table, const OdString& name);
  // The record's name (group 2) without opening it.
  OdString recordName(const OdDbStub* record) const;
  void invalidateNames() noexcept { ++namesGeneration_; }
  // Keeps the name index of the record's table up to date when a record joins it or is erased
  // (a fix that replaces thousands of records looks names up between the changes); anything
  // else, or a table with two records of one name, falls back to invalidateNames.
  void recordAdded(OdDbStub* stub);
  void recordErased(OdDbStub* stub);
  // The same for a record renamed from `oldName` (its tags already hold the new name).
  void recordRenamed(OdDbStub* stub, const OdString& oldName);
  // The record of table `kind` called `name`, or a null id.
  OdDbObjectId recordByName(TableKind kind, const OdString& name) {
    return OdDbObjectId(findRecord(tables_[kind], name));
  }
  // The name of `id` as a live record of table `kind` of this database, for storing a
  // reference by name. Throws OdError: eNullObjectId, eWrongDatabase, eWasErased, or
  // eInvalidInput when it is a record of another table.
  OdString checkedRecordName(const OdDbObjectId& id, TableKind kind);
  // Whether `stub` is a record of table `kind` of this database, in constant time (erased
  // ones included; model and paper space stand-ins the file lacks are not).
  bool isRecordOf(const OdDbStub* stub, TableKind kind) const;
  // The kind of table a stub is the head of, or kTableKinds.
  TableKind tableKindOf(const OdDbStub* table) const;
  // The entities of a block record, in file order, without sub-entities (vertices,
  // attributes, SEQEND) and, unless `withErased`, without erased ones.
  std::vector<OdDbStub*> blockEntities(const OdDbStub* record, bool withErased) const;
  // The position in the BLOCKS section of the BLOCK entity that opens `record`'s definition,
  // or SIZE_MAX when it has none.
  std::size_t blockBeginIndex(const OdDbStub* record) const;
  std::size_t blocksSection() const noexcept { return blocksSection_; }
  // The entities following `entity` that belong to it (VERTEX/ATTRIB ... SEQEND).
  std::vector<OdDbStub*> followers(const OdDbStub* entity) const;
  // Where a new entity of `record` goes: {section, index}.
  std::pair<std::size_t, std::size_t> entityInsertPosition(const OdDbStub* record);
  // Gives the new block record `record` of a release-13-or-later drawing the BLOCK and ENDBLK
  // entities that open and close its definition, at the end of the BLOCKS section, so that
  // entities can be added to it; a name starting with '*' makes the BLOCK say the block is
  // anonymous (flag 1). Does nothing when the record has a BLOCK already.
  void defineBlock(OdDbStub* record);
  // Sets the bits `flags` in group 70 of the BLOCK of `record` (2: the block has attribute
  // definitions); does nothing for a record without a BLOCK.
  void addBlockFlags(const OdDbStub* record, int flags);
  bool isPaperSpaceRecord(const OdDbStub* record);

  // A new object in the document, made of `tags` (of this document) at `index` of
  // `section`, with a fresh handle, which the caller writes into the tags.
  OdDbStub* insertObject(std::size_t section, std::size_t index, std::vector<DxfTag> tags);
  std::uint64_t newHandle();
  std::uint64_t nextHandle() const noexcept { return nextHandle_; }
  // Tags of another document's object remade in this one (strings re-encoded).
  std::vector<DxfTag> importTags(const DxfObject& source);

  // Drops erased objects from the document (they stay readable as detached objects) and
  // updates $HANDSEED; done before saving.
  void prepareSave();

  std::vector<OdDbDatabaseReactor*>& reactors() noexcept { return reactors_; }
  void fireModified(const OdDbObject* object);
  void fireOpenedForModify(const OdDbObject* object);
  void fireAppended(const OdDbObject* object);
  void fireErased(const OdDbObject* object, bool erased);

  bool hasHandles() const noexcept { return hasHandles_; }
  std::string fileName;

 private:
  OdDbStub* newStub(std::uint64_t handle, std::uint32_t section, std::uint32_t index);
  // Gives the stubs of a freshly loaded document their handles: the file's, or a new one for
  // an object without a handle or with one an earlier object took. Then indexes them.
  void assignLoadedHandles(std::uint64_t handSeed);
  OdDbStub* detachedStub(std::vector<DxfTag> tags, std::uint8_t flags);
  void indexTables(std::size_t section);
  void indexR12Blocks();
  OdDbStub* findBlockRecord(std::wstring_view upperName);

  OdDbDatabase* self_;
  std::unique_ptr<DxfDocument> doc_;
  OdDbStubTable stubs_;
  OdDbHandleIndex byHandle_{stubs_};
  std::vector<OdDbSlotList> slots_;
  std::vector<std::unique_ptr<DxfObject>> detached_;
  std::vector<OdDbObject*> objects_;
  std::vector<OdDbDatabaseReactor*> reactors_;
  OdDbStub* tables_[kTableKinds] = {};
  OdDbStub* namedObjects_ = nullptr;
  OdDbStub* modelSpace_ = nullptr;
  OdDbStub* paperSpace_ = nullptr;
  bool r12Blocks_ = false;
  bool hasHandles_ = false;
  bool handSeedDirty_ = false;
  std::uint64_t nextHandle_ = 1;
  std::size_t entitiesSection_ = SIZE_MAX;
  std::size_t blocksSection_ = SIZE_MAX;
  std::size_t tablesSection_ = SIZE_MAX;

  struct NameIndex {
    std::uint64_t generation = 0;
    std::unordered_map<std::wstring, OdDbStub*> byName;
    bool duplicates = false;  // some name is held by more than one record
  };
  // The current name index of the table `stub` is a record of, or null.
  NameIndex* currentIndexOf(const OdDbStub* stub);
  std::unordered_map<const OdDbStub*, NameIndex> names_;
  std::uint64_t namesGeneration_ = 1;
};
