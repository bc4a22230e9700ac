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
  OdDbDictionaryPtr nod = nodId.safeOpenObject(OdDb::kForWrite);

  OdDbDictionaryPtr list;
  OdDbObjectId listId = nod->getAt(kStandardKey);
  if (listId.isNull()) {
    list = OdDbDictionary::createObject();
    nod->setAt(kStandardKey, list.get());
  } else {
    list = listId.safeOpenObject(OdDb::kForWrite);
    const std::uint32_t count = list->numEntries();
    for (std::uint32_t i = 0; i < count; ++i) list->remove(entryKey(i));
  }

  for (std::uint32_t i = 0; i < files.size(); ++i) {
    OdResBufPtr chain = OdResBuf::newRb(1, files[i]);
    OdDbXrecordPtr record = OdDbXrecord::createObject();
    record->setFromRbChain(chain.get());
    list->setAt(entryKey(i), record.get());
  }
  return true;
}

}  // namespace st
