#include "OdDbObject.h"

#include <charconv>

#include "DxfDocument.h"
#include "DxfReader.h"
#include "OdAlloc.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbDictionary.h"
#include "OdDbRegAppTableRecord.h"
#include "OdDbSymbolTable.h"
#include "OdDbTagRange.h"
#include "OdError.h"
#include "OdResBuf.h"

ODDB_DEFINE_MEMBERS(OdDbObject, OdRxObject, "AcDbObject", "");

namespace {

// The document that holds a new object's tags until it joins a database: release 2018, so
// its strings are UTF-8 and nothing is lost on the way into any drawing.
std::unique_ptr<DxfDocument> newObjectDocument() {
  static const char kMinimal[] =
      "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n0\nEOF\n";
  return DxfReader::readBuffer(kMinimal, "new object");
}

std::size_t findGroup(const DxfObject& obj, std::string_view name) {
  for (std::size_t i = 1; i < obj.size(); ++i) {
    int code = obj.code(i);
    if (code == 100 || code == 1001) break;
    if (code == 102 && obj.text(i) == OdString(std::string(name))) return i;
  }
  return DxfObject::npos;
}

std::string describe(const OdDbObject& obj) {
  return obj.dxfType().toUtf8() + " " + obj.getDbHandle().ascii();
}

}  // namespace

void* OdDbObject::operator new(std::size_t size) {
  return odrxAlloc(size);
}
void OdDbObject::operator delete(void* memory) noexcept {
  odrxFree(memory);
}

OdDbObject::OdDbObject() = default;
OdDbObject::~OdDbObject() = default;

void OdDbObject::initNewObject() {
  initFromTemplate("0\nOBJECT\n");
}

void OdDbObject::initFromTemplate(std::string_view lines) {
  if (stub_) throw OdError(eInvalidInput, "the " + describe(*this) + " is in a drawing already");
  std::unique_ptr<DxfDocument> doc = newObjectDocument();
  std::vector<DxfTag> tags;
  std::size_t pos = 0;
  auto nextLine = [&](std::string_view& line) {
    if (pos >= lines.size()) return false;
    std::size_t end = lines.find('\n', pos);
    if (end == std::string_view::npos) end = lines.size();
    line = lines.substr(pos, end - pos);
    pos = end + 1;
    return true;
  };
  std::string_view codeLine, value;
  while (nextLine(codeLine)) {
    const std::size_t line = tags.size() * 2 + 1;
    int code = 0;
    auto [end, error] = std::from_chars(codeLine.data(), codeLine.data() + codeLine.size(), code);
    if (error != std::errc() || end != codeLine.data() + codeLine.size() ||
        code < DxfTag::kMinCode || code > DxfTag::kMaxCode)
      throw OdError(eInvalidInput, "new object, line " + std::to_string(line) +
                                       ": not a group code: '" + std::string(codeLine) + "'");
    if (tags.empty() && code != 0)
      throw OdError(eInvalidInput, "new object, line 1: the type (group 0) must come first");
    if (!nextLine(value))
      throw OdError(eInvalidInput, "new object, line " + std::to_string(line) + ": group code " +
                                       std::to_string(code) + " has no value");
    tags.push_back(doc->makeRaw(code, value));
  }
  if (tags.empty()) throw OdError(eInvalidInput, "new object: no tags");
  // The old tags belong to the old document: they go first.
  newObj_.reset();
  newDoc_ = std::move(doc);
  newObj_ = std::make_unique<DxfObject>(*newDoc_, std::move(tags));
}

void OdDbObject::addRef() {
  ++refs_;
}

void OdDbObject::release() {
  if (--refs_ > 0) return;
  if (stub_)
    close();
  else
    delete this;
}

void OdDbObject::open(OdDb::OpenMode mode) {
  if (mode == OdDb::kForNotify) mode = OdDb::kForRead;
  if (refs_ == 0 || mode_ == OdDb::kNotOpen) {
    mode_ = mode;
    modified_ = false;
    notifiedModify_ = false;
    return;
  }
  if (mode == OdDb::kForWrite) {
    if (mode_ == OdDb::kForWrite)
      throw OdError(eWasOpenedForWrite, "the " + describe(*this) + " is already open for write");
    mode_ = OdDb::kForWrite;
  }
}

void OdDbObject::close() {
  bool changed = modified_ && mode_ == OdDb::kForWrite;
  mode_ = OdDb::kNotOpen;
  notifiedModify_ = false;
  if (changed) stub_->database()->impl().fireModified(this);
  if (refs_ == 0) modified_ = false;
}

DxfObject& OdDbObject::dxf() const {
  if (stub_) return stub_->database()->impl().dxf(stub_);
  return *newObj_;
}

DxfDocument& OdDbObject::dxfDocument() const {
  return dxf().document();
}

OdDbHandle OdDbObject::getDbHandle() const noexcept {
  return stub_ ? stub_->handle : OdDbHandle();
}

OdDbDatabase* OdDbObject::database() const noexcept {
  return stub_ ? stub_->database() : nullptr;
}

