#include "OdDbText.h"

#include "OdDbDatabaseImpl.h"

ODDB_DEFINE_MEMBERS(OdDbText, OdDbEntity, "AcDbText", "TEXT");

void OdDbText::initNewObject() {
  initFromTemplate(
      "0\nTEXT\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0.0\n20\n0.0\n30\n0.0\n40\n2."
      "5\n1\n\n100\nAcDbText\n");
}

OdDbObjectId OdDbText::textStyle() const {
  return referenceId("AcDbText", 7, OdDbDatabaseImpl::kStyle, L"Standard");
}

OdString OdDbText::textStyleName() const {
  return referenceName("AcDbText", 7, L"Standard");
}

void OdDbText::setTextStyle(const OdDbObjectId& id) {
  setReference("AcDbText", 7, OdDbDatabaseImpl::kStyle, id, {1, 40});
}
