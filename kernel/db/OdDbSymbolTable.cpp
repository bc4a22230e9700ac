#include "OdDbSymbolTable.h"

#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbSymbolTable, OdDbObject, "AcDbSymbolTable", "TABLE");
ODRX_DEFINE_RTTI_MEMBERS(OdDbSymbolTableIterator, OdRxObject);
ODRX_DEFINE_PSEUDOCONSTRUCTOR(OdDbSymbolTableIterator, OdDbSymbolTableIterator);
ODRX_DEFINE_INIT_MEMBERS(OdDbSymbolTableIterator, OdRxObject,
                         &OdDbSymbolTableIterator::pseudoConstructor, "", "");

OdDbObjectId OdDbSymbolTable::getAt(const OdString& name, bool getErased) const {
  OdDbStub* s = stub();
  if (!s) return OdDbObjectId();
  OdDbDatabaseImpl& impl = s->database()->impl();
  if (OdDbStub* found = impl.findRecord(s, name)) return OdDbObjectId(found);
  if (getErased)
    for (OdDbStub* rec : impl.tableRecords(s))
      if (rec->isErased() && impl.recordName(rec).iCompare(name) == 0) return OdDbObjectId(rec);
  return OdDbObjectId();
}

OdDbSymbolTableRecordPtr OdDbSymbolTable::getAt(const OdString& name, OdDb::OpenMode mode,
                                                bool getErased) const {
  OdDbObjectId id = getAt(name, getErased);
  return id.isNull() ? OdDbSymbolTableRecordPtr()
                     : OdDbSymbolTableRecordPtr(id.safeOpenObject(mode, getErased));
}

bool OdDbSymbolTable::has(const OdDbObjectId& id) const {
  if (id.isNull() || id.isErased() || !stub()) return false;
  for (OdDbStub* rec : stub()->database()->impl().tableRecords(stub()))
    if (rec == id.stub()) return true;
  return false;
}

OdDbObjectId OdDbSymbolTable::add(OdDbSymbolTableRecord* record) {
  if (!record) throw OdError(eNullPtr, "no record to add");
  OdDbStub* s = stub();
  if (!s) throw OdError(eNotImplementedYet, "a table needs to be in a drawing to take records");
  OdDbDatabaseImpl& impl = s->database()->impl();
  OdDbDatabaseImpl::TableKind kind = impl.tableKindOf(s);
  std::string type(record->dxf().type());
  if (kind == OdDbDatabaseImpl::kTableKinds || type != OdDbDatabaseImpl::recordType(kind))
    throw OdError(eInvalidInput, "a " + type + " record does not belong in the " +
                                     std::string(OdDbDatabaseImpl::tableName(kind)) + " table");
  if (!record->isNewObject())
    throw OdError(eInvalidInput,
                  "the record " + record->getName().toUtf8() + " is in a drawing already");
  OdString name = record->getName();
  if (name.isEmpty()) throw OdError(eInvalidInput, "a record needs a name to join a table");
  if (impl.findRecord(s, name))
    throw OdError(eDuplicateRecordName, "the " + std::string(OdDbDatabaseImpl::tableName(kind)) +
                                            " table has a record named " + name.toUtf8());
  assertWriteEnabled();
  impl.materializeTable(kind);
  std::size_t at = s->index + 1;
  const DxfSection& section = impl.doc().section(s->section);
  while (at < section.size()) {
    std::string_view t = section.object(at).type();
    if (t == "ENDTAB" || t == "TABLE") break;
    ++at;
  }
  OdDbObjectId id = record->makeResident(s->database(), s->section, at, objectId());
  impl.recordAdded(id.stub());
  if (kind == OdDbDatabaseImpl::kBlockRecord) impl.defineBlock(id.stub());
  return id;
}

OdDbSymbolTableIteratorPtr OdDbSymbolTable::newIterator(bool atBeginning, bool skipErased) const {
  OdDbSymbolTableIteratorPtr it = OdDbSymbolTableIterator::createObject();
  OdDbObjectIdArray ids;
  if (OdDbStub* s = stub())
    for (OdDbStub* rec : s->database()->impl().tableRecords(s)) ids.append(OdDbObjectId(rec));
  it->setIds(std::move(ids));
  it->start(atBeginning, skipErased);
  return it;
}

void OdDbSymbolTableIterator::skip(bool forward) {
  while (!done() && ids_[pos_].isErased()) pos_ += forward ? 1 : -1;
}

void OdDbSymbolTableIterator::start(bool atBeginning, bool skipErased) {
  pos_ = atBeginning ? 0 : static_cast<long>(ids_.size()) - 1;
  if (skipErased) skip(atBeginning);
}

void OdDbSymbolTableIterator::step(bool forward, bool skipErased) {
  if (done()) return;
  pos_ += forward ? 1 : -1;
  if (skipErased) skip(forward);
}

OdDbSymbolTableRecordPtr OdDbSymbolTableIterator::getRecord(OdDb::OpenMode mode,
                                                            bool openErased) const {
  if (done()) return OdDbSymbolTableRecordPtr();
  return OdDbSymbolTableRecordPtr(ids_[pos_].safeOpenObject(mode, openErased));
}

bool OdDbSymbolTableIterator::seek(const OdDbObjectId& id) {
  for (long i = 0; i < static_cast<long>(ids_.size()); ++i)
    if (ids_[i] == id) {
      pos_ = i;
      return true;
    }
  return false;
}
