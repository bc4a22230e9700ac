#include "OdDbDrawingInserter.h"

#include "OdDbBlockReference.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbObject.h"
#include "OdError.h"

namespace {

using Impl = OdDbDatabaseImpl;

bool isDimension(std::string_view type) {
  return type.size() >= 9 && type.substr(type.size() - 9) == "DIMENSION";
}

// The index of the first tag `code` of `obj` before its extended data, or npos.
std::size_t findBeforeXData(const DxfObject& obj, int code) {
  for (std::size_t i = 1; i < obj.size(); ++i) {
    if (obj.code(i) == 1001) break;
    if (obj.code(i) == code) return i;
  }
  return DxfObject::npos;
}

std::wstring upper(const OdString& name) {
  OdString key = name;
  return key.makeUpper().str();
}

bool isLayoutName(const OdString& name) {
  const std::wstring key = upper(name);
  for (const wchar_t* layout : {L"*MODEL_SPACE", L"*PAPER_SPACE", L"$MODEL_SPACE", L"$PAPER_SPACE"})
    if (key.rfind(layout, 0) == 0) return true;
  return false;
}

// "plan.dxf (AC1009)": a drawing and its release, for a message.
std::string describe(const Impl& db) {
  const std::string name = db.fileName.empty() ? std::string("a new drawing") : db.fileName;
  return name + " (" +
         (db.doc().version().empty() ? "no $ACADVER: release 12" : db.doc().version()) + ")";
}

}  // namespace

OdDbDrawingInserter::OdDbDrawingInserter(Impl& source, Impl& target)
    : source_(source),
      target_(target),
      cloner_(source, target, map_),
      modern_(target.doc().formatRelease() >= 1012) {
  if (&source == &target) throw OdError(eWrongDatabase, "a drawing cannot be inserted into itself");
  const bool sourceModern = source.doc().formatRelease() >= 1012;
  if (sourceModern != modern_)
    throw OdError(eNotImplementedYet,
                  "cannot insert " + describe(source) + " into " + describe(target) +
                      ": drawings of release 12 and older store entities otherwise than "
                      "drawings of release 13 and later");
  if (modern_ && target.isR12BlockTable())
    throw OdError(eNotImplementedYet,
                  "cannot insert a drawing into " + describe(target) +
                      ": it is of release 13 or later but has no block table to add a block to");
  map_.setOrigDb(source.self());
  map_.setDestDb(target.self());
  map_.setDuplicateRecordCloning(OdDb::kDrcIgnore);
  cloner_.setBlockResolver([this](const OdString& name) { return resolveBlock(name); });
}

OdString OdDbDrawingInserter::freeBlockName(const OdString& wanted) {
  std::wstring name;
  for (wchar_t c : wanted.str()) {
    if (modern_) {
      const bool bad =
          c < 0x20 || std::wstring_view(L"<>/\\\":;?*|,=`").find(c) != std::wstring_view::npos;
      name.push_back(bad ? L'_' : c);
    } else {
      // Release 12 names: letters, digits, '$', '-' and '_', in upper case.
      wchar_t u = (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - L'a' + L'A') : c;
      const bool good = (u >= L'A' && u <= L'Z') || (u >= L'0' && u <= L'9') || u == L'$' ||
                        u == L'-' || u == L'_';
      name.push_back(good ? u : L'_');
    }
  }
  while (!name.empty() && name.back() == L' ') name.pop_back();
  while (!name.empty() && name.front() == L' ') name.erase(name.begin());
  if (name.empty()) name = modern_ ? L"Block" : L"BLOCK";
  const std::size_t limit = modern_ ? 255 : 31;
  OdDbStub* blocks = target_.table(Impl::kBlockRecord);
  for (int n = 1;; ++n) {
    const std::wstring suffix =
        n == 1 ? std::wstring()
               : (modern_ ? L"(" + std::to_wstring(n) + L")" : L"_" + std::to_wstring(n));
    std::wstring candidate = name.substr(0, limit - suffix.size()) + suffix;
    if (!target_.findRecord(blocks, OdString(candidate))) return OdString(candidate);
  }
}

