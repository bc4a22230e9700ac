#include "OdDbDatabaseImpl.h"

#include <algorithm>

#include "DxfGroupCode.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbObject.h"
#include "OdDbObjectFactory.h"
#include "OdDbTagRange.h"
#include "OdError.h"

namespace {

constexpr std::size_t kNone = SIZE_MAX;

std::wstring upperKey(const OdString& name) {
  OdString key = name;
  key.makeUpper();
  return key.str();
}

// An object type for a message, quoted: printable ASCII kept, other bytes as '?', cut short.
std::string quoted(std::string_view type) {
  std::string out = "'";
  for (unsigned char c : type.substr(0, 40))
    out.push_back(c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '?');
  return out + (type.size() > 40 ? "...'" : "'");
}

bool isSubEntity(std::string_view type) {
  return type == "VERTEX" || type == "ATTRIB" || type == "SEQEND";
}

// The owner reference (330) and paper-space flag (67) of an entity, read from its common
// tags only.
void entityPlacement(const DxfObject& obj, std::uint64_t& owner, bool& paper) {
  owner = 0;
  paper = false;
  bool sawEntityMarker = false;
  std::size_t n = obj.size();
  for (std::size_t i = 1; i < n;) {
    int code = obj.code(i);
    if (code == 102) {
      std::string_view v = obj.rawValue(i);
      if (!v.empty() && v.find('{') != std::string_view::npos) {
        ++i;
        while (i < n && obj.code(i) != 102) ++i;
        ++i;
        continue;
      }
    }
    if (code == 1001) break;
    if (code == 100) {
      if (sawEntityMarker) break;
      sawEntityMarker = true;
    } else if (code == 330 && owner == 0) {
      OdDbHandle h;
      if (OdDbHandle::parse(obj.rawValue(i), h)) owner = h.value();
    } else if (code == 67) {
      paper = obj.integer(i) == 1;
    }
    ++i;
  }
}

}  // namespace

const char* OdDbDatabaseImpl::tableName(TableKind kind) {
  static const char* const kNames[] = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                       "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};
  return kind < kTableKinds ? kNames[kind] : "";
}

const char* OdDbDatabaseImpl::recordType(TableKind kind) {
  return tableName(kind);
}

OdDbDatabaseImpl::TableKind OdDbDatabaseImpl::kindOfRecordType(std::string_view type) {
  for (int k = 0; k < kTableKinds; ++k)
    if (type == tableName(static_cast<TableKind>(k))) return static_cast<TableKind>(k);
  return kTableKinds;
}

OdDbDatabaseImpl::OdDbDatabaseImpl(OdDbDatabase* self) : self_(self), stubs_(self) {}

OdDbDatabaseImpl::~OdDbDatabaseImpl() {
  for (OdDbObject* obj : objects_) OdDbObject::destroy(obj);
}

OdDbStub* OdDbDatabaseImpl::newStub(std::uint64_t handle, std::uint32_t section,
                                    std::uint32_t index) {
  OdDbStub& stub = stubs_.emplace_back();
  stub.handle = handle;
  stub.section = section;
  stub.index = index;
  return &stub;
}

OdDbStub* OdDbDatabaseImpl::detachedStub(std::vector<DxfTag> tags, std::uint8_t flags) {
  detached_.push_back(std::make_unique<DxfObject>(*doc_, std::move(tags)));
  OdDbStub* stub = newStub(nextHandle_++, OdDbStub::kNoSection,
                           static_cast<std::uint32_t>(detached_.size() - 1));
  stub->flags = flags | OdDbStub::kDetached;
  byHandle_.add(stubs_.size() - 1);
  return stub;
}

