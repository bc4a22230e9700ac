#include "OdDbSymbolTableRecord.h"

#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbSymbolTableRecord, OdDbObject, "AcDbSymbolTableRecord", "");

const char* OdDbSymbolTableRecord::subclass() const {
  std::string_view type = dxf().type();
  if (type == "VPORT") return "AcDbViewportTableRecord";
  if (type == "VIEW") return "AcDbViewTableRecord";
  if (type == "UCS") return "AcDbUCSTableRecord";
  if (type == "APPID") return "AcDbRegAppTableRecord";
  return "";
}

OdString OdDbSymbolTableRecord::getName() const {
  return OdDbTagRange(dxf(), subclass()).text(2);
}

void OdDbSymbolTableRecord::setName(const OdString& name) {
  if (name.isEmpty()) throw OdError(eInvalidInput, "a record name cannot be empty");
  if (OdDbStub* s = stub()) {
    OdDbDatabaseImpl& impl = s->database()->impl();
    OdDbObjectId owner = ownerId();
    OdDbStub* other = owner.isNull() ? nullptr : impl.findRecord(owner.stub(), name);
    if (other && other != s)
      throw OdError(eDuplicateRecordName, "a record named " + name.toUtf8() + " exists already");
  }
  assertWriteEnabled();
  const OdString oldName = getName();
  OdDbTagRange(dxf(), subclass()).setText(2, name);
  if (OdDbStub* s = stub()) s->database()->impl().recordRenamed(s, oldName);
}

int OdDbSymbolTableRecord::flags() const {
  return static_cast<int>(OdDbTagRange(dxf(), subclass()).integer(70, 0));
}

void OdDbSymbolTableRecord::setFlagBit(int bit, bool on) {
  assertWriteEnabled();
  int f = flags();
  int updated = on ? (f | bit) : (f & ~bit);
  if (updated != f || !OdDbTagRange(dxf(), subclass()).has(70))
    OdDbTagRange(dxf(), subclass()).setInteger(70, updated, {2});
}

bool OdDbSymbolTableRecord::isDependent() const {
  return (flags() & (16 | 32)) != 0 || getName().find(L'|') >= 0;
}
