#include "OdDbDimension.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbDimension, OdDbEntity, "AcDbDimension", "DIMENSION");

OdDbObjectId OdDbDimension::dimensionStyle() const {
  return referenceId("AcDbDimension", 3, OdDbDatabaseImpl::kDimstyle, L"Standard");
}

OdString OdDbDimension::dimensionStyleName() const {
  return referenceName("AcDbDimension", 3, L"Standard");
}

void OdDbDimension::setDimensionStyle(const OdDbObjectId& id) {
  setReference("AcDbDimension", 3, OdDbDatabaseImpl::kDimstyle, id, {1, 40});
}
