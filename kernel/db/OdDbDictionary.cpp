#include "OdDbDictionary.h"

#include "DxfDocument.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseImpl.h"
#include "OdDbTagRange.h"
#include "OdError.h"

ODDB_DEFINE_MEMBERS(OdDbDictionary, OdDbObject, "AcDbDictionary", "DICTIONARY");
ODRX_DEFINE_RTTI_MEMBERS(OdDbDictionaryIterator, OdRxObject);
ODRX_DEFINE_PSEUDOCONSTRUCTOR(OdDbDictionaryIterator, OdDbDictionaryIterator);
ODRX_DEFINE_INIT_MEMBERS(OdDbDictionaryIterator, OdRxObject,
                         &OdDbDictionaryIterator::pseudoConstructor, "", "");

namespace {
constexpr const char* kSubclass = "AcDbDictionary";

bool isEntryRef(int code) {
  return code == 350 || code == 360;
}

OdDbObjectId refAt(const DxfObject& obj, std::size_t i, OdDbDatabase* db) {
  OdDbHandle h;
  if (!db || !OdDbHandle::parse(obj.rawValue(i), h)) return OdDbObjectId();
  return db->getOdDbObjectId(h);
}
}  // namespace

void OdDbDictionary::initNewObject() {
  initFromTemplate("0\nDICTIONARY\n100\nAcDbDictionary\n281\n1\n");
}

std::vector<OdDbDictionary::Entry> OdDbDictionary::entries() const {
  std::vector<Entry> result;
  const DxfObject& obj = dxf();
  auto [begin, end] = OdDbTagRange(const_cast<DxfObject&>(obj), kSubclass).bounds();
  for (std::size_t i = begin; i + 1 < end; ++i) {
    if (obj.code(i) != 3 || !isEntryRef(obj.code(i + 1))) continue;
    result.push_back({obj.text(i), refAt(obj, i + 1, database())});
    ++i;
  }
  return result;
}

std::size_t OdDbDictionary::findKeyTag(const OdString& key) const {
  const DxfObject& obj = dxf();
  auto [begin, end] = OdDbTagRange(const_cast<DxfObject&>(obj), kSubclass).bounds();
  for (std::size_t i = begin; i + 1 < end; ++i) {
    if (obj.code(i) != 3 || !isEntryRef(obj.code(i + 1))) continue;
    if (obj.text(i).iCompare(key) == 0) {
      OdDbObjectId id = refAt(obj, i + 1, database());
      if (!id.isErased()) return i;
    }
    ++i;
  }
  return DxfObject::npos;
}

OdDbObjectId OdDbDictionary::getAt(const OdString& key) const {
  std::size_t i = findKeyTag(key);
  return i == DxfObject::npos ? OdDbObjectId() : refAt(dxf(), i + 1, database());
}

OdDbObjectPtr OdDbDictionary::getAt(const OdString& key, OdDb::OpenMode mode) const {
  OdDbObjectId id = getAt(key);
  return id.isNull() ? OdDbObjectPtr() : id.safeOpenObject(mode);
}

bool OdDbDictionary::has(const OdDbObjectId& id) const {
  if (id.isNull() || id.isErased()) return false;
  for (const Entry& e : entries())
    if (e.id == id) return true;
  return false;
}

OdString OdDbDictionary::nameAt(const OdDbObjectId& id) const {
  for (const Entry& e : entries())
    if (e.id == id && !id.isNull()) return e.key;
  return OdString();
}

std::uint32_t OdDbDictionary::numEntries() const {
  std::uint32_t n = 0;
  for (const Entry& e : entries())
    if (!e.id.isNull() && !e.id.isErased()) ++n;
  return n;
}

bool OdDbDictionary::isHardOwner() const {
  return OdDbTagRange(dxf(), kSubclass).integer(280, 0) != 0;
}

void OdDbDictionary::setHardOwner(bool hard) {
  assertWriteEnabled();
  OdDbTagRange range(dxf(), kSubclass);
  if (!hard && !range.has(280)) return;
  // 280 goes before 281 (the merge style), as files write them.
  std::size_t at281 = range.find(281);
  if (!range.has(280) && at281 != DxfObject::npos) {
    dxf().insertTag(at281, dxfDocument().makeInteger(280, hard ? 1 : 0));
    return;
  }
  range.setInteger(280, hard ? 1 : 0);
}