OdDbDatabase::InsertResult OdDbDrawingInserter::insert(const OdString& name) {
  const std::size_t firstNew = target_.numStubs();
  OdDbDatabase::InsertResult result;
  try {
    const std::vector<OdDbStub*> entities = source_.blockEntities(source_.modelSpace(), false);
    int flags = 0;
    for (OdDbStub* e : entities)
      if (source_.dxf(e).type() == "ATTDEF") flags = 2;  // the block has attribute definitions
    result.blockName = freeBlockName(name);
    OdDbStub* record = makeBlock(result.blockName, nullptr, flags);
    result.block = OdDbObjectId(record);
    result.entities = copyEntities(entities, record);
    for (OdDbStub* stub : made_) target_.fireAppended(target_.materialize(stub));
    made_.clear();

    OdDbBlockTableRecordPtr space =
        OdDbObjectId(target_.modelSpace()).safeOpenObject(OdDb::kForWrite);
    OdDbBlockReferencePtr reference = OdDbBlockReference::createObject();
    result.reference = space->appendOdDbEntity(reference.get());
    reference->setBlockTableRecord(result.block);
    OdDbObjectId layer = target_.recordByName(Impl::kLayer, target_.doc().headerText("$CLAYER"));
    if (layer.isNull()) layer = target_.recordByName(Impl::kLayer, OdString(L"0"));
    if (!layer.isNull()) reference->setLayer(layer);
  } catch (...) {
    undo(firstNew);
    throw;
  }
  return result;
}

void OdDbDrawingInserter::undo(std::size_t firstNew) {
  for (std::size_t i = firstNew; i < target_.numStubs(); ++i) {
    OdDbStub* stub = target_.stubAt(i);
    if (stub->section == OdDbStub::kNoSection || stub->isErased()) continue;
    stub->flags |= OdDbStub::kErased;
    if (stub->object) target_.fireErased(stub->object, true);
  }
  target_.invalidateNames();
}

OdDbObjectId OdDbDrawingInserter::resolveBlock(const OdString& name) {
  if (name.isEmpty()) return OdDbObjectId();
  OdDbStub* mineTable = target_.table(Impl::kBlockRecord);
  const std::wstring key = upper(name);
  if (auto known = blockNames_.find(key); known != blockNames_.end())
    return OdDbObjectId(target_.findRecord(mineTable, known->second));
  OdDbStub* theirs = source_.findRecord(source_.table(Impl::kBlockRecord), name);
  OdDbStub* mine = target_.findRecord(mineTable, name);
  const bool anonymous = name[0] == L'*';
  if (!theirs || (mine && !anonymous) || isLayoutName(name)) {
    // The target's block wins, as every record of a name it has does.
    blockNames_[key] = name;
    if (theirs && mine)
      map_.assign(OdDbIdPair(OdDbObjectId(theirs), OdDbObjectId(mine), false, false));
    return OdDbObjectId(mine);
  }
  OdString newName = name;
  if (mine) {
    // Anonymous blocks are private to what shows them: the copy takes the next free number.
    int digits = 1;
    while (digits < name.getLength() && !(name[digits] >= L'0' && name[digits] <= L'9')) ++digits;
    const OdString prefix = name.left(digits);
    for (int n = 1; target_.findRecord(mineTable, newName); ++n)
      newName = prefix + OdString(std::to_wstring(n));
  }
  blockNames_[key] = newName;
  OdDbStub* record = makeBlock(newName, theirs, 0);
  copyEntities(source_.blockEntities(theirs, false), record);
  return OdDbObjectId(record);
}

std::vector<DxfTag> OdDbDrawingInserter::bodyOf(const DxfObject& src) {
  std::vector<DxfTag> all = target_.importTags(src);
  std::vector<DxfTag> body;
  body.reserve(all.size());
  bool common = true;  // in the part before the object's own subclass
  bool xdata = false;
  for (std::size_t i = 1; i < all.size(); ++i) {
    const int code = all[i].code;
    xdata = xdata || code == 1001;
    if (common && !xdata) {
      if (code == 100 && src.text(i) != OdString(L"AcDbEntity")) common = false;
      if (code == 5 || code == 105 || code == 330) continue;
      if (code == 102 && src.rawValue(i).find('{') != std::string_view::npos) {
        while (i + 1 < all.size() && all[i + 1].code != 102) ++i;
        ++i;  // the closing 102
        continue;
      }
    }
    body.push_back(all[i]);
  }
  // The block an insert or a dimension shows may have another name in the target.
  const std::string_view type = src.type();
  if (type == "INSERT" || isDimension(type)) {
    for (DxfTag& tag : body) {
      if (tag.code == 1001) break;
      if (tag.code != 2) continue;
      auto renamed = blockNames_.find(upper(target_.doc().text(tag)));
      if (renamed != blockNames_.end()) tag = target_.doc().makeText(2, renamed->second);
      break;
    }
  }
  return body;
}

