#include "StIgnoreMarks.h"

#include "OdDbDictionary.h"
#include "OdDbXrecord.h"
#include "StHostText.h"
#include "StStandardKeys.h"

namespace st {

OdDbObjectId getObjectStFlagsDictionary(const OdDbObjectId& id) {
  if (id.isNull()) return OdDbObjectId();
  OdDbObjectPtr object = id.safeOpenObject();
  OdDbObjectId extId = object->extensionDictionary();
  if (extId.isNull()) return OdDbObjectId();
  OdDbDictionaryPtr ext = extId.safeOpenObject();
  return ext->getAt(kStandardKey);
}

bool hasObjectIgnoredMark(const OdDbObjectId& id) {
  // The standards dictionary alone counts as a mark, whether or not it holds AcStFlags.
  return !getObjectStFlagsDictionary(id).isNull();
}

StFlagsRecord getObjectIgnoredFlags(const OdDbObjectId& id) {
  StFlagsRecord record;
  OdDbObjectId dictId = getObjectStFlagsDictionary(id);
  if (dictId.isNull()) return record;
  OdDbDictionaryPtr dict = dictId.safeOpenObject();
  OdDbXrecordPtr flags = OdDbXrecord::cast(dict->getAt(kFlagsKey, OdDb::kForRead).get());
  OdResBufPtr rb = flags ? flags->rbChain() : OdResBufPtr();
  if (rb && rb->restype() == 90) {
    record.flags = rb->getInt32();
    rb = rb->next();
  }
  if (rb && rb->restype() == 300) record.ignoredBy = rb->getString();
  return record;
}

OdString getObjectIgnoredBy(const OdDbObjectId& id) {
  return getObjectIgnoredFlags(id).ignoredBy;
}

bool writeObjectIgnoredMark(const OdDbObjectId& id, const OdString& user) {
  OdDbDictionaryPtr dict;
  OdDbObjectId dictId = getObjectStFlagsDictionary(id);
  if (!dictId.isNull()) {
    dict = dictId.safeOpenObject(OdDb::kForWrite);
    dict->remove(kFlagsKey);
  } else if (!id.isNull()) {
    OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
    object->createExtensionDictionary();
    OdDbDictionaryPtr ext = object->extensionDictionary().safeOpenObject(OdDb::kForWrite);
    dict = OdDbDictionary::createObject();
    ext->setAt(kStandardKey, dict.get());
  }
  if (!dict) return false;

  OdResBufPtr chain = OdResBuf::newRb(90, 1);
  chain->setNext(OdResBuf::newRb(300, user).get());
  OdDbXrecordPtr record = OdDbXrecord::createObject();
  record->setFromRbChain(chain.get());
  return !dict->setAt(kFlagsKey, record.get()).isNull();
}

void eraseObjectIgnoredMark(const OdDbObjectId& id) {
  if (id.isNull()) return;
  OdDbObjectPtr object = id.safeOpenObject(OdDb::kForWrite);
  // Made even for an object that was never marked; the empty dictionary it leaves is harmless
  // and keeps the erase a single path.
  object->createExtensionDictionary();
  OdDbDictionaryPtr ext = object->extensionDictionary().safeOpenObject(OdDb::kForWrite);
  ext->remove(kStandardKey);
}

OdString getLogin() {
  return StHostText::loginName();
}

}  // namespace st