bool OdDbObject::isErased() const noexcept {
  return stub_ && stub_->isErased();
}

OdString OdDbObject::dxfType() const {
  return OdString::fromUtf8(dxf().type());
}

void OdDbObject::assertReadEnabled() const {
  if (stub_ && mode_ == OdDb::kNotOpen)
    throw OdError(eNotOpenForRead, "the " + describe(*this) + " is not open");
}

void OdDbObject::assertWriteEnabled() {
  if (!stub_) {
    modified_ = true;
    return;
  }
  if (mode_ != OdDb::kForWrite)
    throw OdError(eNotOpenForWrite, "the " + describe(*this) + " is not open for write");
  if (!notifiedModify_) {
    notifiedModify_ = true;
    stub_->database()->impl().fireOpenedForModify(this);
  }
  modified_ = true;
}

OdDbObjectId OdDbObject::ownerId() const {
  if (!stub_) return OdDbObjectId();
  OdDbDatabaseImpl& impl = stub_->database()->impl();
  const DxfObject& obj = dxf();
  for (std::size_t i = 1; i < obj.size(); i = odDbSkipGroup(obj, i)) {
    int code = obj.code(i);
    if (code == 100 || code == 1001) break;
    if (code == 330) {
      OdDbHandle h;
      if (OdDbHandle::parse(obj.rawValue(i), h) && !h.isNull())
        return OdDbObjectId(impl.stubByHandle(h));
      return OdDbObjectId();
    }
  }
  // No owner reference: go by where the file puts the object.
  if (stub_->section == OdDbStub::kNoSection) return OdDbObjectId();
  const DxfSection& section = impl.doc().section(stub_->section);
  if (section.name() == "TABLES") {
    for (std::size_t i = stub_->index; i-- > 0;)
      if (section.object(i).type() == "TABLE") return OdDbObjectId(impl.slot(stub_->section, i));
  } else if (section.name() == "ENTITIES") {
    OdDbObjectId ms(impl.modelSpace()), ps(impl.paperSpace());
    OdDbTagRange common(const_cast<DxfObject&>(obj), "AcDbEntity");
    return common.integer(67, 0) == 1 ? ps : ms;
  } else if (section.name() == "BLOCKS") {
    if (stub_->flags & OdDbStub::kBlockView)
      return OdDbObjectId(impl.table(OdDbDatabaseImpl::kBlockRecord));
    for (std::size_t i = stub_->index; i-- > 0;) {
      if (section.object(i).type() != "BLOCK") continue;
      OdDbStub* block = impl.slot(stub_->section, i);
      if (block && (block->flags & OdDbStub::kBlockView)) return OdDbObjectId(block);
      return block ? block->database()->impl().materialize(block)->ownerId() : OdDbObjectId();
    }
  }
  return OdDbObjectId();
}

