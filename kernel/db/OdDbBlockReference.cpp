#include "OdDbBlockReference.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbBlockReference, OdDbEntity, "AcDbBlockReference", "INSERT");

OdDbObjectId OdDbBlockReference::blockTableRecord() const {
  return referenceId("AcDbBlockReference", 2, OdDbDatabaseImpl::kBlockRecord, L"");
}

OdString OdDbBlockReference::blockTableRecordName() const {
  return referenceName("AcDbBlockReference", 2, L"");
}

void OdDbBlockReference::setBlockTableRecord(const OdDbObjectId& id) {
  setReference("AcDbBlockReference", 2, OdDbDatabaseImpl::kBlockRecord, id, {1, 40});
}
