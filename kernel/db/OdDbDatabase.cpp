#include "OdDbDatabase.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdDbCloner.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbDrawingInserter.h"
#include "OdDbEmptyDrawing.h"
#include "OdDbObject.h"
#include "OdDbRecordLinks.h"
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

void OdDbDatabase::writeFile(const std::filesystem::path& path, std::optional<bool> binary,
                             const OdAtomicFile::Options& options) {
  impl_->prepareSave();
  DxfWriter(impl_->doc(), formatOf(binary)).save(path, options);
  impl_->fileName = path.string();
}

std::string OdDbDatabase::writeBuffer(std::optional<bool> binary) {
  impl_->prepareSave();
  return DxfWriter(impl_->doc(), formatOf(binary)).toBytes();
}

std::string_view OdDbDatabase::originalBytes() const {
  return impl_->doc().bytes();
}

OdString OdDbDatabase::getFilename() const {
  return OdString::fromUtf8(impl_->fileName);
}
OdString OdDbDatabase::versionString() const {
  return OdString::fromUtf8(impl_->doc().version());
}
OdDbHandle OdDbDatabase::nextHandle() const {
  return OdDbHandle(impl_->nextHandle());
}

int OdDbDatabase::formatRelease() const {
  return impl_->doc().formatRelease();
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

OdDbDatabase::InsertResult OdDbDatabase::insert(const OdString& name, const OdDbDatabase& source) {
  OdDbDrawingInserter inserter(source.impl(), *impl_);
  return inserter.insert(name);
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

using Table = OdDbDatabaseImpl::TableKind;

// The record a link of `obj` points at, or null; `names` caches name lookups by raw value.
OdDbStub* linkTarget(OdDbDatabaseImpl& impl, const DxfObject& obj,
                     const OdDbRecordLinks::Link& link,
                     std::unordered_map<std::string, OdDbStub*>& names) {
  if (link.kind != OdDbRecordLinks::kName) {
    OdDbHandle h;
    if (!OdDbHandle::parse(obj.rawValue(link.tag), h) || h.value() == 0) return nullptr;
    return impl.stubByHandle(h.value());
  }
  std::string key(1, static_cast<char>('0' + link.table));
  key += obj.rawValue(link.tag);
  auto [it, added] = names.try_emplace(std::move(key), nullptr);
  if (added && impl.table(link.table))
    it->second = impl.findRecord(impl.table(link.table), obj.text(link.tag));
  return it->second;
}

OdDbDatabase::RecordLink linkOf(OdDbRecordLinks::Kind kind) {
  switch (kind) {
    case OdDbRecordLinks::kPointer:
      return OdDbDatabase::RecordLink::kPointer;
    case OdDbRecordLinks::kName:
      return OdDbDatabase::RecordLink::kName;
    case OdDbRecordLinks::kContainer:
      break;
  }
  return OdDbDatabase::RecordLink::kContainer;
}

// The table `stub` is a record of, or kTableKinds.
Table tableOfRecord(const OdDbDatabaseImpl& impl, const OdDbStub* stub) {
  for (int kind = 0; kind < OdDbDatabaseImpl::kTableKinds; ++kind)
    if (impl.isRecordOf(stub, static_cast<Table>(kind))) return static_cast<Table>(kind);
  return OdDbDatabaseImpl::kTableKinds;
}

}  // namespace

std::vector<OdDbDatabase::RecordReference> OdDbDatabase::recordReferences(
    const OdDbObjectIdArray& records) const {
  std::vector<RecordReference> result;
  std::unordered_set<const OdDbStub*> wanted;
  for (const OdDbObjectId& id : records)
    if (!id.isNull() && id.database() == this &&
        tableOfRecord(*impl_, id.stub()) != OdDbDatabaseImpl::kTableKinds)
      wanted.insert(id.stub());
  if (wanted.empty()) return result;
  const DxfDocument& doc = impl_->doc();
  std::unordered_map<std::string, OdDbStub*> names;
  std::vector<OdDbRecordLinks::Link> links;
  for (std::size_t s = 0; s < doc.sectionCount(); ++s) {
    const OdDbRecordLinks::Place place = OdDbRecordLinks::placeOf(doc.section(s).name());
    if (place == OdDbRecordLinks::kOther) continue;
    const auto& slots = impl_->slots(s);
    for (std::size_t i = 0; i < slots.size(); ++i) {
      OdDbStub* holder = slots[i];
      if (!holder || holder->isErased()) continue;
      const DxfObject& obj = doc.section(s).object(i);
      links.clear();
      OdDbRecordLinks::scan(obj, place, links);
      for (const OdDbRecordLinks::Link& link : links) {
        OdDbStub* target = linkTarget(*impl_, obj, link, names);
        if (!target || target == holder || !wanted.count(target)) continue;
        RecordReference entry{OdDbObjectId(target), OdDbObjectId(holder), linkOf(link.kind)};
        const bool repeated = !result.empty() && result.back().record == entry.record &&
                              result.back().holder == entry.holder &&
                              result.back().link == entry.link;
        if (!repeated) result.push_back(entry);
      }
    }
  }
  return result;
}

std::size_t OdDbDatabase::retargetRecordReferences(const std::vector<OdDbObjectId>& holders,
                                                   const OdDbObjectId& from, const OdDbObjectId& to,
                                                   std::size_t& done) {
  done = 0;
  if (from.isNull() || to.isNull() || from.database() != this || to.database() != this)
    throw OdError(eInvalidInput, "a reference is moved between records of one drawing");
  const Table table = tableOfRecord(*impl_, from.stub());
  if (table == OdDbDatabaseImpl::kTableKinds || !impl_->isRecordOf(to.stub(), table))
    throw OdError(eInvalidInput, "the objects " + from.getHandle().ascii() + " and " +
                                     to.getHandle().ascii() + " are not records of one table");
  if (from == to) {
    done = holders.size();
    return 0;
  }
  // Names are compared with the record's own rather than looked up: a lookup after each
  // erased record would index the table anew, for every holder of every replacement.
  std::string fromRaw;
  {
    const DxfObject& record = impl_->dxf(from.stub());
    if (std::size_t at = record.find(2); at != DxfObject::npos) fromRaw = record.rawValue(at);
  }
  return moveRecordLinks(holders, table, impl_->recordName(from.stub()), fromRaw,
                         from.stub()->handle.value(), to, done);
}

std::size_t OdDbDatabase::renameRecordReferences(const std::vector<OdDbObjectId>& holders,
                                                 const OdDbObjectId& record,
                                                 const OdString& oldName, std::size_t& done) {
  done = 0;
  if (record.isNull() || record.database() != this)
    throw OdError(eInvalidInput, "a renamed record's references are those of one drawing");
  const Table table = tableOfRecord(*impl_, record.stub());
  if (table == OdDbDatabaseImpl::kTableKinds)
    throw OdError(eInvalidInput, "the object " + record.getHandle().ascii() + " is no record");
  // Pointers to the record stay as they are: it is the same record under a new name.
  return moveRecordLinks(holders, table, oldName, std::string(), 0, record, done);
}

std::size_t OdDbDatabase::moveRecordLinks(const std::vector<OdDbObjectId>& holders, int tableKind,
                                          const OdString& fromName, const std::string& fromRaw,
                                          std::uint64_t fromHandle, const OdDbObjectId& to,
                                          std::size_t& done) {
  const Table table = static_cast<Table>(tableKind);
  const OdString handle = OdString::fromUtf8(to.getHandle().ascii());
  const OdString name = impl_->recordName(to.stub());
  std::size_t changed = 0;
  std::vector<OdDbRecordLinks::Link> links;
  std::vector<std::pair<std::size_t, bool>> moving;  // tag, and whether it is a name
  for (const OdDbObjectId& holder : holders) {
    const OdDbStub* stub = holder.stub();
    if (!holder.isNull() && holder.database() == this && !holder.isErased() &&
        stub->section != OdDbStub::kNoSection && !(stub->flags & OdDbStub::kDetached)) {
      DxfObject& obj = impl_->dxf(stub);
      links.clear();
      OdDbRecordLinks::scan(
          obj, OdDbRecordLinks::placeOf(impl_->doc().section(stub->section).name()), links);
      moving.clear();
      for (const OdDbRecordLinks::Link& link : links) {
        bool refers = false;
        if (link.kind == OdDbRecordLinks::kPointer) {
          OdDbHandle h;
          refers = fromHandle != 0 && OdDbHandle::parse(obj.rawValue(link.tag), h) &&
                   h.value() == fromHandle;
        } else if (link.kind == OdDbRecordLinks::kName && link.table == table) {
          refers = !fromRaw.empty() && obj.rawValue(link.tag) == fromRaw;
          if (!refers) {
            OdString value = obj.text(link.tag);
            value.trimRight();
            refers = value.iCompare(fromName) == 0;
          }
        }
        if (refers) moving.emplace_back(link.tag, link.kind == OdDbRecordLinks::kName);
      }
      if (!moving.empty()) {
        OdDbObjectPtr object = holder.safeOpenObject(OdDb::kForWrite);
        object->assertWriteEnabled();
        DxfObject& tags = object->dxf();
        for (const auto& [tag, isName] : moving) tags.setText(tag, isName ? name : handle);
        changed += moving.size();
      }
    }
    ++done;
  }
  return changed;
}
