#include "OdDbDatabase.h"

#include <algorithm>
#include <unordered_map>

#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdDbCloner.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbEmptyDrawing.h"
#include "OdError.h"

ODRX_DEFINE_RTTI_MEMBERS(OdDbDatabase, OdRxObject);

OdSmartPtr<OdDbDatabase> OdDbDatabase::createObject() {
  return createEmpty();
}
OdRxObject* OdDbDatabase::pseudoConstructor() {
  return createObject().detach();
}
void OdDbDatabase::rxInit() {
  rxInit(nullptr);
}
void OdDbDatabase::rxInit(OdRxClass::AppNameChangeFuncPtr appNameChange) {
  odrxInitClass(g_pDesc, "AcDbDatabase", OdRxObject::desc(), "OdRxObject",
                &OdDbDatabase::pseudoConstructor, OdString(), OdString(), appNameChange);
}

OdDbDatabase::OdDbDatabase() : impl_(std::make_unique<OdDbDatabaseImpl>(this)) {}

OdDbDatabase::~OdDbDatabase() {
  std::vector<OdDbDatabaseReactor*> reactors = impl_->reactors();
  for (OdDbDatabaseReactor* r : reactors) r->goodbye(this);
}

OdDbDatabasePtr OdDbDatabase::createEmpty() {
  OdDbDatabasePtr db = OdRxObjectImpl<OdDbDatabase>::createObject();
  db->impl_->load(DxfReader::readBuffer(odDbEmptyDrawingDxf(), "new drawing"));
  return db;
}

OdDbDatabasePtr OdDbDatabase::readFile(const std::filesystem::path& path) {
  OdDbDatabasePtr db = OdRxObjectImpl<OdDbDatabase>::createObject();
  db->impl_->load(DxfReader::readFile(path));
  db->impl_->fileName = path.string();
  return db;
}

OdDbDatabasePtr OdDbDatabase::readBuffer(std::string bytes, const std::string& name) {
  OdDbDatabasePtr db = OdRxObjectImpl<OdDbDatabase>::createObject();
  db->impl_->load(DxfReader::readBuffer(std::move(bytes), name));
  return db;
}

namespace {
std::optional<DxfFormat> formatOf(std::optional<bool> binary) {
  if (!binary) return std::nullopt;
  return *binary ? DxfFormat::kBinary : DxfFormat::kAscii;
}
}  // namespace

void OdDbDatabase::writeFile(const std::filesystem::path& path, std::optional<bool> binary) {
  impl_->prepareSave();
  DxfWriter(impl_->doc(), formatOf(binary)).save(path);
  impl_->fileName = path.string();
}

std::string OdDbDatabase::writeBuffer(std::optional<bool> binary) {
  impl_->prepareSave();
  return DxfWriter(impl_->doc(), formatOf(binary)).toBytes();
}

OdString OdDbDatabase::getFilename() const {
  return OdString::fromUtf8(impl_->fileName);
}
OdString OdDbDatabase::versionString() const {
  return OdString::fromUtf8(impl_->doc().version());
}
int OdDbDatabase::versionNumber() const {
  return impl_->doc().versionNumber();
}
bool OdDbDatabase::isBinary() const {
  return impl_->doc().format() == DxfFormat::kBinary;
}
OdString OdDbDatabase::encoding() const {
  return OdString::fromUtf8(impl_->doc().codec().codePage());
}
int OdDbDatabase::getLUPREC() const {
  const DxfDocument& doc = impl_->doc();
  std::vector<DxfTag> values = doc.headerVariable("$LUPREC");
  if (values.empty()) return 4;
  std::int64_t places = 4;
  try {
    places = doc.integer(values.front());
  } catch (const OdError&) {
    // A value that is not a number reads as the default, as a missing one does.
  }
  return places >= 0 && places <= 8 ? static_cast<int>(places) : 4;
}

