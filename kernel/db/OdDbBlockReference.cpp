#include "OdDbBlockReference.h"

#include "OdDbAttribute.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbBlockReference, OdDbEntity, "AcDbBlockReference", "INSERT");

void OdDbBlockReference::initNewObject() {
  initFromTemplate(
      "0\nINSERT\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockReference\n2\n\n10\n0.0\n20\n0.0\n30\n0."
      "0\n");
}

OdDbObjectId OdDbBlockReference::blockTableRecord() const {
  return referenceId("AcDbBlockReference", 2, OdDbDatabaseImpl::kBlockRecord, L"");
}

OdString OdDbBlockReference::blockTableRecordName() const {
  return referenceName("AcDbBlockReference", 2, L"");
}

void OdDbBlockReference::setBlockTableRecord(const OdDbObjectId& id) {
  setReference("AcDbBlockReference", 2, OdDbDatabaseImpl::kBlockRecord, id, {1, 40});
}

OdDbObjectId OdDbBlockReference::appendAttribute(OdDbAttribute* attribute) {
  if (!attribute) throw OdError(eNullPtr, "no attribute to add");
  if (!attribute->isNewObject())
    throw OdError(eInvalidInput, "the attribute is in a drawing already");
  if (!database()) throw OdError(eNotImplementedYet, "the insert is in no drawing yet");
  assertWriteEnabled();
  OdDbDatabaseImpl& impl = database()->impl();
  DxfDocument& doc = impl.doc();
  const OdDbStub* self = objectId().stub();
  const std::size_t section = self->section;
  std::size_t at = self->index + 1;
  bool closed = false;
  for (OdDbStub* part : impl.followers(self)) {
    closed = impl.dxf(part).type() == "SEQEND";
    at = closed ? part->index : part->index + 1;
  }
  const bool paper = OdDbTagRange(dxf(), "AcDbEntity").integer(67, 0) == 1;
  OdDbObjectId id = attribute->makeResident(database(), section, at, objectId());
  if (paper) OdDbTagRange(attribute->dxf(), "AcDbEntity").setInteger(67, 1, {330, 100});
  if (!closed) {
    const bool modern = doc.versionNumber() >= 1012 || doc.versionNumber() == 0;
    std::vector<DxfTag> tags{doc.makeRaw(0, "SEQEND")};
    if (modern) tags.push_back(doc.makeRaw(100, "AcDbEntity"));
    if (paper) tags.push_back(doc.makeRaw(67, "1"));
    tags.push_back(doc.makeText(8, layer()));
    OdDbStub* seqend = impl.insertObject(section, at + 1, std::move(tags));
    DxfObject& obj = impl.dxf(seqend);
    if (modern || impl.hasHandles()) obj.insertTag(1, doc.makeText(5, seqend->handle.ascii()));
    if (modern) obj.insertTag(2, doc.makeText(330, objectId().getHandle().ascii()));
    OdDbTagRange range(dxf(), "AcDbBlockReference");
    if (range.has(66))
      range.setInteger(66, 1);
    else
      dxf().insertTag(range.bounds().first, doc.makeInteger(66, 1));
  }
  return id;
}
