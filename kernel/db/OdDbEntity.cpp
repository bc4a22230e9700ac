#include "OdDbEntity.h"

#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbEntity, OdDbObject, "AcDbEntity", "");

namespace {
const char* const kEntity = "AcDbEntity";

// The first tag of `code` anywhere before the extended data, application groups skipped, or
// npos. Writers do not all keep the common codes (8 layer, 6 linetype) in the entity's common
// subclass; where they stand, they still say the entity's layer and linetype.
std::size_t commonTag(const DxfObject& obj, int code) {
  for (std::size_t i = 1; i < obj.size(); i = odDbSkipGroup(obj, i)) {
    if (obj.code(i) == 1001) break;
    if (obj.code(i) == code) return i;
  }
  return DxfObject::npos;
}
}  // namespace

void OdDbEntity::initNewObject() {
  initFromTemplate("0\nPOINT\n100\nAcDbEntity\n8\n0\n100\nAcDbPoint\n10\n0.0\n20\n0.0\n30\n0.0\n");
}

OdString OdDbEntity::referenceName(const char* subclass, int code, const wchar_t* dflt) const {
  OdDbTagRange range(dxf(), subclass);
  if (std::string_view(subclass) == kEntity && !range.has(code))
    if (std::size_t at = commonTag(dxf(), code); at != DxfObject::npos) return dxf().text(at);
  return range.text(code, OdString(dflt));
}

OdDbObjectId OdDbEntity::referenceId(const char* subclass, int code, int kind,
                                     const wchar_t* dflt) const {
  if (!database()) return OdDbObjectId();
  return database()->impl().recordByName(static_cast<OdDbDatabaseImpl::TableKind>(kind),
                                         referenceName(subclass, code, dflt));
}

void OdDbEntity::setReference(const char* subclass, int code, int kind, const OdDbObjectId& id,
                              std::initializer_list<int> after) {
  if (!database()) throw OdError(eNotImplementedYet, "the entity is in no drawing yet");
  OdString name =
      database()->impl().checkedRecordName(id, static_cast<OdDbDatabaseImpl::TableKind>(kind));
  assertWriteEnabled();
  OdDbTagRange range(dxf(), subclass);
  if (std::string_view(subclass) == kEntity && !range.has(code))
    if (std::size_t at = commonTag(dxf(), code); at != DxfObject::npos) {
      dxf().setText(at, name);
      return;
    }
  range.setText(code, name, after);
}

OdDbObjectIdArray OdDbEntity::subEntityIds() const {
  OdDbObjectIdArray ids;
  if (!database() || !objectId().stub()) return ids;
  for (OdDbStub* stub : database()->impl().followers(objectId().stub()))
    ids.push_back(OdDbObjectId(stub));
  return ids;
}

OdString OdDbEntity::layer() const {
  return referenceName(kEntity, 8, L"0");
}
OdDbObjectId OdDbEntity::layerId() const {
  return referenceId(kEntity, 8, OdDbDatabaseImpl::kLayer, L"0");
}
void OdDbEntity::setLayer(const OdDbObjectId& id) {
  setReference(kEntity, 8, OdDbDatabaseImpl::kLayer, id, {67});
}

OdString OdDbEntity::linetype() const {
  return referenceName(kEntity, 6, L"ByLayer");
}
OdDbObjectId OdDbEntity::linetypeId() const {
  return referenceId(kEntity, 6, OdDbDatabaseImpl::kLtype, L"ByLayer");
}
void OdDbEntity::setLinetype(const OdDbObjectId& id) {
  setReference(kEntity, 6, OdDbDatabaseImpl::kLtype, id, {8});
}

short OdDbEntity::colorIndex() const {
  return static_cast<short>(OdDbTagRange(dxf(), kEntity).integer(62, OdDb::kColorByLayer));
}

void OdDbEntity::setColorIndex(short index) {
  if (index < 0 || index > 256)
    throw OdError(eInvalidInput, "a colour index is 0 to 256, not " + std::to_string(index));
  assertWriteEnabled();
  OdDbTagRange range(dxf(), kEntity);
  range.setInteger(62, index, {8, 6});
  range.remove(420);
  range.remove(430);
}

OdDb::LineWeight OdDbEntity::lineWeight() const {
  return static_cast<OdDb::LineWeight>(
      OdDbTagRange(dxf(), kEntity).integer(370, OdDb::kLnWtByLayer));
}

void OdDbEntity::setLineWeight(OdDb::LineWeight weight) {
  assertWriteEnabled();
  OdDbTagRange(dxf(), kEntity).setInteger(370, weight, {8, 6, 62});
}
