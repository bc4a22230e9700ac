#include "OdDbCloner.h"

#include "DxfGroupCode.h"
#include "OdDbDatabase.h"
#include "OdDbDimStyleTableRecord.h"
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

// Group codes of layers and linetypes that files store only from a release on ($ACADVER's
// number): a copy into an older drawing leaves them out.
struct LaterCode {
  OdDbDatabaseImpl::TableKind kind;
  int code;
  int since;
};
const LaterCode kLaterCodes[] = {
    // Layers: plotting, lineweight and plot style; true colour and colour name; material.
    {OdDbDatabaseImpl::kLayer, 290, 1015},
    {OdDbDatabaseImpl::kLayer, 370, 1015},
    {OdDbDatabaseImpl::kLayer, 390, 1015},
    {OdDbDatabaseImpl::kLayer, 420, 1018},
    {OdDbDatabaseImpl::kLayer, 430, 1018},
    {OdDbDatabaseImpl::kLayer, 347, 1021},
    // Linetypes: the shapes and texts of complex patterns.
    {OdDbDatabaseImpl::kLtype, 9, 1012},
    {OdDbDatabaseImpl::kLtype, 44, 1012},
    {OdDbDatabaseImpl::kLtype, 45, 1012},
    {OdDbDatabaseImpl::kLtype, 46, 1012},
    {OdDbDatabaseImpl::kLtype, 50, 1012},
    {OdDbDatabaseImpl::kLtype, 74, 1012},
    {OdDbDatabaseImpl::kLtype, 75, 1012},
    {OdDbDatabaseImpl::kLtype, 340, 1012},
};

// Drops from a record's `body` the codes files of release `version` do not store (the
// extended data is kept: every release with tables stores it).
void keepCodesOf(OdDbDatabaseImpl::TableKind kind, int version, std::vector<DxfTag>& body) {
  std::vector<DxfTag> kept;
  bool xdata = false;
  for (const DxfTag& t : body) {
    xdata = xdata || t.code == 1001;
    bool keep = true;
    for (const LaterCode& later : kLaterCodes)
      if (!xdata && later.kind == kind && later.code == t.code && version < later.since)
        keep = false;
    if (keep) kept.push_back(t);
  }
  body.swap(kept);
}

