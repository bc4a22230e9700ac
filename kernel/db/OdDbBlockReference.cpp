#include "OdDbBlockReference.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbBlockReference, OdDbEntity, "AcDbBlockReference", "INSERT");

void OdDbBlockReference::initNewObject() {
  initFromTemplate(
      "0\nINSERT\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\n\n10\n0.0\n20\n0.0\n30\n0."
      "0\n");
}

OdDbObjectId OdDbBlockReference::blockTableRecord() const {
  return referenceId("AcDbBlockReference", 2, OdDbDatabaseImpl::kBlockRecord, L"");
}

OdString OdDbBlockReference::blockTableRecordName() const {
  return referenceName("AcDbBlockReference", 2, L"");
}

void OdDbBlockReference::setBlockTableRecord(const OdDbObjectId& id) {
  setReference("AcDbBlockReference", 2, OdDbDatabaseImpl::kBlockRecord, id, {1, 40});
}
