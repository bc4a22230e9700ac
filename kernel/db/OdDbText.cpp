#include "OdDbText.h"

#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"

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

OdString OdDbText::textString() const {
  return OdDbTagRange(dxf(), "AcDbText").text(1);
}

void OdDbText::setTextString(const OdString& text) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), "AcDbText").setText(1, text, {40});
}

void OdDbText::setPosition(double x, double y, double z) {
  assertWriteEnabled();
  OdDbTagRange range(dxf(), "AcDbText");
  range.setReal(10, x);
  range.setReal(20, y, {10});
  range.setReal(30, z, {20});
}

double OdDbText::height() const {
  return OdDbTagRange(dxf(), "AcDbText").real(40, 0.0);
}

void OdDbText::setHeight(double height) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), "AcDbText").setReal(40, height, {30});
}
