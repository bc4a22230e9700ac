#include "OdDbObjectFactory.h"

#include <string_view>

#include "OdDbAttribute.h"
#include "OdDbAttributeDefinition.h"
#include "OdDbBlockReference.h"
#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbDictionary.h"
#include "OdDbDimStyleTable.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbDimension.h"
#include "OdDbFcf.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLeader.h"
#include "OdDbLinetypeTable.h"
#include "OdDbLinetypeTableRecord.h"
#include "OdDbMText.h"
#include "OdDbObjectIterator.h"
#include "OdDbRegAppTable.h"
#include "OdDbRegAppTableRecord.h"
#include "OdDbText.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdDbXrecord.h"
#include "OdResBuf.h"

namespace {

// Reaches the protected constructor of a drawing class: the object made is a T in every way
// that counts (its run-time class is T's).
template <class T>
struct Make final : T {
  Make() = default;
};

template <class T>
OdDbObject* make() {
  return new Make<T>();
}

OdDbObject* makeTable(OdDbDatabaseImpl::TableKind kind) {
  switch (kind) {
    case OdDbDatabaseImpl::kLayer:
      return make<OdDbLayerTable>();
    case OdDbDatabaseImpl::kLtype:
      return make<OdDbLinetypeTable>();
    case OdDbDatabaseImpl::kStyle:
      return make<OdDbTextStyleTable>();
    case OdDbDatabaseImpl::kDimstyle:
      return make<OdDbDimStyleTable>();
    case OdDbDatabaseImpl::kBlockRecord:
      return make<OdDbBlockTable>();
    case OdDbDatabaseImpl::kAppid:
      return make<OdDbRegAppTable>();
    default:
      return make<OdDbSymbolTable>();
  }
}

OdDbObject* makeRecord(OdDbDatabaseImpl::TableKind kind) {
  switch (kind) {
    case OdDbDatabaseImpl::kLayer:
      return make<OdDbLayerTableRecord>();
    case OdDbDatabaseImpl::kLtype:
      return make<OdDbLinetypeTableRecord>();
    case OdDbDatabaseImpl::kStyle:
      return make<OdDbTextStyleTableRecord>();
    case OdDbDatabaseImpl::kDimstyle:
      return make<OdDbDimStyleTableRecord>();
    case OdDbDatabaseImpl::kBlockRecord:
      return make<OdDbBlockTableRecord>();
    case OdDbDatabaseImpl::kAppid:
      return make<OdDbRegAppTableRecord>();
    default:
      return make<OdDbSymbolTableRecord>();
  }
}

OdDbObject* makeEntity(std::string_view type) {
  if (type == "TEXT") return make<OdDbText>();
  if (type == "MTEXT") return make<OdDbMText>();
  if (type == "ATTDEF") return make<OdDbAttributeDefinition>();
  if (type == "ATTRIB") return make<OdDbAttribute>();
  if (type == "DIMENSION") return make<OdDbDimension>();
  if (type == "LEADER") return make<OdDbLeader>();
  if (type == "TOLERANCE") return make<OdDbFcf>();
  if (type == "INSERT") return make<OdDbBlockReference>();
  return make<OdDbEntity>();
}

// Registers every drawing class, parents first, when the library is loaded.
struct Registrar {
  Registrar() {
    try {
      OdDbObject::rxInit();
      OdDbDatabase::rxInit();
      OdDbDatabaseReactor::rxInit();
      OdResBuf::rxInit();
      OdDbDictionary::rxInit();
      OdDbDictionaryIterator::rxInit();
      OdDbXrecord::rxInit();
      OdDbSymbolTable::rxInit();
      OdDbSymbolTableIterator::rxInit();
      OdDbSymbolTableRecord::rxInit();
      OdDbLayerTable::rxInit();
      OdDbLinetypeTable::rxInit();
      OdDbTextStyleTable::rxInit();
      OdDbDimStyleTable::rxInit();
      OdDbBlockTable::rxInit();
      OdDbRegAppTable::rxInit();
      OdDbLayerTableRecord::rxInit();
      OdDbLinetypeTableRecord::rxInit();
      OdDbTextStyleTableRecord::rxInit();
      OdDbDimStyleTableRecord::rxInit();
      OdDbBlockTableRecord::rxInit();
      OdDbRegAppTableRecord::rxInit();
      OdDbObjectIterator::rxInit();
      OdDbEntity::rxInit();
      OdDbText::rxInit();
      OdDbMText::rxInit();
      OdDbAttributeDefinition::rxInit();
      OdDbAttribute::rxInit();
      OdDbDimension::rxInit();
      OdDbLeader::rxInit();
      OdDbFcf::rxInit();
      OdDbBlockReference::rxInit();
    } catch (...) {
      // Registered already by an earlier load of the library: the classes are there.
    }
  }
};
const Registrar registrar;

}  // namespace

OdDbObject* odDbCreateObjectFor(OdDbDatabaseImpl& impl, OdDbStub* stub) {
  if (stub->flags & OdDbStub::kBlockView) return make<OdDbBlockTableRecord>();
  DxfObject& obj = impl.dxf(stub);
  std::string_view type = obj.type();
  if (type == "TABLE") return makeTable(impl.tableKindOf(stub));
  std::string_view section =
      stub->section == OdDbStub::kNoSection ? "" : impl.doc().section(stub->section).name();
  if (section == "TABLES" || section.empty()) {
    OdDbDatabaseImpl::TableKind kind = OdDbDatabaseImpl::kindOfRecordType(type);
    if (kind != OdDbDatabaseImpl::kTableKinds) return makeRecord(kind);
  }
  if (section == "ENTITIES" || section == "BLOCKS") return makeEntity(type);
  if (type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT") return make<OdDbDictionary>();
  if (type == "XRECORD") return make<OdDbXrecord>();
  return make<OdDbObject>();
}