void OdDbDatabaseImpl::load(std::unique_ptr<DxfDocument> doc) {
  // Stubs keep section indexes in 24 bits; a drawing has a handful of sections.
  if (doc->sectionCount() >= OdDbStub::kNoSection - 16)
    throw OdError(eBadDxfFile, doc->fileName() + ": " + std::to_string(doc->sectionCount()) +
                                   " sections are more than a drawing can have");
  doc_ = std::move(doc);
  slots_.assign(doc_->sectionCount(), OdDbSlotList());
  tablesSection_ = sectionIndex("TABLES");
  blocksSection_ = sectionIndex("BLOCKS");
  entitiesSection_ = sectionIndex("ENTITIES");
  std::size_t objectsSection = sectionIndex("OBJECTS");

  for (std::size_t s : {tablesSection_, blocksSection_, entitiesSection_, objectsSection}) {
    if (s == kNone) continue;
    const auto& objects = doc_->section(s).objects();
    const auto first = static_cast<std::uint32_t>(stubs_.size());
    std::vector<std::uint32_t> stubless;
    for (std::size_t i = 0; i < objects.size(); ++i) {
      const DxfObject& obj = objects[i];
      if (obj.type() == "ENDTAB") {
        stubless.push_back(static_cast<std::uint32_t>(i));
        continue;
      }
      newStub(obj.handle(), static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(i));
    }
    slots_[s] = OdDbSlotList(stubs_, first, static_cast<std::uint32_t>(objects.size()),
                             std::move(stubless));
  }
  OdDbHandle handSeed;
  OdDbHandle::parse(doc_->headerText("$HANDSEED").toUtf8(), handSeed);
  assignLoadedHandles(handSeed.value());

  if (tablesSection_ != kNone) indexTables(tablesSection_);
  if (!tables_[kBlockRecord]) indexR12Blocks();
  for (int k = 0; k < kTableKinds; ++k) {
    if (tables_[k]) continue;
    std::vector<DxfTag> tags{doc_->makeRaw(0, "TABLE"),
                             doc_->makeRaw(2, tableName(static_cast<TableKind>(k)))};
    tables_[k] = detachedStub(std::move(tags), 0);
  }
  if (objectsSection != kNone && doc_->section(objectsSection).size() > 0 &&
      doc_->section(objectsSection).object(0).type() == "DICTIONARY")
    namedObjects_ = slots_[objectsSection][0];
}

void OdDbDatabaseImpl::indexTables(std::size_t section) {
  const auto& objects = doc_->section(section).objects();
  for (std::size_t i = 0; i < objects.size(); ++i) {
    const DxfObject& obj = objects[i];
    if (obj.type() != "TABLE") continue;
    std::size_t nameTag = obj.find(2);
    if (nameTag == DxfObject::npos) continue;
    std::string_view name = obj.rawValue(nameTag);
    while (!name.empty() && name.back() == ' ') name.remove_suffix(1);
    while (!name.empty() && name.front() == ' ') name.remove_prefix(1);
    TableKind kind = kindOfRecordType(name);
    if (kind == kTableKinds) continue;
    if (!tables_[kind]) tables_[kind] = slots_[section][i];
    // Everything up to the table's end is one of its records (see tableRecords). A record of
    // another type would be listed as a record and then fail every typed open, or be passed
    // over in silence by whoever skips what does not open: the file is refused here instead.
    for (std::size_t r = i + 1; r < objects.size(); ++r) {
      std::string_view type = objects[r].type();
      if (type == "ENDTAB" || type == "TABLE") break;
      if (type != recordType(kind))
        doc_->fail(objects[r].tag(0), "a record of type " + quoted(type) + " in the " +
                                          tableName(kind) + " table, which holds only " +
                                          recordType(kind) + " records");
    }
  }
}

void OdDbDatabaseImpl::indexR12Blocks() {
  r12Blocks_ = true;
  std::vector<DxfTag> tags{doc_->makeRaw(0, "TABLE"), doc_->makeRaw(2, "BLOCK_RECORD")};
  tables_[kBlockRecord] = detachedStub(std::move(tags), 0);
  if (blocksSection_ == kNone) return;
  const auto& objects = doc_->section(blocksSection_).objects();
  for (std::size_t i = 0; i < objects.size(); ++i)
    if (objects[i].type() == "BLOCK") slots_[blocksSection_][i]->flags |= OdDbStub::kBlockView;
}

std::size_t OdDbDatabaseImpl::sectionIndex(std::string_view name) const {
  for (std::size_t i = 0; i < doc_->sectionCount(); ++i)
    if (doc_->section(i).name() == name) return i;
  return kNone;
}

