#pragma once

#include "OdDbSymbolTableRecord.h"

class OdDbSymbolTableIterator;
using OdDbSymbolTableIteratorPtr = OdSmartPtr<OdDbSymbolTableIterator>;

// A symbol table: named records of one kind, in file order. Names compare without regard to
// case ("Walls" finds "WALLS"); erased records are not found unless asked for.
class OdDbSymbolTable : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbSymbolTable);

  // The record called `name`, or a null id.
  OdDbObjectId getAt(const OdString& name, bool getErased = false) const;
  // The record called `name` opened in `mode`, or null when there is none.
  OdDbSymbolTableRecordPtr getAt(const OdString& name, OdDb::OpenMode mode,
                                 bool getErased = false) const;
  bool has(const OdString& name) const { return !getAt(name).isNull(); }
  bool has(const OdDbObjectId& id) const;

  // Adds a new record and returns its id; the record stays open for write until its
  // references go. Needs the table open for write. Throws OdError: eInvalidInput for a
  // record of another kind, one already in a drawing, or one without a name;
  // eDuplicateRecordName when the name is taken. A new block record comes with the empty
  // definition (BLOCK and ENDBLK) that entities are appended to; a name starting with '*'
  // makes an anonymous block.
  OdDbObjectId add(OdDbSymbolTableRecord* record);

  // An iterator over the records as they are now.
  OdDbSymbolTableIteratorPtr newIterator(bool atBeginning = true, bool skipErased = true) const;

 protected:
  OdDbSymbolTable() = default;
};

using OdDbSymbolTablePtr = OdSmartPtr<OdDbSymbolTable>;

// Walks the records of a symbol table as they were when the iterator was made.
class OdDbSymbolTableIterator : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbSymbolTableIterator);

  void start(bool atBeginning = true, bool skipErased = true);
  bool done() const noexcept { return pos_ < 0 || pos_ >= static_cast<long>(ids_.size()); }
  void step(bool forward = true, bool skipErased = true);
  OdDbObjectId getRecordId() const { return done() ? OdDbObjectId() : ids_[pos_]; }
  OdDbSymbolTableRecordPtr getRecord(OdDb::OpenMode mode = OdDb::kForRead,
                                     bool openErased = false) const;
  // Moves to `id`; false (position unchanged) when it is not a record of the table.
  bool seek(const OdDbObjectId& id);

  void setIds(OdDbObjectIdArray ids) { ids_ = std::move(ids); }

 protected:
  OdDbSymbolTableIterator() = default;

 private:
  void skip(bool forward);
  OdDbObjectIdArray ids_;
  long pos_ = 0;
};
