#include "OdDbLeader.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbLeader, OdDbEntity, "AcDbLeader", "LEADER");

OdDbObjectId OdDbLeader::dimensionStyle() const {
  return referenceId("AcDbLeader", 3, OdDbDatabaseImpl::kDimstyle, L"Standard");
}

OdString OdDbLeader::dimensionStyleName() const {
  return referenceName("AcDbLeader", 3, L"Standard");
}

void OdDbLeader::setDimensionStyle(const OdDbObjectId& id) {
  setReference("AcDbLeader", 3, OdDbDatabaseImpl::kDimstyle, id, {1, 40});
}
