#include "OdDbMText.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbMText, OdDbEntity, "AcDbMText", "MTEXT");

void OdDbMText::initNewObject() {
  initFromTemplate(
      "0\nMTEXT\n100\nAcDbEntity\n8\n0\n100\nAcDbMText\n10\n0.0\n20\n0.0\n30\n0.0\n40\n2.5\n1\n\n");
}

OdDbObjectId OdDbMText::textStyle() const {
  return referenceId("AcDbMText", 7, OdDbDatabaseImpl::kStyle, L"Standard");
}

OdString OdDbMText::textStyleName() const {
  return referenceName("AcDbMText", 7, L"Standard");
}

void OdDbMText::setTextStyle(const OdDbObjectId& id) {
  setReference("AcDbMText", 7, OdDbDatabaseImpl::kStyle, id, {1, 40});
}
