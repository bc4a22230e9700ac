#include "OdDbDimStyleTableRecord.h"

#include "DxfDocument.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbDimStyleTableRecord, OdDbSymbolTableRecord, "AcDbDimStyleTableRecord",
                    "DIMSTYLE");

namespace {
const char* const kDimStyle = "AcDbDimStyleTableRecord";

struct DimVar {
  int code;
  const wchar_t* name;
};
// The dimension variables a DIMSTYLE record stores, by group code.
const DimVar kDimVars[] = {
    {3, L"DIMPOST"},     {4, L"DIMAPOST"},     {5, L"DIMBLK"},     {6, L"DIMBLK1"},
    {7, L"DIMBLK2"},     {40, L"DIMSCALE"},    {41, L"DIMASZ"},    {42, L"DIMEXO"},
    {43, L"DIMDLI"},     {44, L"DIMEXE"},      {45, L"DIMRND"},    {46, L"DIMDLE"},
    {47, L"DIMTP"},      {48, L"DIMTM"},       {49, L"DIMFXL"},    {50, L"DIMJOGANG"},
    {69, L"DIMTFILL"},   {70, L"DIMTFILLCLR"}, {71, L"DIMTOL"},    {72, L"DIMLIM"},
    {73, L"DIMTIH"},     {74, L"DIMTOH"},      {75, L"DIMSE1"},    {76, L"DIMSE2"},
    {77, L"DIMTAD"},     {78, L"DIMZIN"},      {79, L"DIMAZIN"},   {90, L"DIMARCSYM"},
    {140, L"DIMTXT"},    {141, L"DIMCEN"},     {142, L"DIMTSZ"},   {143, L"DIMALTF"},
    {144, L"DIMLFAC"},   {145, L"DIMTVP"},     {146, L"DIMTFAC"},  {147, L"DIMGAP"},
    {148, L"DIMALTRND"}, {170, L"DIMALT"},     {171, L"DIMALTD"},  {172, L"DIMTOFL"},
    {173, L"DIMSAH"},    {174, L"DIMTIX"},     {175, L"DIMSOXD"},  {176, L"DIMCLRD"},
    {177, L"DIMCLRE"},   {178, L"DIMCLRT"},    {179, L"DIMADEC"},  {270, L"DIMUNIT"},
    {271, L"DIMDEC"},    {272, L"DIMTDEC"},    {273, L"DIMALTU"},  {274, L"DIMALTTD"},
    {275, L"DIMAUNIT"},  {276, L"DIMFRAC"},    {277, L"DIMLUNIT"}, {278, L"DIMDSEP"},
    {279, L"DIMTMOVE"},  {280, L"DIMJUST"},    {281, L"DIMSD1"},   {282, L"DIMSD2"},
    {283, L"DIMTOLJ"},   {284, L"DIMTZIN"},    {285, L"DIMALTZ"},  {286, L"DIMALTTZ"},
    {287, L"DIMFIT"},    {288, L"DIMUPT"},     {289, L"DIMATFIT"}, {290, L"DIMFXLON"},
    {340, L"DIMTXSTY"},  {341, L"DIMLDRBLK"},  {342, L"DIMBLK"},   {343, L"DIMBLK1"},
    {344, L"DIMBLK2"},   {345, L"DIMLTYPE"},   {346, L"DIMLTEX1"}, {347, L"DIMLTEX2"},
    {371, L"DIMLWD"},    {372, L"DIMLWE"},
};
}  // namespace

void OdDbDimStyleTableRecord::initNewObject() {
  initFromTemplate(
      "0\nDIMSTYLE\n100\nAcDbSymbolTableRecord\n100\nAcDbDimStyleTableRecord\n2\n\n70\n0\n");
}

int OdDbDimStyleTableRecord::dimVarCode(const OdString& name) {
  for (const DimVar& v : kDimVars)
    if (name.iCompare(v.name) == 0) return v.code;
  return 0;
}

OdString OdDbDimStyleTableRecord::dimVarName(int code) {
  for (const DimVar& v : kDimVars)
    if (v.code == code) return v.name;
  return OdString();
}

const std::vector<int>& OdDbDimStyleTableRecord::dimVarCodes() {
  static const std::vector<int> codes = [] {
    std::vector<int> c;
    for (const DimVar& v : kDimVars) c.push_back(v.code);
    return c;
  }();
  return codes;
}

OdResBufPtr OdDbDimStyleTableRecord::getDimVar(int code) const {
  if (code == 0 || dimVarName(code).isEmpty()) return OdResBufPtr();
  DxfObject& obj = dxf();
  std::size_t i = OdDbTagRange(obj, kDimStyle).find(code);
  if (i == DxfObject::npos) return OdResBufPtr();
  return OdResBuf::fromTags(obj, i, i + 1);
}

void OdDbDimStyleTableRecord::setDimVar(const OdResBuf* value) {
  if (!value || dimVarName(value->restype()).isEmpty())
    throw OdError(eInvalidInput, "group code " + std::to_string(value ? value->restype() : 0) +
                                     " is not a dimension variable");
  assertWriteEnabled();
  DxfObject& obj = dxf();
  std::vector<DxfTag> tags = OdResBuf::toTags(obj.document(), value);
  OdDbTagRange range(obj, kDimStyle);
  std::size_t i = range.find(value->restype());
  if (i != DxfObject::npos) {
    obj.setTag(i, tags.front());
    return;
  }
  // Files keep the variables in ascending group code order.
  auto [begin, end] = range.bounds();
  std::size_t at = end;
  for (std::size_t k = begin; k < end; ++k)
    if (obj.code(k) > value->restype() && obj.code(k) != 70 && obj.code(k) != 2) {
      at = k;
      break;
    }
  obj.insertTag(at, tags.front());
}

OdDbObjectId OdDbDimStyleTableRecord::dimtxsty() const {
  OdResBufPtr rb = getDimVar(340);
  return rb ? rb->getObjectId(database()) : OdDbObjectId();
}

void OdDbDimStyleTableRecord::setDimtxsty(const OdDbObjectId& id) {
  if (database()) database()->impl().checkedRecordName(id, OdDbDatabaseImpl::kStyle);
  setDimVar(OdResBuf::newRb(340, id.getHandle()).get());
}
