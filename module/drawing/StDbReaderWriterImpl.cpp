#include "StDbReaderWriterImpl.h"

#include "OdDbDatabase.h"
#include "OdDbDictionary.h"
#include "OdDbXrecord.h"
#include "StStandardKeys.h"

namespace st {
namespace {

OdString entryKey(std::uint32_t index) {
  return OdString::format(L"%d", static_cast<int>(index));
}

}  // namespace

bool StDbReaderWriterImpl::setDatabase(OdDbDatabase* db) {
  if (!db) return false;
  db_ = db;
  return true;
}

bool StDbReaderWriterImpl::hasStandardsEntry() {
  if (!db_) return false;
  OdDbObjectId nodId = db_->getNamedObjectsDictionaryId();
  if (nodId.isNull()) return false;
  OdDbDictionaryPtr nod = nodId.safeOpenObject();
  return nod->has(kStandardKey);
}

bool StDbReaderWriterImpl::readStandardFiles(OdArray<OdString>& files) {
  if (!db_) return false;
  OdDbObjectId nodId = db_->getNamedObjectsDictionaryId();
  if (nodId.isNull()) return false;
  OdDbDictionaryPtr nod = nodId.safeOpenObject();
  OdDbObjectId listId = nod->getAt(kStandardKey);
  if (listId.isNull()) return false;
  OdDbObjectPtr listObject = listId.openObject();
  if (!listObject) return false;
  OdDbDictionaryPtr list = listObject;
  if (list->numEntries() == 0) return false;

  // Entries are found by position key, not by walking the dictionary: a list whose keys
  // have a gap loses the files past it, which is how every reader of this list behaves.
  for (std::uint32_t i = 0; i < list->numEntries(); ++i) {
    OdDbObjectId entryId = list->getAt(entryKey(i));
    if (entryId.isNull()) continue;
    OdDbObjectPtr entry = entryId.openObject();
    if (!entry) continue;
    OdDbXrecordPtr record = entry;
    OdResBufPtr chain = record->rbChain();
    if (chain && chain->restype() == 1) files.append(chain->getString());
  }
  return true;
}

bool StDbReaderWriterImpl::writeStandardFiles(const OdArray<OdString>& files) {
  if (!db_) return false;
  OdDbObjectId nodId = db_->getNamedObjectsDictionaryId();
  if (nodId.isNull()) return false;

  // Only what changes is written: an entry that already holds its path stays as it is, one
  // holding another path is rewritten in place (it keeps its handle), and entries are added
  // or taken out only at the end of the list. Saving then leaves every untouched object of
  // the drawing as it was read.
  OdDbObjectId listId = OdDbDictionaryPtr(nodId.safeOpenObject())->getAt(kStandardKey);
  if (listId.isNull()) {
    OdDbDictionaryPtr nod = nodId.safeOpenObject(OdDb::kForWrite);
    OdDbDictionaryPtr created = OdDbDictionary::createObject();
    listId = nod->setAt(kStandardKey, created.get());
  }
  OdDbDictionaryPtr list = listId.safeOpenObject(OdDb::kForWrite);
  const std::uint32_t oldCount = list->numEntries();

  for (std::uint32_t i = 0; i < files.size(); ++i) {
    OdDbObjectId entryId = list->getAt(entryKey(i));
    OdDbObjectPtr entry = entryId.isNull() ? OdDbObjectPtr() : entryId.openObject();
    OdDbXrecordPtr record;
    if (entry && entry->isKindOf(OdDbXrecord::desc())) record = entry;
    if (record) {
      OdResBufPtr chain = record->rbChain();
      if (chain && chain->restype() == 1 && chain->getString() == files[i] && !chain->next())
        continue;
      entry.release();
      record = entryId.safeOpenObject(OdDb::kForWrite);
      record->setFromRbChain(OdResBuf::newRb(1, files[i]).get());
      continue;
    }
    record = OdDbXrecord::createObject();
    record->setFromRbChain(OdResBuf::newRb(1, files[i]).get());
    list->setAt(entryKey(i), record.get());
  }

  // The entries the list held past its new end go; an entry beyond a gap, which readers
  // never reach, is left as it is.
  for (std::uint32_t i = static_cast<std::uint32_t>(files.size()); i < oldCount; ++i)
    list->remove(entryKey(i));
  return true;
}

}  // namespace st