std::size_t OdDbDatabaseImpl::ensureSection(std::string_view name) {
  std::size_t found = sectionIndex(name);
  if (found != kNone) return found;
  static const char* const kOrder[] = {"HEADER", "CLASSES",  "TABLES",
                                       "BLOCKS", "ENTITIES", "OBJECTS"};
  int rank = 0;
  while (rank < 6 && name != kOrder[rank]) ++rank;
  std::size_t at = 0;
  for (std::size_t i = 0; i < doc_->sectionCount(); ++i) {
    int r = 0;
    while (r < 6 && doc_->section(i).name() != kOrder[r]) ++r;
    if (r < rank) at = i + 1;
  }
  doc_->insertSection(at, name);
  slots_.insert(slots_.begin() + static_cast<std::ptrdiff_t>(at), OdDbSlotList());
  for (std::size_t i = 0; i < stubs_.size(); ++i) {
    OdDbStub& stub = stubs_[i];
    if (stub.section != OdDbStub::kNoSection && stub.section >= at) ++stub.section;
  }
  tablesSection_ = sectionIndex("TABLES");
  blocksSection_ = sectionIndex("BLOCKS");
  entitiesSection_ = sectionIndex("ENTITIES");
  return at;
}

DxfObject& OdDbDatabaseImpl::dxf(const OdDbStub* stub) const {
  if (stub->section == OdDbStub::kNoSection) return *detached_.at(stub->index);
  return doc_->section(stub->section).object(stub->index);
}

OdDbObject* OdDbDatabaseImpl::materialize(OdDbStub* stub) {
  if (stub->object) return stub->object;
  OdDbObject* obj = odDbCreateObjectFor(*this, stub);
  obj->attachResident(stub);
  stub->object = obj;
  objects_.push_back(obj);
  return obj;
}

void OdDbDatabaseImpl::assignLoadedHandles(std::uint64_t handSeed) {
  std::uint64_t maxHandle = 0;
  for (std::size_t i = 0; i < stubs_.size(); ++i)
    maxHandle = std::max(maxHandle, stubs_[i].handle.value());
  hasHandles_ = maxHandle != 0;
  nextHandle_ = byHandle_.build(std::max<std::uint64_t>({maxHandle + 1, handSeed, 1}));
}

OdDbStub* OdDbDatabaseImpl::stubByHandle(std::uint64_t handle) const {
  return byHandle_.find(handle);
}

OdDbStub* OdDbDatabaseImpl::slot(std::size_t section, std::size_t index) const {
  return section < slots_.size() ? slots_[section].at(index) : nullptr;
}

OdDbDatabaseImpl::TableKind OdDbDatabaseImpl::tableKindOf(const OdDbStub* table) const {
  for (int k = 0; k < kTableKinds; ++k)
    if (tables_[k] == table) return static_cast<TableKind>(k);
  return kTableKinds;
}

std::vector<OdDbStub*> OdDbDatabaseImpl::tableRecords(const OdDbStub* table) const {
  std::vector<OdDbStub*> records;
  if (!table) return records;
  if (r12Blocks_ && table == tables_[kBlockRecord]) {
    if (blocksSection_ == kNone) return records;
    const OdDbSlotList& slots = slots_[blocksSection_];
    for (std::size_t i = 0; i < slots.size(); ++i)
      if (OdDbStub* stub = slots[i]; stub && (stub->flags & OdDbStub::kBlockView))
        records.push_back(stub);
    return records;
  }
  if (table->section == OdDbStub::kNoSection) return records;
  const DxfSection& section = doc_->section(table->section);
  for (std::size_t i = table->index + 1; i < section.size(); ++i) {
    std::string_view type = section.object(i).type();
    if (type == "ENDTAB" || type == "TABLE") break;
    if (OdDbStub* stub = slots_[table->section][i]) records.push_back(stub);
  }
  return records;
}

OdString OdDbDatabaseImpl::recordName(const OdDbStub* record) const {
  const DxfObject& obj = dxf(record);
  std::size_t i = obj.find(2);
  return i == DxfObject::npos ? OdString() : obj.text(i);
}

OdDbStub* OdDbDatabaseImpl::findRecord(const OdDbStub* table, const OdString& name) {
  NameIndex& index = names_[table];
  if (index.generation != namesGeneration_) {
    index.byName.clear();
    index.duplicates = false;
    for (OdDbStub* rec : tableRecords(table))
      if (!rec->isErased() && !index.byName.try_emplace(upperKey(recordName(rec)), rec).second)
        index.duplicates = true;
    index.generation = namesGeneration_;
  }
  auto it = index.byName.find(upperKey(name));
  return it == index.byName.end() ? nullptr : it->second;
}