void OdDbDrawingInserter::resolveNames(const DxfObject& entity) {
  auto named = [&](int code) {
    std::size_t at = findBeforeXData(entity, code);
    return at == DxfObject::npos ? OdString() : entity.text(at);
  };
  auto ensure = [&](Impl::TableKind kind, int code) {
    const OdString name = named(code);
    if (!name.isEmpty()) cloner_.ensureByName(kind, name);
  };
  ensure(Impl::kLayer, 8);
  ensure(Impl::kLtype, 6);
  const std::string_view type = entity.type();
  if (type == "TEXT" || type == "MTEXT" || type == "ATTDEF" || type == "ATTRIB")
    ensure(Impl::kStyle, 7);
  if (isDimension(type) || type == "LEADER" || type == "TOLERANCE") ensure(Impl::kDimstyle, 3);
  if (type == "INSERT" || isDimension(type)) resolveBlock(named(2));
}

OdDbStub* OdDbDrawingInserter::place(std::size_t section, std::size_t index, const DxfTag& type,
                                     std::vector<DxfTag> body, int handleCode,
                                     const std::string& owner) {
  DxfDocument& doc = target_.doc();
  body.insert(body.begin(), type);
  OdDbStub* stub = target_.insertObject(section, index, std::move(body));
  DxfObject& obj = target_.dxf(stub);
  std::size_t at = 1;
  if (modern_ || target_.hasHandles())
    obj.insertTag(at++, doc.makeText(handleCode, stub->handle.ascii()));
  if (modern_ && !owner.empty()) obj.insertTag(at, doc.makeText(330, OdString(owner)));
  made_.push_back(stub);
  return stub;
}

OdDbStub* OdDbDrawingInserter::makeBlock(const OdString& name, OdDbStub* sourceRecord, int flags) {
  DxfDocument& doc = target_.doc();
  const std::size_t begin = sourceRecord ? source_.blockBeginIndex(sourceRecord) : SIZE_MAX;
  const DxfSection* from =
      begin == SIZE_MAX ? nullptr : &source_.doc().section(source_.blocksSection());
  // Names inside a copied BLOCK (2, and 3 where the file repeats it) take the new name.
  auto renamed = [&](std::vector<DxfTag> body) {
    for (DxfTag& tag : body) {
      if (tag.code == 1001) break;
      if (tag.code == 2 || tag.code == 3) tag = doc.makeText(tag.code, name);
    }
    return body;
  };
  auto raw = [&](std::initializer_list<std::pair<int, std::string_view>> tags) {
    std::vector<DxfTag> out;
    for (const auto& [code, value] : tags) out.push_back(doc.makeRaw(code, value));
    return out;
  };

  OdDbStub* record = nullptr;
  std::string owner;
  if (!target_.isR12BlockTable()) {
    const bool fromRecord = sourceRecord && source_.dxf(sourceRecord).type() == "BLOCK_RECORD";
    std::vector<DxfTag> body;
    if (fromRecord) {
      body = renamed(bodyOf(source_.dxf(sourceRecord)));
    } else {
      if (modern_) body = raw({{100, "AcDbSymbolTableRecord"}, {100, "AcDbBlockTableRecord"}});
      body.push_back(doc.makeText(2, name));
    }
    target_.materializeTable(Impl::kBlockRecord);
    OdDbStub* table = target_.table(Impl::kBlockRecord);
    const DxfSection& tables = doc.section(table->section);
    std::size_t at = table->index + 1;
    while (at < tables.size() && tables.object(at).type() != "ENDTAB" &&
           tables.object(at).type() != "TABLE")
      ++at;
    record = place(table->section, at, doc.makeRaw(0, "BLOCK_RECORD"), std::move(body), 5,
                   table->handle.ascii());
    owner = record->handle.ascii();
  }
  std::vector<DxfTag> blockBody;
  if (from) {
    resolveNames(from->object(begin));
    blockBody = renamed(bodyOf(from->object(begin)));
  } else {
    const std::string flagText = std::to_string(flags);
    blockBody =
        modern_ ? raw({{100, "AcDbEntity"}, {8, "0"}, {100, "AcDbBlockBegin"}}) : raw({{8, "0"}});
    blockBody.push_back(doc.makeText(2, name));
    for (const DxfTag& t : raw({{70, flagText}, {10, "0.0"}, {20, "0.0"}, {30, "0.0"}}))
      blockBody.push_back(t);
    blockBody.push_back(doc.makeText(3, name));
    if (modern_) blockBody.push_back(doc.makeRaw(1, ""));
  }
  const std::size_t blocks = target_.ensureSection("BLOCKS");
  OdDbStub* block = place(blocks, doc.section(blocks).size(), doc.makeRaw(0, "BLOCK"),
                          std::move(blockBody), 5, owner);
  if (!record) {
    block->flags |= OdDbStub::kBlockView;  // without a block table the BLOCK is the record
    target_.invalidateNames();
    record = block;
  }
  std::size_t end = SIZE_MAX;
  if (from)
    for (std::size_t i = begin + 1; i < from->size() && end == SIZE_MAX; ++i)
      if (from->object(i).type() == "ENDBLK") end = i;
  std::vector<DxfTag> endBody =
      end != SIZE_MAX ? bodyOf(from->object(end))
                      : (modern_ ? raw({{100, "AcDbEntity"}, {8, "0"}, {100, "AcDbBlockEnd"}})
                                 : raw({{8, "0"}}));
  OdDbStub* endblk = place(blocks, doc.section(blocks).size(), doc.makeRaw(0, "ENDBLK"),
                           std::move(endBody), 5, owner);
  if (sourceRecord) {
    map_.assign(OdDbIdPair(OdDbObjectId(sourceRecord), OdDbObjectId(record), true, false));
    if (record != block && from)
      map_.assign(OdDbIdPair(OdDbObjectId(source_.slot(source_.blocksSection(), begin)),
                             OdDbObjectId(block), true, false));
    if (end != SIZE_MAX)
      map_.assign(OdDbIdPair(OdDbObjectId(source_.slot(source_.blocksSection(), end)),
                             OdDbObjectId(endblk), true, false));
  }
  translate(record);
  if (block != record) translate(block);
  translate(endblk);
  return record;
}

