#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OdAtomicFile.h"
#include "OdDbIdMapping.h"
#include "OdDbObjectId.h"
#include "OdResBuf.h"
#include "OdRxMacros.h"
#include "OdString.h"

class DxfDocument;
class OdDbDatabaseImpl;
class OdDbDatabaseReactor;
class OdDbDatabase;
using OdDbDatabasePtr = OdSmartPtr<OdDbDatabase>;

// A drawing: its objects, symbol tables and dictionaries over the tags of a DXF file.
//
// Loading indexes the file (one record per object, found by handle) and makes objects only
// when they are opened, so a large drawing loads about as fast as its file is parsed.
// Saving writes every object nobody changed exactly as it was read.
//
// Reference counted: hold it through OdDbDatabasePtr. Objects opened from it must be closed
// before it goes; its reactors are told goodbye when it goes.
class OdDbDatabase : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbDatabase);

  // A new drawing of release 2018 with the standard tables and objects: layer "0", linetypes
  // ByBlock, ByLayer and Continuous, text style and dimension style Standard, the blocks
  // *Model_Space and *Paper_Space with their layouts, and the named-object dictionary.
  // (createObject() gives the same.)
  static OdDbDatabasePtr createEmpty();
  // Reads a DXF file, ASCII or binary, of any release. Throws OdError from the file layer:
  // eFileNotFound, eFileAccessError, eDwgNotSupported, or eBadDxfFile with file, line (or
  // byte offset) and group code. A symbol table holding a record of another type than its
  // own is malformed too (eBadDxfFile at that record's group 0).
  static OdDbDatabasePtr readFile(const std::filesystem::path& path);
  // Reads a drawing held in memory; `name` stands for it in error messages.
  static OdDbDatabasePtr readBuffer(std::string bytes, const std::string& name);

  // Saves to `path` in the drawing's own release and form, or in the other form when
  // `binary` says so; the drawing's file name becomes `path`. Erased objects are left out.
  // The old file is replaced only once the new one is complete, as OdAtomicFile does with
  // `options`; failures throw OdError (eFileWriteError naming the path and the reason).
  void writeFile(const std::filesystem::path& path, std::optional<bool> binary = std::nullopt,
                 const OdAtomicFile::Options& options = {});
  // The bytes writeFile would write.
  std::string writeBuffer(std::optional<bool> binary = std::nullopt);

  // The bytes the drawing was read from (its file or buffer; for a new drawing, the
  // built-in empty drawing), as read, whatever changed since. Valid while the database lives.
  std::string_view originalBytes() const;
  // The file the drawing was read from or last saved to (empty for a new drawing).
  OdString getFilename() const;
  // $ACADVER as read ("AC1032"; empty when the file has none).
  OdString versionString() const;
  // The release number of $ACADVER (1032 for "AC1032"); 0 when unknown.
  int versionNumber() const;
  // The release whose rules say what the drawing stores: versionNumber(), or 1009 (release 12)
  // for a drawing that names none.
  int formatRelease() const;
  // The handle the next new object gets; every object made from now on has it or a higher one.
  OdDbHandle nextHandle() const;
  bool isBinary() const;
  // The code page strings are decoded with, as ICU names it ("windows-1252", "UTF-8").
  OdString encoding() const;
  // The number of decimal places lengths are shown with ($LUPREC), 0-8; 4 when the file has
  // none or a value outside that range.
  int getLUPREC() const;

  // A header variable ("$CLAYER") as a chain of result buffers, one per value (a point is
  // three, under 10, 20 and 30); null when the drawing has no such variable. Names compare
  // exactly, as the file spells them.
  OdResBufPtr getHeaderVariable(const OdString& name) const;
  // Gives the variable `name` the values of `values`, or adds it at the end of the header
  // when the drawing lacks it; every other variable is written as it was read. Throws
  // OdError(eInvalidInput) for a name not starting with '$', an empty chain or a value a
  // drawing cannot store under its group code.
  void setHeaderVariable(const OdString& name, const OdResBuf* values);

  // How an object refers to a symbol table record (see OdDbRecordLinks for the tags): by a
  // pointer group or extended-data handle, by its name as text, or as the container the object
  // belongs to (its owner link, a reactor), a link a record replacement cannot move.
  enum class RecordLink { kPointer, kName, kContainer };
  struct RecordReference {
    OdDbObjectId record;
    OdDbObjectId holder;
    RecordLink link;
  };
  // Every live object that refers to one of `records` (records of this drawing's symbol
  // tables; others and null ids are left out), in one walk over the whole drawing: one entry
  // per (record, holder, link), holders in file order. An object does not refer to itself; the
  // header is not read (its variables name records by name: see getHeaderVariable).
  std::vector<RecordReference> recordReferences(const OdDbObjectIdArray& records) const;
  // Points every pointer and name in each of `holders` that refers to the record `from` at the
  // record `to` of the same table, in place, leaving container links and everything else as
  // they are; returns how many tags changed. `done` counts the holders dealt with so far (an
  // erased one or one not referring counts too), so that after an exception it tells where
  // the work stopped. Opens each changed holder for write (reactors hear of the change).
  // Throws OdError: eInvalidInput when `from` and `to` are not records of one table of this
  // drawing, or what opening a holder for write throws.
  std::size_t retargetRecordReferences(const std::vector<OdDbObjectId>& holders,
                                       const OdDbObjectId& from, const OdDbObjectId& to,
                                       std::size_t& done);
  // After `record` was renamed from `oldName`: points every name in each of `holders` that
  // names the record by `oldName` at its new name, in place; pointers to the record stay as
  // they are. Returns how many tags changed; `done` and the exceptions as for
  // retargetRecordReferences (eInvalidInput when `record` is no record of this drawing).
  std::size_t renameRecordReferences(const std::vector<OdDbObjectId>& holders,
                                     const OdDbObjectId& record, const OdString& oldName,
                                     std::size_t& done);

  // Well-known objects; null ids when the drawing lacks them (a release-12 file has no
  // named-object dictionary).
  OdDbObjectId getNamedObjectsDictionaryId() const;
  OdDbObjectId getLayerTableId() const;
  OdDbObjectId getLinetypeTableId() const;
  OdDbObjectId getTextStyleTableId() const;
  OdDbObjectId getDimStyleTableId() const;
  OdDbObjectId getBlockTableId() const;
  OdDbObjectId getRegAppTableId() const;
  OdDbObjectId getModelSpaceId() const;
  OdDbObjectId getPaperSpaceId() const;
  // The linetype records ByLayer, ByBlock and Continuous, and layer "0".
  OdDbObjectId getLinetypeByLayerId() const;
  OdDbObjectId getLinetypeByBlockId() const;
  OdDbObjectId getLinetypeContinuousId() const;
  OdDbObjectId getLayerZeroId() const;

  // The object with `handle`, or a null id.
  OdDbObjectId getOdDbObjectId(const OdDbHandle& handle) const;
  // Number of objects the database knows (erased ones included).
  std::size_t numObjects() const;
  // Entities of model space and paper space, and objects of the OBJECTS section, as the
  // file holds them now (erased ones excluded).
  std::size_t countEntities() const;
  std::size_t countObjects() const;

  // Reactors are not owned: remove one before it goes. Adding one twice keeps one entry.
  void addReactor(OdDbDatabaseReactor* reactor);
  void removeReactor(OdDbDatabaseReactor* reactor);

  // Copies the records `ids` of this database into the symbol table `owner` of another
  // database, with what they refer to (a layer's linetype, a dimension style's text style
  // and linetypes) when the target lacks it. A record whose name the target table has is
  // kept (kDrcIgnore and the other rules) or overwritten keeping its handle (kDrcReplace).
  // `idMap` receives every source id with the target id it maps to. References between the
  // cloned records go by name and are translated at once, so `deferTranslation` changes
  // nothing. Throws OdError: eWrongDatabase when `owner` is of this database, eInvalidInput
  // when `owner` is not the table of the records' kind or an id is not a symbol table
  // record of this database, eNotImplementedYet for block records.
  void wblockCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                          OdDbIdMapping& idMap, OdDb::DuplicateRecordCloning drc,
                          bool deferTranslation = false);

  // What insert made.
  struct InsertResult {
    OdDbObjectId block;        // the new block record
    OdString blockName;        // its name
    OdDbObjectId reference;    // the insert of it in model space
    std::size_t entities = 0;  // entities copied into it (their sub-entities not counted)
  };
  // Inserts the drawing `source` into this one as a block, as a drawing inserted into another
  // in any CAD program: a new block holding copies of the source's model-space entities with
  // their sub-entities (attributes, vertices, SEQEND), and one insert of it in model space at
  // 0,0,0, scale 1, rotation 0, on the current layer ($CLAYER; layer "0" when that is
  // missing). The block is called `name` made a valid record name (characters a name cannot
  // hold become '_'; a release-12 drawing takes letters, digits, '$', '-' and '_' only, in
  // upper case, up to 31; "Block" for an empty name) and unique ("plan", "plan(2)", "plan(3)"...;
  // "PLAN_2" in release 12). The records the copies name (layers, linetypes, text styles, dimension
  // styles and the blocks that inserts and dimensions show, with what those hold in turn) are
  // copied when this drawing has none of that name and this drawing's record is used when it has
  // one; an anonymous block ("*D1") whose name is taken is copied under a free anonymous name
  // instead. Every new object gets a new handle and is appended as reactors see it, once its
  // tags are complete. Pointers of the copies to copied objects are translated, those to
  // anything else dropped (a plot style or material goes to layer "0"'s), and extended-data
  // handles that point outside what was copied become null handles; application groups
  // (reactors, extension dictionaries) are not copied.
  // A source of the same family of releases as this drawing (release 12 and older, or
  // release 13 and later) is copied tag for tag; the source is not changed. Throws OdError,
  // before anything changes: eWrongDatabase when `source` is this drawing, eNotImplementedYet
  // for drawings of the two families (naming both releases) or a drawing of release 13 or
  // later without a block table. Should a copy fail half-way, what it made is erased again
  // before the error goes on.
  InsertResult insert(const OdString& name, const OdDbDatabase& source);

  // Internal to TD_Db.
  OdDbDatabaseImpl& impl() const noexcept { return *impl_; }

 protected:
  OdDbDatabase();
  ~OdDbDatabase() override;

 private:
  // Points the pointers to the handle `fromHandle` (none for 0) and the names equal to
  // `fromName` (or to the raw bytes `fromRaw`) of records of table `tableKind` in `holders` at
  // the record `to`.
  std::size_t moveRecordLinks(const std::vector<OdDbObjectId>& holders, int tableKind,
                              const OdString& fromName, const std::string& fromRaw,
                              std::uint64_t fromHandle, const OdDbObjectId& to, std::size_t& done);

  std::unique_ptr<OdDbDatabaseImpl> impl_;
};