// Drops the dimension variables of a DIMSTYLE's `body` that files of release `version` do
// not store, so that a copy into an older drawing writes nothing its release cannot hold.
void keepDimVarsOf(int version, std::vector<DxfTag>& body) {
  std::vector<DxfTag> kept;
  bool flags = false;
  bool inGroup = false;
  bool xdata = false;
  for (const DxfTag& t : body) {
    xdata = xdata || t.code == 1001;
    if (t.code == 102) inGroup = !inGroup;
    bool keep = xdata || inGroup || t.code == 100 || t.code == 102 || t.code == 2;
    if (!keep && t.code == 70 && !flags) keep = flags = true;  // the record's flags
    if (!keep)
      keep = OdDbDimStyleTableRecord::dimVarName(t.code).isEmpty() ||
             OdDbDimStyleTableRecord::isDimVarHeldBy(t.code, version);
    if (keep) kept.push_back(t);
  }
  body.swap(kept);
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

OdDbObjectId OdDbCloner::ensureBlock(const OdString& name) {
  if (name.isEmpty()) return OdDbObjectId();
  if (blockResolver_) return blockResolver_(name);
  OdDbStub* blocks = target_.table(OdDbDatabaseImpl::kBlockRecord);
  if (OdDbStub* mine = target_.findRecord(blocks, name)) return OdDbObjectId(mine);
  if (target_.isR12BlockTable() || source_.isR12BlockTable()) return OdDbObjectId();
  OdDbStub* theirs = source_.findRecord(source_.table(OdDbDatabaseImpl::kBlockRecord), name);
  return theirs ? copyBlock(theirs) : OdDbObjectId();
}

void OdDbCloner::ensureEntityNames(const DxfObject& entity) {
  std::size_t layer = entity.find(8);
  if (layer != DxfObject::npos) ensureByName(OdDbDatabaseImpl::kLayer, entity.text(layer));
  std::size_t linetype = entity.find(6);
  if (linetype != DxfObject::npos) ensureByName(OdDbDatabaseImpl::kLtype, entity.text(linetype));
  std::string_view type = entity.type();
  if (type == "TEXT" || type == "MTEXT" || type == "ATTDEF") {
    std::size_t style = entity.find(7);
    if (style != DxfObject::npos) ensureByName(OdDbDatabaseImpl::kStyle, entity.text(style));
  }
}

OdDbObjectId OdDbCloner::copyBlock(OdDbStub* record) {
  std::size_t begin = source_.blockBeginIndex(record);
  if (begin == SIZE_MAX) return OdDbObjectId();
  OdDbObjectId copy = clone(record, OdDbDatabaseImpl::kBlockRecord, OdDb::kDrcIgnore, false);
  if (copy.isNull()) return copy;
  const std::string owner = copy.getHandle().ascii();
  const std::size_t from = source_.blocksSection();
  const DxfSection& section = source_.doc().section(from);
  DxfDocument& doc = target_.doc();
  std::string parent = owner;  // vertices, attributes and SEQEND belong to their entity
  bool erasedParent = false;
  for (std::size_t i = begin; i < section.size(); ++i) {
    const DxfObject& src = section.object(i);
    const std::string_view type = src.type();
    if (i > begin && type == "BLOCK") break;
    const bool sub = type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
    OdDbStub* stub = source_.slot(from, i);
    const bool erased = (stub && stub->isErased()) || (sub && erasedParent);
    if (!sub) erasedParent = erased;
    if (erased) continue;
    ensureEntityNames(src);
    std::vector<DxfTag> all = target_.importTags(src);
    std::vector<DxfTag> body(all.begin() + static_cast<std::ptrdiff_t>(bodyStart(src)), all.end());
    translate(body);
    registerApps(body);
    std::vector<DxfTag> tags{all.front()};
    tags.insert(tags.end(), body.begin(), body.end());
    // Found anew each time: copying a record the entity names may add the TABLES section.
    const std::size_t into = target_.ensureSection("BLOCKS");
    OdDbStub* made = target_.insertObject(into, doc.section(into).size(), std::move(tags));
    DxfObject& obj = target_.dxf(made);
    obj.insertTag(1, doc.makeText(5, made->handle.ascii()));
    obj.insertTag(2, doc.makeText(330, sub ? OdString(parent.c_str()) : OdString(owner.c_str())));
    if (!sub) parent = made->handle.ascii();
    target_.fireAppended(target_.materialize(made));
    if (type == "ENDBLK") break;
  }
  return copy;
}

OdDbObjectId OdDbCloner::mapReference(OdDbStub* ref) {
  if (!ref) return OdDbObjectId();
  OdDbIdPair pair{OdDbObjectId(ref)};
  if (map_.compute(pair)) return pair.value;
  OdDbDatabaseImpl::TableKind kind = OdDbDatabaseImpl::kindOfRecordType(source_.dxf(ref).type());
  const bool inTables = ref->section != OdDbStub::kNoSection &&
                        source_.doc().section(ref->section).name() == "TABLES";
  if (kind == OdDbDatabaseImpl::kTableKinds || !inTables) return OdDbObjectId();
  return kind == OdDbDatabaseImpl::kBlockRecord ? ensureBlock(source_.recordName(ref))
                                                : ensureByName(kind, source_.recordName(ref));
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
    OdDbObjectId mapped = mapReference(h.isNull() ? nullptr : source_.stubByHandle(h.value()));
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
  // Release 12 records have no subclasses.
  if (doc.formatRelease() < 1012) {
    std::vector<DxfTag> kept;
    for (const DxfTag& t : body)
      if (t.code != 100 && (t.code < 280 || t.code >= 1000)) kept.push_back(t);
    body.swap(kept);
  }
  if (kind == OdDbDatabaseImpl::kDimstyle)
    keepDimVarsOf(doc.formatRelease(), body);
  else
    keepCodesOf(kind, doc.formatRelease(), body);
  // Claim the mapping first: records that refer back to this one then find it.
  if (existing)
    map_.assign(OdDbIdPair(OdDbObjectId(record), OdDbObjectId(existing), true, primary));
  translate(body);
  // Before release 2000 a dimension style names its arrow blocks (DIMBLK, DIMBLK1, DIMBLK2).
  if (kind == OdDbDatabaseImpl::kDimstyle)
    for (const DxfTag& t : body) {
      if (t.code == 1001) break;
      if (t.code >= 5 && t.code <= 7) ensureBlock(doc.text(t));
    }
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
    // Names match ignoring case; the record keeps the spelling it has ("STANDARD" stays so).
    for (DxfTag& tag : body)
      if (tag.code == 2) {
        if (std::size_t own = obj.find(2); own != DxfObject::npos) tag = obj.tag(own);
        break;
      }
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
  bool modern = doc.formatRelease() >= 1012;
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
