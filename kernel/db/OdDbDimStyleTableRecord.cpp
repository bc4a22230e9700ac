#include "OdDbDimStyleTableRecord.h"

#include "DxfDocument.h"
#include "DxfGroupCode.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbDimStyleTableRecord, OdDbSymbolTableRecord, "AcDbDimStyleTableRecord",
                    "DIMSTYLE");

namespace {
const char* const kDimStyle = "AcDbDimStyleTableRecord";

// Release numbers ($ACADVER without "AC") where files change what a DIMSTYLE stores.
constexpr int kR13 = 1012;
constexpr int kR2000 = 1015;
constexpr int kR2007 = 1021;
constexpr int kEver = 0;
constexpr int kNever = 0x7FFFFFFF;

struct DimVar {
  int code;
  const wchar_t* name;
  // The releases whose files store the variable under this code: [since, until).
  int since;
  int until;
  // What a style that leaves the variable out stands for, in the file's units (angles of
  // DIMSTYLE records are in degrees): the defaults of a new imperial drawing. Texts and
  // references default to empty.
  double dflt;
};
// The dimension variables a DIMSTYLE record stores, by group code. Release 2000 moved the
// arrow blocks from names (5-7) to references (342-344) and dropped DIMUNIT and DIMFIT for
// DIMLUNIT, DIMFRAC, DIMATFIT and DIMTMOVE. DIMTFILLCLR shares group 70 with the record's
// flags and comes after them.
const DimVar kDimVars[] = {
    {3, L"DIMPOST", kEver, kNever, 0},      {4, L"DIMAPOST", kEver, kNever, 0},
    {5, L"DIMBLK", kEver, kR2000, 0},       {6, L"DIMBLK1", kEver, kR2000, 0},
    {7, L"DIMBLK2", kEver, kR2000, 0},      {40, L"DIMSCALE", kEver, kNever, 1.0},
    {41, L"DIMASZ", kEver, kNever, 0.18},   {42, L"DIMEXO", kEver, kNever, 0.0625},
    {43, L"DIMDLI", kEver, kNever, 0.38},   {44, L"DIMEXE", kEver, kNever, 0.18},
    {45, L"DIMRND", kEver, kNever, 0.0},    {46, L"DIMDLE", kEver, kNever, 0.0},
    {47, L"DIMTP", kEver, kNever, 0.0},     {48, L"DIMTM", kEver, kNever, 0.0},
    {49, L"DIMFXL", kR2007, kNever, 1.0},   {50, L"DIMJOGANG", kR2007, kNever, 45.0},
    {69, L"DIMTFILL", kR2007, kNever, 0},   {70, L"DIMTFILLCLR", kR2007, kNever, 0},
    {71, L"DIMTOL", kEver, kNever, 0},      {72, L"DIMLIM", kEver, kNever, 0},
    {73, L"DIMTIH", kEver, kNever, 1},      {74, L"DIMTOH", kEver, kNever, 1},
    {75, L"DIMSE1", kEver, kNever, 0},      {76, L"DIMSE2", kEver, kNever, 0},
    {77, L"DIMTAD", kEver, kNever, 0},      {78, L"DIMZIN", kEver, kNever, 0},
    {79, L"DIMAZIN", kR2000, kNever, 0},    {90, L"DIMARCSYM", kR2007, kNever, 0},
    {140, L"DIMTXT", kEver, kNever, 0.18},  {141, L"DIMCEN", kEver, kNever, 0.09},
    {142, L"DIMTSZ", kEver, kNever, 0.0},   {143, L"DIMALTF", kEver, kNever, 25.4},
    {144, L"DIMLFAC", kEver, kNever, 1.0},  {145, L"DIMTVP", kEver, kNever, 0.0},
    {146, L"DIMTFAC", kEver, kNever, 1.0},  {147, L"DIMGAP", kEver, kNever, 0.09},
    {148, L"DIMALTRND", kR2000, kNever, 0}, {170, L"DIMALT", kEver, kNever, 0},
    {171, L"DIMALTD", kEver, kNever, 2},    {172, L"DIMTOFL", kEver, kNever, 0},
    {173, L"DIMSAH", kEver, kNever, 0},     {174, L"DIMTIX", kEver, kNever, 0},
    {175, L"DIMSOXD", kEver, kNever, 0},    {176, L"DIMCLRD", kEver, kNever, 0},
    {177, L"DIMCLRE", kEver, kNever, 0},    {178, L"DIMCLRT", kEver, kNever, 0},
    {179, L"DIMADEC", kR2000, kNever, 0},   {270, L"DIMUNIT", kR13, kR2000, 2},
    {271, L"DIMDEC", kR13, kNever, 4},      {272, L"DIMTDEC", kR13, kNever, 4},
    {273, L"DIMALTU", kR13, kNever, 2},     {274, L"DIMALTTD", kR13, kNever, 2},
    {275, L"DIMAUNIT", kR13, kNever, 0},    {276, L"DIMFRAC", kR2000, kNever, 0},
    {277, L"DIMLUNIT", kR2000, kNever, 2},  {278, L"DIMDSEP", kR2000, kNever, '.'},
    {279, L"DIMTMOVE", kR2000, kNever, 0},  {280, L"DIMJUST", kR13, kNever, 0},
    {281, L"DIMSD1", kR13, kNever, 0},      {282, L"DIMSD2", kR13, kNever, 0},
    {283, L"DIMTOLJ", kR13, kNever, 1},     {284, L"DIMTZIN", kR13, kNever, 0},
    {285, L"DIMALTZ", kR13, kNever, 0},     {286, L"DIMALTTZ", kR13, kNever, 0},
    {287, L"DIMFIT", kR13, kR2000, 3},      {288, L"DIMUPT", kR13, kNever, 0},
    {289, L"DIMATFIT", kR2000, kNever, 3},  {290, L"DIMFXLON", kR2007, kNever, 0},
    {340, L"DIMTXSTY", kR13, kNever, 0},    {341, L"DIMLDRBLK", kR2000, kNever, 0},
    {342, L"DIMBLK", kR2000, kNever, 0},    {343, L"DIMBLK1", kR2000, kNever, 0},
    {344, L"DIMBLK2", kR2000, kNever, 0},   {345, L"DIMLTYPE", kR2007, kNever, 0},
    {346, L"DIMLTEX1", kR2007, kNever, 0},  {347, L"DIMLTEX2", kR2007, kNever, 0},
    {371, L"DIMLWD", kR2000, kNever, -2},   {372, L"DIMLWE", kR2000, kNever, -2},
};

const DimVar* dimVar(int code) {
  for (const DimVar& v : kDimVars)
    if (v.code == code) return &v;
  return nullptr;
}

// The index of the tag of `obj` holding the variable under `code`, or npos. Group 70 is
// first the record's flags: DIMTFILLCLR is the 70 after them.
std::size_t findDimVar(DxfObject& obj, int code) {
  OdDbTagRange range(obj, kDimStyle);
  if (code != 70) return range.find(code);
  auto [begin, end] = range.bounds();
  bool flags = false;
  for (std::size_t i = begin; i < end; i = odDbSkipGroup(obj, i)) {
    if (obj.code(i) != 70) continue;
    if (flags) return i;
    flags = true;
  }
  return DxfObject::npos;
}
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
  const DimVar* v = dimVar(code);
  return v ? OdString(v->name) : OdString();
}

