#include "OdDbTextStyleTableRecord.h"

#include <numbers>

#include "OdDbTagRange.h"
#include "OdResBuf.h"

ODDB_DEFINE_MEMBERS(OdDbTextStyleTableRecord, OdDbSymbolTableRecord, "AcDbTextStyleTableRecord",
                    "STYLE");

namespace {
const char* const kStyle = "AcDbTextStyleTableRecord";
}  // namespace

void OdDbTextStyleTableRecord::initNewObject() {
  initFromTemplate(
      "0\nSTYLE\n100\nAcDbSymbolTableRecord\n100\nAcDbTextStyleTableRecord\n2\n\n70\n0\n40\n0.0\n"
      "41\n1.0\n50\n0.0\n71\n0\n42\n2.5\n3\ntxt\n4\n\n");
}

OdString OdDbTextStyleTableRecord::fileName() const {
  return OdDbTagRange(dxf(), kStyle).text(3);
}
void OdDbTextStyleTableRecord::setFileName(const OdString& name) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kStyle).setText(3, name, {42, 71});
}
OdString OdDbTextStyleTableRecord::bigFontFileName() const {
  return OdDbTagRange(dxf(), kStyle).text(4);
}
void OdDbTextStyleTableRecord::setBigFontFileName(const OdString& name) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kStyle).setText(4, name, {3});
}
OdString OdDbTextStyleTableRecord::typeface() const {
  OdResBufPtr rb = xData(L"ACAD");
  for (OdResBuf* p = rb.get(); p; p = p->next().get())
    if (p->restype() == 1000) return p->getString();
  return OdString();
}
double OdDbTextStyleTableRecord::textSize() const {
  return OdDbTagRange(dxf(), kStyle).real(40, 0);
}
void OdDbTextStyleTableRecord::setTextSize(double height) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kStyle).setReal(40, height, {70});
}
double OdDbTextStyleTableRecord::xScale() const {
  return OdDbTagRange(dxf(), kStyle).real(41, 1);
}
void OdDbTextStyleTableRecord::setXScale(double factor) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kStyle).setReal(41, factor, {40});
}
double OdDbTextStyleTableRecord::obliquingAngle() const {
  return OdDbTagRange(dxf(), kStyle).real(50, 0) * std::numbers::pi / 180.0;
}
void OdDbTextStyleTableRecord::setObliquingAngle(double radians) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kStyle).setReal(50, radians * 180.0 / std::numbers::pi, {41});
}
double OdDbTextStyleTableRecord::priorSize() const {
  return OdDbTagRange(dxf(), kStyle).real(42, 0);
}
int OdDbTextStyleTableRecord::textGenerationFlags() const {
  return static_cast<int>(OdDbTagRange(dxf(), kStyle).integer(71, 0));
}
void OdDbTextStyleTableRecord::setTextGenerationFlags(int flags) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kStyle).setInteger(71, flags, {50});
}