OdResult OdDbObject::erase(bool erasing) {
  if (!stub_) return eNullObjectId;
  // Needs write access, but erasing is told as objectErased, not as a modification.
  if (mode_ != OdDb::kForWrite)
    throw OdError(eNotOpenForWrite, "the " + describe(*this) + " is not open for write");
  if (stub_->isErased() == erasing) return eOk;
  OdDbDatabaseImpl& impl = stub_->database()->impl();
  if (erasing) {
    stub_->flags |= OdDbStub::kErased;
    for (OdDbStub* follower : impl.followers(stub_)) follower->flags |= OdDbStub::kErased;
    OdDbObjectId owner = ownerId();
    if (!owner.isNull() && !owner.isErased()) {
      std::string_view type = impl.dxf(owner.stub()).type();
      if (type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT")
        OdDbDictionary::removeEntryOf(owner, objectId());
    }
  } else {
    stub_->flags &= static_cast<std::uint8_t>(~OdDbStub::kErased);
    for (OdDbStub* follower : impl.followers(stub_))
      follower->flags &= static_cast<std::uint8_t>(~OdDbStub::kErased);
  }
  if (erasing)
    impl.recordErased(stub_);
  else
    impl.invalidateNames();
  impl.fireErased(this, erasing);
  return eOk;
}

OdDbObjectId OdDbObject::extensionDictionary() const {
  if (!stub_) return OdDbObjectId();
  const DxfObject& obj = dxf();
  std::size_t at = findGroup(obj, "{ACAD_XDICTIONARY");
  if (at == DxfObject::npos) return OdDbObjectId();
  for (std::size_t i = at + 1; i < obj.size() && obj.code(i) != 102; ++i) {
    if (obj.code(i) != 360) continue;
    OdDbHandle h;
    if (OdDbHandle::parse(obj.rawValue(i), h))
      return OdDbObjectId(stub_->database()->impl().stubByHandle(h));
  }
  return OdDbObjectId();
}

void OdDbObject::createExtensionDictionary() {
  if (!extensionDictionary().isNull()) return;
  if (!stub_)
    throw OdError(eNotImplementedYet,
                  "an object needs to be in a drawing before it gets an extension dictionary");
  assertWriteEnabled();
  OdDbDatabaseImpl& impl = stub_->database()->impl();
  if (impl.doc().versionNumber() < 1012)
    throw OdError(eNotImplementedYet,
                  "extension dictionaries need a drawing of release 13 or "
                  "later; " +
                      impl.fileName + " is older");
  std::size_t objects = impl.ensureSection("OBJECTS");
  OdDbDictionaryPtr dict = OdDbDictionary::createObject();
  dict->setHardOwner(true);
  OdDbObjectId dictId = dict->makeResident(stub_->database(), objects,
                                           impl.doc().section(objects).size(), objectId());
  DxfObject& obj = dxf();
  DxfDocument& doc = obj.document();
  // After the handle and the reactors group, where files keep it.
  std::size_t at = 1;
  while (at < obj.size() && (obj.code(at) == 5 || obj.code(at) == 105)) ++at;
  std::size_t reactors = findGroup(obj, "{ACAD_REACTORS");
  if (reactors != DxfObject::npos) at = odDbSkipGroup(obj, reactors);
  obj.insertTag(at, doc.makeText(102, OdString(L"{ACAD_XDICTIONARY")));
  obj.insertTag(at + 1, doc.makeText(360, dictId.getHandle().ascii()));
  obj.insertTag(at + 2, doc.makeText(102, OdString(L"}")));
}

OdResBufPtr OdDbObject::xData(const OdString& appName) const {
  const DxfObject& obj = dxf();
  std::size_t n = obj.size();
  std::size_t first = obj.find(1001);
  if (first == DxfObject::npos) return OdResBufPtr();
  if (appName.isEmpty()) return OdResBuf::fromTags(obj, first, n);
  for (std::size_t i = first; i < n; ++i) {
    if (obj.code(i) != 1001 || obj.text(i).iCompare(appName) != 0) continue;
    std::size_t end = i + 1;
    while (end < n && obj.code(end) != 1001) ++end;
    return OdResBuf::fromTags(obj, i, end);
  }
  return OdResBufPtr();
}

void OdDbObject::setXData(const OdResBuf* chain) {
  if (!chain || chain->restype() != 1001)
    throw OdError(eInvalidInput, "extended data must start with a 1001 application name");
  assertWriteEnabled();
  OdString app = chain->getString();
  if (stub_) {
    OdDbDatabaseImpl& impl = stub_->database()->impl();
    OdDbStub* appTable = impl.table(OdDbDatabaseImpl::kAppid);
    if (!impl.findRecord(appTable, app) && appTable->section != OdDbStub::kNoSection) {
      OdDbSymbolTablePtr table = OdDbObjectId(appTable).safeOpenObject(OdDb::kForWrite);
      OdDbSymbolTableRecordPtr rec = OdDbRegAppTableRecord::createObject();
      rec->setName(app);
      table->add(rec.get());
    }
  }
  DxfObject& obj = dxf();
  std::size_t n = obj.size();
  std::size_t begin = n, end = n;
  for (std::size_t i = 0; i < n; ++i) {
    if (obj.code(i) != 1001 || obj.text(i).iCompare(app) != 0) continue;
    begin = i;
    end = i + 1;
    while (end < n && obj.code(end) != 1001) ++end;
    break;
  }
  for (std::size_t i = end; i-- > begin;) obj.eraseTag(i);
  if (!chain->next()) return;
  std::vector<DxfTag> tags = OdResBuf::toTags(obj.document(), chain);
  for (std::size_t k = 0; k < tags.size(); ++k) obj.insertTag(begin + k, tags[k]);
}

OdDbObjectId OdDbObject::makeResident(OdDbDatabase* db, std::size_t section, std::size_t index,
                                      const OdDbObjectId& owner) {
  if (stub_) throw OdError(eInvalidInput, "the " + describe(*this) + " is in a drawing already");
  OdDbDatabaseImpl& impl = db->impl();
  DxfDocument& doc = impl.doc();
  bool modern = doc.versionNumber() >= 1012 || doc.versionNumber() == 0;
  std::vector<DxfTag> tags = impl.importTags(*newObj_);
  if (!modern) {
    // Release-12 files know no subclass markers, owners or codes of later releases.
    std::vector<DxfTag> kept;
    for (const DxfTag& t : tags)
      if (t.code != 100 && t.code != 330 && t.code != 102 && (t.code < 280 || t.code >= 1000))
        kept.push_back(t);
    tags.swap(kept);
  }
  OdDbStub* stub = impl.insertObject(section, index, std::move(tags));
  DxfObject& obj = impl.dxf(stub);
  int handleCode = obj.type() == "DIMSTYLE" ? 105 : 5;
  std::size_t at = 1;
  if (modern || impl.hasHandles())
    obj.insertTag(at++, doc.makeText(handleCode, stub->handle.ascii()));
  if (modern && !owner.isNull()) obj.insertTag(at, doc.makeText(330, owner.getHandle().ascii()));
  newObj_.reset();
  newDoc_.reset();
  stub_ = stub;
  stub->object = this;
  impl.adopt(this);
  mode_ = OdDb::kForWrite;
  modified_ = false;
  notifiedModify_ = true;
  impl.fireAppended(this);
  return OdDbObjectId(stub);
}
