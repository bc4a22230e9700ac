#include "OdDbBlockTableRecord.h"

#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbEntity.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbBlockTableRecord, OdDbSymbolTableRecord, "AcDbBlockTableRecord",
                    "BLOCK_RECORD");

void OdDbBlockTableRecord::initNewObject() {
  initFromTemplate("0\nBLOCK_RECORD\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\n\n");
}

const char* OdDbBlockTableRecord::subclass() const {
  return dxf().type() == "BLOCK" ? "AcDbBlockBegin" : "AcDbBlockTableRecord";
}

bool OdDbBlockTableRecord::isLayout() const {
  OdString name = getName();
  name.makeUpper();
  return name.left(12) == L"*MODEL_SPACE" || name.left(12) == L"*PAPER_SPACE" ||
         name == L"$MODEL_SPACE" || name == L"$PAPER_SPACE";
}

int OdDbBlockTableRecord::blockFlags() const {
  if (dxf().type() == "BLOCK") return flags();
  if (!stub()) return 0;
  // The flags live on the BLOCK entity that opens the block's definition.
  OdDbDatabaseImpl& impl = stub()->database()->impl();
  std::size_t blocks = impl.sectionIndex("BLOCKS");
  if (blocks == SIZE_MAX) return 0;
  const OdDbSlotList& slots = impl.slots(blocks);
  for (std::size_t i = 0; i < slots.size(); ++i) {
    OdDbStub* s = slots[i];
    if (!s) continue;
    DxfObject& obj = impl.dxf(s);
    if (obj.type() != "BLOCK") continue;
    if (OdDbTagRange(obj, "AcDbBlockBegin").text(2).iCompare(getName()) == 0)
      return static_cast<int>(OdDbTagRange(obj, "AcDbBlockBegin").integer(70, 0));
  }
  return 0;
}

OdDbObjectIteratorPtr OdDbBlockTableRecord::newIterator(bool atBeginning, bool skipErased) const {
  OdDbObjectIteratorPtr it = OdDbObjectIterator::createObject();
  OdDbObjectIdArray ids;
  if (stub())
    for (OdDbStub* s : stub()->database()->impl().blockEntities(stub(), true))
      ids.append(OdDbObjectId(s));
  it->setIds(std::move(ids));
  it->start(atBeginning, skipErased);
  return it;
}

OdDbObjectId OdDbBlockTableRecord::appendOdDbEntity(OdDbEntity* entity) {
  if (!entity) throw OdError(eNullPtr, "no entity to add");
  if (!entity->isNewObject()) throw OdError(eInvalidInput, "the entity is in a drawing already");
  if (!stub()) throw OdError(eNotImplementedYet, "the block is in no drawing yet");
  assertWriteEnabled();
  OdDbDatabaseImpl& impl = stub()->database()->impl();
  auto [section, index] = impl.entityInsertPosition(stub());
  bool paper = impl.isPaperSpaceRecord(stub());
  OdDbObjectId owner = objectId();
  if (stub()->flags & OdDbStub::kDetached) owner = OdDbObjectId();
  OdDbObjectId id = entity->makeResident(stub()->database(), section, index, owner);
  if (paper) OdDbTagRange(entity->dxf(), "AcDbEntity").setInteger(67, 1, {330, 100});
  if (entity->dxf().type() == "ATTDEF" && !isLayout()) impl.addBlockFlags(stub(), 2);
  return id;
}