OdDbDatabaseImpl::NameIndex* OdDbDatabaseImpl::currentIndexOf(const OdDbStub* stub) {
  for (int kind = 0; kind < kTableKinds; ++kind) {
    if (kind == kBlockRecord || !isRecordOf(stub, static_cast<TableKind>(kind))) continue;
    auto it = names_.find(tables_[kind]);
    return it != names_.end() && it->second.generation == namesGeneration_ ? &it->second : nullptr;
  }
  return nullptr;
}

void OdDbDatabaseImpl::recordAdded(OdDbStub* stub) {
  NameIndex* index = stub->isErased() ? nullptr : currentIndexOf(stub);
  if (!index) {
    invalidateNames();
    return;
  }
  auto [it, added] = index->byName.try_emplace(upperKey(recordName(stub)), stub);
  if (!added && it->second != stub) index->duplicates = true;
}

void OdDbDatabaseImpl::recordErased(OdDbStub* stub) {
  NameIndex* index = currentIndexOf(stub);
  if (!index || index->duplicates) {
    // Not a record of an indexed table (an entity, say: erasing it renames nothing, but an
    // old file's block records are entities) or another record may take over the name.
    invalidateNames();
    return;
  }
  auto it = index->byName.find(upperKey(recordName(stub)));
  if (it != index->byName.end() && it->second == stub) index->byName.erase(it);
}

void OdDbDatabaseImpl::recordRenamed(OdDbStub* stub, const OdString& oldName) {
  NameIndex* index = stub->isErased() ? nullptr : currentIndexOf(stub);
  if (!index || index->duplicates) {
    invalidateNames();
    return;
  }
  auto it = index->byName.find(upperKey(oldName));
  if (it != index->byName.end() && it->second == stub) index->byName.erase(it);
  auto [at, added] = index->byName.try_emplace(upperKey(recordName(stub)), stub);
  if (!added && at->second != stub) index->duplicates = true;
}

OdDbStub* OdDbDatabaseImpl::findBlockRecord(std::wstring_view upperName) {
  for (OdDbStub* rec : tableRecords(tables_[kBlockRecord]))
    if (upperKey(recordName(rec)) == upperName) return rec;
  return nullptr;
}

OdDbStub* OdDbDatabaseImpl::modelSpace() {
  if (!modelSpace_) {
    modelSpace_ = findBlockRecord(L"*MODEL_SPACE");
    if (!modelSpace_ && r12Blocks_) modelSpace_ = findBlockRecord(L"$MODEL_SPACE");
    if (!modelSpace_) {
      std::vector<DxfTag> tags{doc_->makeRaw(0, r12Blocks_ ? "BLOCK" : "BLOCK_RECORD"),
                               doc_->makeRaw(2, "*Model_Space")};
      modelSpace_ = detachedStub(std::move(tags), r12Blocks_ ? OdDbStub::kBlockView : 0);
    }
  }
  return modelSpace_;
}

OdDbStub* OdDbDatabaseImpl::paperSpace() {
  if (!paperSpace_) {
    paperSpace_ = findBlockRecord(L"*PAPER_SPACE");
    if (!paperSpace_ && r12Blocks_) paperSpace_ = findBlockRecord(L"$PAPER_SPACE");
    if (!paperSpace_) {
      std::vector<DxfTag> tags{doc_->makeRaw(0, r12Blocks_ ? "BLOCK" : "BLOCK_RECORD"),
                               doc_->makeRaw(2, "*Paper_Space")};
      paperSpace_ = detachedStub(std::move(tags), r12Blocks_ ? OdDbStub::kBlockView : 0);
    }
  }
  return paperSpace_;
}

bool OdDbDatabaseImpl::isPaperSpaceRecord(const OdDbStub* record) {
  return record == paperSpace();
}

std::size_t OdDbDatabaseImpl::blockBeginIndex(const OdDbStub* record) const {
  if (blocksSection_ == kNone || record->section == OdDbStub::kNoSection) return kNone;
  if (record->flags & OdDbStub::kBlockView) return record->index;
  const DxfSection& section = doc_->section(blocksSection_);
  std::wstring name = upperKey(recordName(record));
  std::size_t byName = kNone;
  for (std::size_t i = 0; i < section.size(); ++i) {
    const DxfObject& obj = section.object(i);
    if (obj.type() != "BLOCK") continue;
    std::uint64_t owner;
    bool paper;
    entityPlacement(obj, owner, paper);
    if (owner == record->handle.value()) return i;
    if (byName == kNone) {
      std::size_t t = obj.find(2);
      if (t != DxfObject::npos && upperKey(obj.text(t)) == name) byName = i;
    }
  }
  return byName;
}