OdDbObjectId OdDbDatabase::getNamedObjectsDictionaryId() const {
  return OdDbObjectId(impl_->namedObjects());
}
OdDbObjectId OdDbDatabase::getLayerTableId() const {
  return OdDbObjectId(impl_->table(OdDbDatabaseImpl::kLayer));
}
OdDbObjectId OdDbDatabase::getLinetypeTableId() const {
  return OdDbObjectId(impl_->table(OdDbDatabaseImpl::kLtype));
}
OdDbObjectId OdDbDatabase::getTextStyleTableId() const {
  return OdDbObjectId(impl_->table(OdDbDatabaseImpl::kStyle));
}
OdDbObjectId OdDbDatabase::getDimStyleTableId() const {
  return OdDbObjectId(impl_->table(OdDbDatabaseImpl::kDimstyle));
}
OdDbObjectId OdDbDatabase::getBlockTableId() const {
  return OdDbObjectId(impl_->table(OdDbDatabaseImpl::kBlockRecord));
}
OdDbObjectId OdDbDatabase::getRegAppTableId() const {
  return OdDbObjectId(impl_->table(OdDbDatabaseImpl::kAppid));
}
OdDbObjectId OdDbDatabase::getModelSpaceId() const {
  return OdDbObjectId(impl_->modelSpace());
}
OdDbObjectId OdDbDatabase::getPaperSpaceId() const {
  return OdDbObjectId(impl_->paperSpace());
}
OdDbObjectId OdDbDatabase::getLinetypeByLayerId() const {
  return impl_->recordByName(OdDbDatabaseImpl::kLtype, OdString(L"ByLayer"));
}
OdDbObjectId OdDbDatabase::getLinetypeByBlockId() const {
  return impl_->recordByName(OdDbDatabaseImpl::kLtype, OdString(L"ByBlock"));
}
OdDbObjectId OdDbDatabase::getLinetypeContinuousId() const {
  return impl_->recordByName(OdDbDatabaseImpl::kLtype, OdString(L"Continuous"));
}
OdDbObjectId OdDbDatabase::getLayerZeroId() const {
  return impl_->recordByName(OdDbDatabaseImpl::kLayer, OdString(L"0"));
}

OdDbObjectId OdDbDatabase::getOdDbObjectId(const OdDbHandle& handle) const {
  return OdDbObjectId(impl_->stubByHandle(handle.value()));
}

std::size_t OdDbDatabase::numObjects() const {
  return impl_->numStubs();
}

std::size_t OdDbDatabase::countEntities() const {
  std::size_t s = impl_->sectionIndex("ENTITIES");
  if (s == SIZE_MAX) return 0;
  std::size_t n = 0;
  const DxfSection& section = impl_->doc().section(s);
  for (std::size_t i = 0; i < section.size(); ++i) {
    std::string_view type = section.object(i).type();
    if (type == "VERTEX" || type == "ATTRIB" || type == "SEQEND") continue;
    OdDbStub* stub = impl_->slot(s, i);
    if (stub && !stub->isErased()) ++n;
  }
  return n;
}

std::size_t OdDbDatabase::countObjects() const {
  std::size_t s = impl_->sectionIndex("OBJECTS");
  if (s == SIZE_MAX) return 0;
  std::size_t n = 0;
  const OdDbSlotList& slots = impl_->slots(s);
  for (std::size_t i = 0; i < slots.size(); ++i)
    if (OdDbStub* stub = slots[i]; stub && !stub->isErased()) ++n;
  return n;
}

void OdDbDatabase::addReactor(OdDbDatabaseReactor* reactor) {
  auto& reactors = impl_->reactors();
  if (reactor && std::find(reactors.begin(), reactors.end(), reactor) == reactors.end())
    reactors.push_back(reactor);
}

void OdDbDatabase::removeReactor(OdDbDatabaseReactor* reactor) {
  auto& reactors = impl_->reactors();
  reactors.erase(std::remove(reactors.begin(), reactors.end(), reactor), reactors.end());
}

void OdDbDatabase::wblockCloneObjects(const OdDbObjectIdArray& ids, const OdDbObjectId& owner,
                                      OdDbIdMapping& idMap, OdDb::DuplicateRecordCloning drc,
                                      bool /*deferTranslation*/) {
  if (owner.isNull()) throw OdError(eNullObjectId, "no table to clone into");
  OdDbDatabase* target = owner.database();
  if (target == this)
    throw OdError(eWrongDatabase, "cloning needs a table of another drawing as the owner");
  OdDbDatabaseImpl& dest = target->impl();
  OdDbDatabaseImpl::TableKind kind = dest.tableKindOf(owner.stub());
  if (kind == OdDbDatabaseImpl::kTableKinds)
    throw OdError(eInvalidInput,
                  "the owner " + owner.getHandle().ascii() + " is not a symbol table");
  if (kind == OdDbDatabaseImpl::kBlockRecord)
    throw OdError(eNotImplementedYet, "cloning blocks between drawings is not supported");
  idMap.setOrigDb(this);
  idMap.setDestDb(target);
  idMap.setDuplicateRecordCloning(drc);
  OdDbCloner cloner(*impl_, dest, idMap);
  for (const OdDbObjectId& id : ids) {
    if (id.isNull() || id.database() != this)
      throw OdError(eInvalidInput, "the object " + id.getHandle().ascii() +
                                       " is not an object of the source drawing");
    std::string_view type = impl_->dxf(id.stub()).type();
    if (OdDbDatabaseImpl::kindOfRecordType(type) != kind)
      throw OdError(eInvalidInput, "the object " + id.getHandle().ascii() + " is a " +
                                       std::string(type) + ", not a record of the " +
                                       OdDbDatabaseImpl::tableName(kind) + " table");
    cloner.clone(id.stub(), kind, drc, true);
  }
}