std::size_t OdDbDrawingInserter::copyEntities(const std::vector<OdDbStub*>& entities,
                                              OdDbStub* record) {
  // Names first: what they bring over may go anywhere in the document.
  for (OdDbStub* entity : entities) {
    resolveNames(source_.dxf(entity));
    for (OdDbStub* follower : source_.followers(entity)) resolveNames(source_.dxf(follower));
  }
  auto [section, at] = target_.entityInsertPosition(record);
  const std::size_t firstCopy = made_.size();
  const std::string owner = record->handle.ascii();
  for (OdDbStub* entity : entities) {
    OdDbStub* copy = copyEntity(entity, section, at++, owner);
    const std::string parent = copy->handle.ascii();
    for (OdDbStub* follower : source_.followers(entity))
      if (!follower->isErased()) copyEntity(follower, section, at++, parent);
  }
  // Pointers last: by now every copy has its counterpart in the map. Blocks that translating
  // brings over are appended to made_ translated already: they are left alone.
  const std::size_t lastCopy = made_.size();
  for (std::size_t i = firstCopy; i < lastCopy; ++i) translate(made_[i]);
  return entities.size();
}

OdDbStub* OdDbDrawingInserter::copyEntity(OdDbStub* entity, std::size_t section, std::size_t index,
                                          const std::string& owner) {
  const DxfObject& src = source_.dxf(entity);
  OdDbStub* copy = place(section, index, target_.importTags(src).front(), bodyOf(src), 5, owner);
  map_.assign(OdDbIdPair(OdDbObjectId(entity), OdDbObjectId(copy), true, false));
  return copy;
}

void OdDbDrawingInserter::translate(OdDbStub* made) {
  // Translating may bring blocks and records over, which moves the document's objects: the
  // object is looked up again before its tags are set.
  const DxfObject& before = target_.dxf(made);
  DxfDocument& doc = target_.doc();
  std::size_t head = 1;
  if (head < before.size() && before.code(head) == 5) ++head;
  if (head < before.size() && before.code(head) == 330) ++head;
  std::vector<DxfTag> tags(before.tags().begin(), before.tags().end());
  std::vector<DxfTag> body(tags.begin() + static_cast<std::ptrdiff_t>(head), tags.end());
  cloner_.translate(body);
  // Extended-data handles: to the copy, or null rather than dangling.
  bool xdata = false;
  for (DxfTag& tag : body) {
    xdata = xdata || tag.code == 1001;
    if (!xdata || tag.code != 1005) continue;
    OdDbHandle h;
    OdDbHandle::parse(doc.rawValue(tag), h);
    OdDbObjectId mapped =
        cloner_.mapReference(h.isNull() ? nullptr : source_.stubByHandle(h.value()));
    tag = doc.makeText(1005, mapped.isNull() ? std::string("0") : mapped.getHandle().ascii());
  }
  cloner_.registerApps(body);
  tags.resize(head);
  tags.insert(tags.end(), body.begin(), body.end());
  target_.dxf(made).setTags(std::move(tags));
}