std::vector<OdDbStub*> OdDbDatabaseImpl::blockEntities(const OdDbStub* record,
                                                       bool withErased) const {
  std::vector<OdDbStub*> result;
  auto* self = const_cast<OdDbDatabaseImpl*>(this);
  OdDbStub* model = self->modelSpace();
  OdDbStub* paper = self->paperSpace();
  if (record == model || record == paper) {
    if (entitiesSection_ == kNone) return result;
    const DxfSection& section = doc_->section(entitiesSection_);
    for (std::size_t i = 0; i < section.size(); ++i) {
      const DxfObject& obj = section.object(i);
      OdDbStub* stub = slots_[entitiesSection_][i];
      if (!stub || isSubEntity(obj.type())) continue;
      if (stub->isErased() && !withErased) continue;
      std::uint64_t owner;
      bool inPaper;
      entityPlacement(obj, owner, inPaper);
      bool mine = owner != 0 ? owner == record->handle.value() : (inPaper == (record == paper));
      if (owner != 0 && owner != model->handle.value() && owner != paper->handle.value())
        mine = (record == paper) == inPaper;  // an owner we do not know: go by the flag
      if (mine) result.push_back(stub);
    }
    return result;
  }
  std::size_t begin = blockBeginIndex(record);
  if (begin == kNone) return result;
  const DxfSection& section = doc_->section(blocksSection_);
  for (std::size_t i = begin + 1; i < section.size(); ++i) {
    const DxfObject& obj = section.object(i);
    std::string_view type = obj.type();
    if (type == "ENDBLK" || type == "BLOCK") break;
    OdDbStub* stub = slots_[blocksSection_][i];
    if (!stub || isSubEntity(type)) continue;
    if (stub->isErased() && !withErased) continue;
    result.push_back(stub);
  }
  return result;
}

std::vector<OdDbStub*> OdDbDatabaseImpl::followers(const OdDbStub* entity) const {
  std::vector<OdDbStub*> result;
  if (entity->section == OdDbStub::kNoSection) return result;
  const DxfSection& section = doc_->section(entity->section);
  std::string_view type = section.object(entity->index).type();
  if (type != "POLYLINE" && type != "INSERT") return result;
  for (std::size_t i = entity->index + 1; i < section.size(); ++i) {
    std::string_view t = section.object(i).type();
    if (!isSubEntity(t)) break;
    if (OdDbStub* stub = slots_[entity->section][i]) result.push_back(stub);
    if (t == "SEQEND") break;
  }
  return result;
}

std::pair<std::size_t, std::size_t> OdDbDatabaseImpl::entityInsertPosition(const OdDbStub* record) {
  if (record == modelSpace() || record == paperSpace()) {
    std::size_t s = ensureSection("ENTITIES");
    return {s, doc_->section(s).size()};
  }
  std::size_t begin = blockBeginIndex(record);
  if (begin == kNone)
    throw OdError(eInvalidInput, "the block " + recordName(record).toUtf8() +
                                     " has no BLOCK entity to add entities to");
  const DxfSection& section = doc_->section(blocksSection_);
  std::size_t i = begin + 1;
  while (i < section.size() && section.object(i).type() != "ENDBLK") ++i;
  return {blocksSection_, i};
}