OdResBufPtr OdDbDatabase::getHeaderVariable(const OdString& name) const {
  const DxfDocument& doc = impl_->doc();
  auto [first, end] = doc.headerVariableRange(name.toUtf8());
  if (first == DxfObject::npos || first == end) return OdResBufPtr();
  return OdResBuf::fromTags(*doc.headerObject(), first, end);
}

void OdDbDatabase::setHeaderVariable(const OdString& name, const OdResBuf* values) {
  const std::string key = name.toUtf8();
  if (key.size() < 2 || key.front() != '$' || key.find_first_of(" \t\r\n") != std::string::npos)
    throw OdError(eInvalidInput, "\"" + key + "\" is not a header variable name");
  if (!values) throw OdError(eInvalidInput, "no value given for the header variable " + key);
  DxfDocument& doc = impl_->doc();
  doc.setHeaderVariable(key, OdResBuf::toTags(doc, values));
}

namespace {

bool isPointerCode(int code) {
  return (code >= 330 && code <= 369) || (code >= 390 && code <= 399) || code == 480 ||
         code == 481 || code == 1005;
}

// Calls `found` with each handle `obj` points to: its pointer groups and the handles of its
// extended data. Its own owner link (the first 330 of its common tags) and the back links of
// its 102 groups (reactors, extension dictionary) are not references to what they name.
template <class F>
void forEachPointer(const DxfObject& obj, F found) {
  bool ownerSeen = false;
  int markers = 0;
  const std::size_t n = obj.size();
  for (std::size_t i = 1; i < n; ++i) {
    const int code = obj.code(i);
    if (code == 102) {
      std::string_view v = obj.rawValue(i);
      if (v.find('{') != std::string_view::npos) {
        while (i + 1 < n && obj.code(i + 1) != 102) ++i;
        ++i;
      }
      continue;
    }
    if (code == 100) ++markers;
    if (!isPointerCode(code)) continue;
    if (code == 330 && !ownerSeen && markers < 2) {
      ownerSeen = true;
      continue;
    }
    OdDbHandle h;
    if (OdDbHandle::parse(obj.rawValue(i), h) && h.value() != 0) found(h.value());
  }
}

}  // namespace

std::vector<std::pair<OdDbObjectId, OdDbObjectId>> OdDbDatabase::handleReferences(
    const OdDbObjectIdArray& targets) const {
  std::vector<std::pair<OdDbObjectId, OdDbObjectId>> result;
  std::unordered_map<std::uint64_t, OdDbStub*> wanted;
  for (const OdDbObjectId& id : targets)
    if (!id.isNull() && id.database() == this) wanted.emplace(id.stub()->handle.value(), id.stub());
  if (wanted.empty()) return result;
  const DxfDocument& doc = impl_->doc();
  for (std::size_t s = 0; s < doc.sectionCount(); ++s) {
    const auto& slots = impl_->slots(s);
    for (std::size_t i = 0; i < slots.size(); ++i) {
      OdDbStub* holder = slots[i];
      if (!holder || holder->isErased()) continue;
      const DxfObject& obj = doc.section(s).object(i);
      // A table's head lists its records: ownership, not use.
      if (obj.type() == "TABLE") continue;
      forEachPointer(obj, [&](std::uint64_t handle) {
        auto it = wanted.find(handle);
        if (it == wanted.end() || it->second == holder) return;
        std::pair<OdDbObjectId, OdDbObjectId> entry{OdDbObjectId(it->second), OdDbObjectId(holder)};
        if (result.empty() || result.back() != entry) result.push_back(entry);
      });
    }
  }
  return result;
}

bool OdDbDatabase::isReferencedByHandle(const OdDbObjectId& target) const {
  OdDbObjectIdArray targets;
  targets.push_back(target);
  return !handleReferences(targets).empty();
}

bool OdDbDatabase::refersByHandle(const OdDbObjectId& holder, const OdDbObjectId& target) const {
  if (holder.isNull() || target.isNull() || holder == target || holder.database() != this ||
      target.database() != this || holder.isErased())
    return false;
  const DxfObject& obj = impl_->dxf(holder.stub());
  if (obj.type() == "TABLE") return false;
  const std::uint64_t wanted = target.stub()->handle.value();
  bool refers = false;
  forEachPointer(obj, [&](std::uint64_t handle) { refers = refers || handle == wanted; });
  return refers;
}
