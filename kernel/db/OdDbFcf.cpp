#include "OdDbFcf.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbFcf, OdDbEntity, "AcDbFcf", "TOLERANCE");

OdDbObjectId OdDbFcf::dimensionStyle() const {
  return referenceId("AcDbFcf", 3, OdDbDatabaseImpl::kDimstyle, L"Standard");
}

OdString OdDbFcf::dimensionStyleName() const {
  return referenceName("AcDbFcf", 3, L"Standard");
}

void OdDbFcf::setDimensionStyle(const OdDbObjectId& id) {
  setReference("AcDbFcf", 3, OdDbDatabaseImpl::kDimstyle, id, {1, 40});
}