void OdDbDatabaseImpl::defineBlock(OdDbStub* record) {
  const bool modern = doc_->versionNumber() >= 1012 || doc_->versionNumber() == 0;
  if (!modern || blockBeginIndex(record) != kNone) return;
  const OdString name = recordName(record);
  const std::string owner = record->handle.ascii();
  const std::size_t blocks = ensureSection("BLOCKS");
  auto place = [&](std::vector<DxfTag> tags) {
    OdDbStub* stub = insertObject(blocks, doc_->section(blocks).size(), std::move(tags));
    DxfObject& obj = dxf(stub);
    obj.insertTag(1, doc_->makeText(5, stub->handle.ascii()));
    obj.insertTag(2, doc_->makeRaw(330, owner));
  };
  place({doc_->makeRaw(0, "BLOCK"), doc_->makeRaw(100, "AcDbEntity"), doc_->makeRaw(8, "0"),
         doc_->makeRaw(100, "AcDbBlockBegin"), doc_->makeText(2, name),
         doc_->makeInteger(70, name.left(1) == L"*" ? 1 : 0), doc_->makeRaw(10, "0.0"),
         doc_->makeRaw(20, "0.0"), doc_->makeRaw(30, "0.0"), doc_->makeText(3, name),
         doc_->makeRaw(1, "")});
  place({doc_->makeRaw(0, "ENDBLK"), doc_->makeRaw(100, "AcDbEntity"), doc_->makeRaw(8, "0"),
         doc_->makeRaw(100, "AcDbBlockEnd")});
}

void OdDbDatabaseImpl::addBlockFlags(const OdDbStub* record, int flags) {
  const std::size_t begin = blockBeginIndex(record);
  if (begin == kNone) return;
  OdDbTagRange range(doc_->section(blocksSection_).object(begin), "AcDbBlockBegin");
  const std::int64_t old = range.integer(70, 0);
  if ((old | flags) != old) range.setInteger(70, old | flags, {2});
}

std::uint64_t OdDbDatabaseImpl::newHandle() {
  handSeedDirty_ = true;
  return nextHandle_++;
}

OdDbStub* OdDbDatabaseImpl::insertObject(std::size_t section, std::size_t index,
                                         std::vector<DxfTag> tags) {
  doc_->section(section).insertObject(index, std::move(tags));
  OdDbStub* stub =
      newStub(newHandle(), static_cast<std::uint32_t>(section), static_cast<std::uint32_t>(index));
  byHandle_.add(stubs_.size() - 1);
  slots_.at(section).insert(index, stub);
  if (section == tablesSection_) recordAdded(stub);
  return stub;
}

std::vector<DxfTag> OdDbDatabaseImpl::importTags(const DxfObject& source) {
  const DxfDocument& from = source.document();
  std::vector<DxfTag> tags;
  tags.reserve(source.size());
  for (const DxfTag& tag : source.tags()) {
    if (&from == doc_.get()) {
      tags.push_back(tag);
      continue;
    }
    DxfValueType type = DxfGroupCode::valueType(tag.code);
    switch (type) {
      case DxfValueType::kString:
        tags.push_back(doc_->makeText(tag.code, from.text(tag)));
        break;
      case DxfValueType::kBinary:
        tags.push_back(doc_->makeBinary(tag.code, from.binaryChunk(tag)));
        break;
      case DxfValueType::kDouble:
        tags.push_back(tag.isBinaryForm() ? doc_->makeReal(tag.code, from.real(tag))
                                          : doc_->makeRaw(tag.code, from.rawValue(tag)));
        break;
      default:
        tags.push_back(tag.isBinaryForm() ? doc_->makeInteger(tag.code, from.integer(tag))
                                          : doc_->makeRaw(tag.code, from.rawValue(tag)));
        break;
    }
  }
  return tags;
}

void OdDbDatabaseImpl::prepareSave() {
  for (std::size_t s = 0; s < slots_.size(); ++s) {
    auto& slots = slots_[s];
    for (std::size_t i = slots.size(); i-- > 0;) {
      OdDbStub* stub = slots[i];
      if (!stub || !stub->isErased()) continue;
      DxfSection& section = doc_->section(s);
      detached_.push_back(std::make_unique<DxfObject>(std::move(section.objects()[i])));
      section.objects().erase(section.objects().begin() + static_cast<std::ptrdiff_t>(i));
      stub->section = OdDbStub::kNoSection;
      stub->index = static_cast<std::uint32_t>(detached_.size() - 1);
      stub->flags |= OdDbStub::kDetached;
      slots.erase(i);
    }
  }
  if (handSeedDirty_) {
    doc_->setHeaderVariable("$HANDSEED", {doc_->makeText(5, OdDbHandle(nextHandle_).ascii())});
    handSeedDirty_ = false;
  }
}

namespace {
template <class F>
void forEachReactor(const std::vector<OdDbDatabaseReactor*>& reactors, F f) {
  std::vector<OdDbDatabaseReactor*> copy = reactors;
  for (OdDbDatabaseReactor* r : copy) f(r);
}
}  // namespace

