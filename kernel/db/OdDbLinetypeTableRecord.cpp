#include "OdDbLinetypeTableRecord.h"

#include <cmath>

#include "DxfDocument.h"
#include "OdDbTagRange.h"

ODDB_DEFINE_MEMBERS(OdDbLinetypeTableRecord, OdDbSymbolTableRecord, "AcDbLinetypeTableRecord",
                    "LTYPE");

namespace {
const char* const kLtype = "AcDbLinetypeTableRecord";
}  // namespace

void OdDbLinetypeTableRecord::initNewObject() {
  initFromTemplate(
      "0\nLTYPE\n100\nAcDbSymbolTableRecord\n100\nAcDbLinetypeTableRecord\n2\n\n70\n0\n3\n\n"
      "72\n65\n73\n0\n40\n0.0\n");
}

OdString OdDbLinetypeTableRecord::comments() const {
  return OdDbTagRange(dxf(), kLtype).text(3);
}

void OdDbLinetypeTableRecord::setComments(const OdString& text) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kLtype).setText(3, text, {70, 2});
}

double OdDbLinetypeTableRecord::patternLength() const {
  return OdDbTagRange(dxf(), kLtype).real(40, 0.0);
}

int OdDbLinetypeTableRecord::numDashes() const {
  return static_cast<int>(OdDbTagRange(dxf(), kLtype).integer(73, 0));
}

std::vector<double> OdDbLinetypeTableRecord::dashes() const {
  std::vector<double> result;
  DxfObject& obj = dxf();
  auto [begin, end] = OdDbTagRange(obj, kLtype).bounds();
  for (std::size_t i = begin; i < end; ++i)
    if (obj.code(i) == 49) result.push_back(obj.real(i));
  return result;
}

void OdDbLinetypeTableRecord::setDashes(const std::vector<double>& dashes) {
  assertWriteEnabled();
  DxfObject& obj = dxf();
  DxfDocument& doc = obj.document();
  OdDbTagRange range(obj, kLtype);
  for (int code : {49, 74, 75, 340, 46, 50, 44, 45, 9}) range.remove(code);
  double total = 0;
  for (double d : dashes) total += std::fabs(d);
  range.setInteger(73, static_cast<std::int64_t>(dashes.size()), {72, 3});
  range.setReal(40, total, {73});
  bool modern = doc.versionNumber() >= 1012;
  std::size_t at = range.find(40) + 1;
  for (double d : dashes) {
    obj.insertTag(at++, doc.makeReal(49, d));
    if (modern) obj.insertTag(at++, doc.makeInteger(74, 0));
  }
}