bool OdDbDimStyleTableRecord::isDimVarHeldBy(int code, int versionNumber) {
  const DimVar* v = dimVar(code);
  if (!v) return false;
  return versionNumber >= v->since && versionNumber < v->until;
}

OdResBufPtr OdDbDimStyleTableRecord::dimVarDefault(int code) {
  const DimVar* v = dimVar(code);
  if (!v) return OdResBufPtr();
  switch (DxfGroupCode::valueType(code)) {
    case DxfValueType::kString:
      return code >= 320 ? OdResBufPtr() : OdResBuf::newRb(code, OdString());
    case DxfValueType::kDouble:
      return OdResBuf::newRb(code, v->dflt);
    case DxfValueType::kBool:
      return OdResBuf::newRb(code, v->dflt != 0);
    default:
      return OdResBuf::newRb(code, static_cast<int>(v->dflt));
  }
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
  if (!dimVar(code)) return OdResBufPtr();
  DxfObject& obj = dxf();
  std::size_t i = findDimVar(obj, code);
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
  std::size_t i = findDimVar(obj, value->restype());
  if (i != DxfObject::npos) {
    obj.setTag(i, tags.front());
    return;
  }
  // Files keep the variables after the name and the flags, in ascending group code order.
  // A record of a file without subclass markers starts with its handle (105), which is no
  // variable to order by.
  auto [begin, end] = range.bounds();
  std::size_t first = begin;
  for (std::size_t k = begin; k < end; ++k)
    if (obj.code(k) == 70) {
      first = k + 1;
      break;
    }
  std::size_t at = end;
  for (std::size_t k = first; k < end; ++k)
    if (obj.code(k) > value->restype()) {
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