void OdDbDatabaseImpl::fireModified(const OdDbObject* object) {
  forEachReactor(reactors_, [&](OdDbDatabaseReactor* r) { r->objectModified(self_, object); });
}
void OdDbDatabaseImpl::fireOpenedForModify(const OdDbObject* object) {
  forEachReactor(reactors_,
                 [&](OdDbDatabaseReactor* r) { r->objectOpenedForModify(self_, object); });
}
void OdDbDatabaseImpl::fireAppended(const OdDbObject* object) {
  forEachReactor(reactors_, [&](OdDbDatabaseReactor* r) { r->objectAppended(self_, object); });
}
void OdDbDatabaseImpl::fireErased(const OdDbObject* object, bool erased) {
  forEachReactor(reactors_,
                 [&](OdDbDatabaseReactor* r) { r->objectErased(self_, object, erased); });
}

void OdDbDatabaseImpl::materializeTable(TableKind kind) {
  OdDbStub* stub = tables_[kind];
  if (stub->section != OdDbStub::kNoSection) return;
  if (kind == kBlockRecord && r12Blocks_)
    throw OdError(eNotImplementedYet, "adding blocks to a release-12 drawing is not supported");
  std::size_t s = ensureSection("TABLES");
  tablesSection_ = s;
  DxfSection& section = doc_->section(s);
  bool modern = doc_->versionNumber() >= 1012 || doc_->versionNumber() == 0;
  std::vector<DxfTag> head{doc_->makeRaw(0, "TABLE"), doc_->makeRaw(2, tableName(kind))};
  if (modern) {
    head.push_back(doc_->makeText(5, stub->handle.ascii()));
    head.push_back(doc_->makeRaw(330, "0"));
    head.push_back(doc_->makeRaw(100, "AcDbSymbolTable"));
  }
  head.push_back(doc_->makeRaw(70, "0"));
  std::size_t at = section.size();
  section.insertObject(at, std::move(head));
  section.insertObject(at + 1, std::vector<DxfTag>{doc_->makeRaw(0, "ENDTAB")});
  stub->section = static_cast<std::uint32_t>(s);
  slots_[s].insert(at, stub);
  slots_[s].insert(at + 1, nullptr);
  stub->flags &= static_cast<std::uint8_t>(~OdDbStub::kDetached);
  handSeedDirty_ = true;
}

OdString OdDbDatabaseImpl::checkedRecordName(const OdDbObjectId& id, TableKind kind) {
  if (id.isNull()) throw OdError(eNullObjectId, "no record given");
  if (id.database() != self_)
    throw OdError(eWrongDatabase, "the record belongs to another drawing");
  OdDbStub* stub = id.stub();
  if (id.isErased())
    throw OdError(eWasErased, "the record " + recordName(stub).toUtf8() + " is erased");
  if (isRecordOf(stub, kind)) return recordName(stub);
  if (kind == kBlockRecord && (stub == modelSpace() || stub == paperSpace()))
    return recordName(stub);
  throw OdError(eInvalidInput, "the object " + id.getHandle().ascii() + " is not a record of the " +
                                   tableName(kind) + " table");
}

bool OdDbDatabaseImpl::isRecordOf(const OdDbStub* stub, TableKind kind) const {
  // Every reference setter asks this, so it must not walk the table: a record of the table
  // is an object of the table's record type placed after the table's head in the same
  // section, and, when it names an owner, owned by no other table.
  const OdDbStub* table = tables_[kind];
  if (!table || stub->section == OdDbStub::kNoSection) return false;
  if (kind == kBlockRecord && r12Blocks_)
    return stub->section == blocksSection_ && (stub->flags & OdDbStub::kBlockView) != 0;
  if (stub->section != table->section || stub->index <= table->index) return false;
  const DxfObject& obj = dxf(stub);
  if (obj.type() != recordType(kind)) return false;
  std::uint64_t owner = 0;
  bool paper = false;
  entityPlacement(obj, owner, paper);
  if (owner == 0 || owner == table->handle.value()) return true;
  const OdDbStub* ownerStub = stubByHandle(owner);
  return !ownerStub || ownerStub->section != table->section || dxf(ownerStub).type() != "TABLE";
}