OdDbObjectId OdDbDictionary::setAt(const OdString& key, OdDbObject* value) {
  if (!value) throw OdError(eNullPtr, "no object to put under the key " + key.toUtf8());
  if (key.isEmpty()) throw OdError(eInvalidKey, "a dictionary key cannot be empty");
  if (!database())
    throw OdError(eNotImplementedYet, "a dictionary needs to be in a drawing to take entries");
  assertWriteEnabled();
  OdDbDatabase* db = database();
  OdDbObjectId id;
  if (value->isNewObject()) {
    OdDbDatabaseImpl& impl = db->impl();
    std::size_t objects = impl.ensureSection("OBJECTS");
    id = value->makeResident(db, objects, impl.doc().section(objects).size(), objectId());
  } else {
    if (value->database() != db)
      throw OdError(eWrongDatabase,
                    "the object under the key " + key.toUtf8() + " belongs to another drawing");
    id = value->objectId();
  }
  std::size_t existing = findKeyTag(key);
  DxfObject& obj = dxf();
  DxfDocument& doc = obj.document();
  if (existing != DxfObject::npos) {
    OdDbObjectId old = refAt(obj, existing + 1, db);
    if (old == id) return id;
    obj.setText(existing + 1, id.getHandle().ascii());
    if (!old.isNull()) {
      // The replaced object goes with its entry.
      old.stub()->flags |= OdDbStub::kErased;
      if (old.stub()->object) db->impl().fireErased(old.stub()->object, true);
    }
    return id;
  }
  auto [begin, end] = OdDbTagRange(obj, kSubclass).bounds();
  (void)begin;
  obj.insertTag(end, doc.makeText(3, key));
  obj.insertTag(end + 1, doc.makeText(isHardOwner() ? 360 : 350, id.getHandle().ascii()));
  return id;
}

OdDbObjectId OdDbDictionary::remove(const OdString& key) {
  std::size_t i = findKeyTag(key);
  if (i == DxfObject::npos) return OdDbObjectId();
  assertWriteEnabled();
  OdDbObjectId id = refAt(dxf(), i + 1, database());
  dxf().eraseTag(i + 1);
  dxf().eraseTag(i);
  if (!id.isNull() && !id.isErased()) {
    id.stub()->flags |= OdDbStub::kErased;
    for (OdDbStub* f : database()->impl().followers(id.stub())) f->flags |= OdDbStub::kErased;
    if (id.stub()->object) database()->impl().fireErased(id.stub()->object, true);
  }
  return id;
}

bool OdDbDictionary::remove(const OdDbObjectId& id) {
  OdString key = nameAt(id);
  return !key.isEmpty() && !remove(key).isNull();
}

void OdDbDictionary::removeEntryOf(const OdDbObjectId& dict, const OdDbObjectId& entry) {
  if (dict.isNull() || entry.isNull()) return;
  OdDbDatabaseImpl& impl = dict.database()->impl();
  DxfObject& obj = impl.dxf(dict.stub());
  auto [begin, end] = OdDbTagRange(obj, kSubclass).bounds();
  for (std::size_t i = begin; i + 1 < end; ++i) {
    if (obj.code(i) == 3 && isEntryRef(obj.code(i + 1)) &&
        refAt(obj, i + 1, dict.database()) == entry) {
      obj.eraseTag(i + 1);
      obj.eraseTag(i);
      return;
    }
  }
}

OdDbDictionaryIteratorPtr OdDbDictionary::newIterator() const {
  OdDbDictionaryIteratorPtr it = OdDbDictionaryIterator::createObject();
  std::vector<Entry> live;
  for (Entry& e : entries())
    if (!e.id.isNull() && !e.id.isErased()) live.push_back(std::move(e));
  it->setEntries(std::move(live));
  return it;
}

bool OdDbDictionaryIterator::next() noexcept {
  if (pos_ < entries_.size()) ++pos_;
  return !done();
}

OdString OdDbDictionaryIterator::name() const {
  return done() ? OdString() : entries_[pos_].key;
}

OdDbObjectId OdDbDictionaryIterator::objectId() const {
  return done() ? OdDbObjectId() : entries_[pos_].id;
}

OdDbObjectPtr OdDbDictionaryIterator::getObject(OdDb::OpenMode mode) const {
  return done() ? OdDbObjectPtr() : entries_[pos_].id.safeOpenObject(mode);
}
