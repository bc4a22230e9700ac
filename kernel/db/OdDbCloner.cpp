#include "OdDbCloner.h"

#include "DxfGroupCode.h"
#include "OdDbDatabase.h"
#include "OdDbObject.h"
#include "OdDbRegAppTableRecord.h"
#include "OdDbSymbolTable.h"
#include "OdDbTagRange.h"
#include "OdError.h"

namespace {

// Index of the first tag after the handle, owner and application groups.
std::size_t bodyStart(const DxfObject& obj) {
  std::size_t i = 1;
  while (i < obj.size()) {
    int code = obj.code(i);
    if (code == 5 || code == 105 || code == 330)
      ++i;
    else if (code == 102)
      i = odDbSkipGroup(obj, i);
    else
      break;
  }
  return i;
}

bool isReferenceCode(int code) {
  return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) ||
         (code >= 480 && code <= 481);
}

}  // namespace

OdDbObjectId OdDbCloner::layerZeroReference(int code) {
  OdDbStub* zero = target_.findRecord(target_.table(OdDbDatabaseImpl::kLayer), OdString(L"0"));
  if (!zero) return OdDbObjectId();
  DxfObject& obj = target_.dxf(zero);
  std::size_t i = OdDbTagRange(obj, "AcDbLayerTableRecord").find(code);
  OdDbHandle h;
  if (i == DxfObject::npos || !OdDbHandle::parse(obj.rawValue(i), h)) return OdDbObjectId();
  return OdDbObjectId(target_.stubByHandle(h));
}

OdDbObjectId OdDbCloner::ensureByName(OdDbDatabaseImpl::TableKind kind, const OdString& name) {
  if (OdDbStub* mine = target_.findRecord(target_.table(kind), name)) return OdDbObjectId(mine);
  OdDbStub* theirs = source_.findRecord(source_.table(kind), name);
  if (!theirs) return OdDbObjectId();
  return clone(theirs, kind, OdDb::kDrcIgnore, false);
}

void OdDbCloner::translate(std::vector<DxfTag>& body) {
  DxfDocument& doc = target_.doc();
  for (std::size_t i = 0; i < body.size();) {
    int code = body[i].code;
    if (code == 1001) break;  // extended data keeps its handles as they are
    if (!isReferenceCode(code)) {
      ++i;
      continue;
    }
    OdDbHandle h;
    OdDbHandle::parse(doc.rawValue(body[i]), h);
    OdDbObjectId mapped;
    OdDbStub* ref = h.isNull() ? nullptr : source_.stubByHandle(h.value());
    if (ref) {
      OdDbIdPair pair{OdDbObjectId(ref)};
      if (map_.compute(pair)) {
        mapped = pair.value;
      } else {
        OdDbDatabaseImpl::TableKind kind =
            OdDbDatabaseImpl::kindOfRecordType(source_.dxf(ref).type());
        if (kind != OdDbDatabaseImpl::kTableKinds && kind != OdDbDatabaseImpl::kBlockRecord &&
            ref->section != OdDbStub::kNoSection &&
            source_.doc().section(ref->section).name() == "TABLES")
          mapped = ensureByName(kind, source_.recordName(ref));
      }
    }
    if (mapped.isNull() && (code == 390 || code == 347)) mapped = layerZeroReference(code);
    if (mapped.isNull()) {
      body.erase(body.begin() + static_cast<std::ptrdiff_t>(i));
      continue;
    }
    body[i] = doc.makeText(code, mapped.getHandle().ascii());
    ++i;
  }
}

void OdDbCloner::registerApps(const std::vector<DxfTag>& body) {
  DxfDocument& doc = target_.doc();
  OdDbStub* apps = target_.table(OdDbDatabaseImpl::kAppid);
  for (const DxfTag& tag : body) {
    if (tag.code != 1001) continue;
    OdString app = doc.text(tag);
    if (target_.findRecord(apps, app)) continue;
    OdDbSymbolTablePtr table = OdDbObjectId(apps).safeOpenObject(OdDb::kForWrite);
    OdDbRegAppTableRecordPtr rec = OdDbRegAppTableRecord::createObject();
    rec->setName(app);
    table->add(rec.get());
  }
}

OdDbObjectId OdDbCloner::clone(OdDbStub* record, OdDbDatabaseImpl::TableKind kind,
                               OdDb::DuplicateRecordCloning drc, bool primary) {
  OdDbIdPair known{OdDbObjectId(record)};
  if (map_.compute(known)) return known.value;
  OdString name = source_.recordName(record);
  OdDbStub* table = target_.table(kind);
  OdDbStub* existing = target_.findRecord(table, name);
  if (existing && drc != OdDb::kDrcReplace) {
    map_.assign(OdDbIdPair(OdDbObjectId(record), OdDbObjectId(existing), false, primary));
    return OdDbObjectId(existing);
  }

  const DxfObject& src = source_.dxf(record);
  std::vector<DxfTag> all = target_.importTags(src);
  std::vector<DxfTag> body(all.begin() + static_cast<std::ptrdiff_t>(bodyStart(src)), all.end());
  DxfDocument& doc = target_.doc();
  if (doc.versionNumber() != 0 && doc.versionNumber() < 1012) {
    std::vector<DxfTag> kept;
    for (const DxfTag& t : body)
      if (t.code != 100 && (t.code < 280 || t.code >= 1000)) kept.push_back(t);
    body.swap(kept);
  }
  // Claim the mapping first: records that refer back to this one then find it.
  if (existing)
    map_.assign(OdDbIdPair(OdDbObjectId(record), OdDbObjectId(existing), true, primary));
  translate(body);
  if (kind == OdDbDatabaseImpl::kLayer) {
    OdString linetype = OdDbTagRange(const_cast<DxfObject&>(src), "AcDbLayerTableRecord")
                            .text(6, OdString(L"Continuous"));
    ensureByName(OdDbDatabaseImpl::kLtype, linetype);
  }
  registerApps(body);

  if (existing) {
    OdDbObjectPtr target = OdDbObjectId(existing).safeOpenObject(OdDb::kForWrite);
    target->assertWriteEnabled();
    DxfObject& obj = target_.dxf(existing);
    std::size_t keep = bodyStart(obj);
    std::vector<DxfTag> tags(obj.tags().begin(),
                             obj.tags().begin() + static_cast<std::ptrdiff_t>(keep));
    tags.insert(tags.end(), body.begin(), body.end());
    obj.setTags(std::move(tags));
    target_.invalidateNames();
    return OdDbObjectId(existing);
  }

  target_.materializeTable(kind);
  std::size_t at = table->index + 1;
  const DxfSection& section = doc.section(table->section);
  while (at < section.size()) {
    std::string_view t = section.object(at).type();
    if (t == "ENDTAB" || t == "TABLE") break;
    ++at;
  }
  std::vector<DxfTag> tags{all.front()};
  tags.insert(tags.end(), body.begin(), body.end());
  OdDbStub* stub = target_.insertObject(table->section, at, std::move(tags));
  DxfObject& obj = target_.dxf(stub);
  bool modern = doc.versionNumber() >= 1012 || doc.versionNumber() == 0;
  std::size_t pos = 1;
  if (modern || target_.hasHandles())
    obj.insertTag(
        pos++, doc.makeText(kind == OdDbDatabaseImpl::kDimstyle ? 105 : 5, stub->handle.ascii()));
  if (modern) obj.insertTag(pos, doc.makeText(330, table->handle.ascii()));
  OdDbObjectId id(stub);
  map_.assign(OdDbIdPair(OdDbObjectId(record), id, true, primary));
  target_.fireAppended(target_.materialize(stub));
  return id;
}
