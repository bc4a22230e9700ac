#pragma once

#include <cstdint>
#include <vector>

#include "OdDbObject.h"

class OdDbDictionaryIterator;
using OdDbDictionaryIteratorPtr = OdSmartPtr<OdDbDictionaryIterator>;

// A dictionary: objects of the drawing under text keys, in the order the file stores them
// (new entries go last). Keys compare without regard to case, as users expect of names.
// Entries whose object is erased are not seen.
class OdDbDictionary : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbDictionary);

  // The id under `key`, or a null id.
  OdDbObjectId getAt(const OdString& key) const;
  // The object under `key` opened in `mode` (OdDbObjectId::safeOpenObject's errors), or null
  // when there is no such entry.
  OdDbObjectPtr getAt(const OdString& key, OdDb::OpenMode mode) const;
  bool has(const OdString& key) const { return !getAt(key).isNull(); }
  bool has(const OdDbObjectId& id) const;
  // The key of `id`, or empty when it is not an entry.
  OdString nameAt(const OdDbObjectId& id) const;
  std::uint32_t numEntries() const;

  // Puts `value` under `key` and returns its id. A new object joins the drawing, owned by
  // this dictionary; an entry already under `key` is replaced and its object erased. Needs
  // the dictionary open for write and in a drawing (OdError eNotOpenForWrite,
  // eNotImplementedYet); a value of another drawing throws OdError(eWrongDatabase).
  OdDbObjectId setAt(const OdString& key, OdDbObject* value);
  // Takes the entry `key` out and erases its object; returns its id, or null when absent.
  OdDbObjectId remove(const OdString& key);
  bool remove(const OdDbObjectId& id);

  // An iterator over the entries as they are now, in stored order.
  OdDbDictionaryIteratorPtr newIterator() const;

  // True when the dictionary owns its entries with hard references (group 280).
  bool isHardOwner() const;
  void setHardOwner(bool hard);

  struct Entry {
    OdString key;
    OdDbObjectId id;
  };
  // Every entry (erased objects included); internal to TD_Db.
  std::vector<Entry> entries() const;
  // Takes the entry of `entry` out of dictionary `dict` without opening it (used when an
  // entry's object is erased).
  static void removeEntryOf(const OdDbObjectId& dict, const OdDbObjectId& entry);

 protected:
  OdDbDictionary() = default;
  void initNewObject() override;

 private:
  // Tag index of the key of the entry `key` (case-insensitive), or npos.
  std::size_t findKeyTag(const OdString& key) const;
};

using OdDbDictionaryPtr = OdSmartPtr<OdDbDictionary>;

// Walks the entries of a dictionary as they were when the iterator was made.
class OdDbDictionaryIterator : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdDbDictionaryIterator);

  bool done() const noexcept { return pos_ >= entries_.size(); }
  // Moves to the next entry; false when there is none.
  bool next() noexcept;
  // The current entry's key and id (empty and null when done()).
  OdString name() const;
  OdDbObjectId objectId() const;
  // The current entry's object opened in `mode` (null when done()).
  OdDbObjectPtr getObject(OdDb::OpenMode mode = OdDb::kForRead) const;

  void setEntries(std::vector<OdDbDictionary::Entry> entries) { entries_ = std::move(entries); }

 protected:
  OdDbDictionaryIterator() = default;

 private:
  std::vector<OdDbDictionary::Entry> entries_;
  std::size_t pos_ = 0;
};
