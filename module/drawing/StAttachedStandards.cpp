#include "StAttachedStandards.h"

#include "OdDbDatabase.h"
#include "OdDbDictionary.h"
#include "StStandardKeys.h"

extern "C" bool stIsDatabaseHasAttachedStandards(OdDbDatabase* db) {
  if (!db) return false;
  OdDbObjectId nodId = db->getNamedObjectsDictionaryId();
  if (nodId.isNull()) return false;
  OdDbDictionaryPtr nod = nodId.safeOpenObject();
  OdDbObjectId listId = nod->getAt(st::kStandardKey);
  if (listId.isNull()) return false;
  OdDbObjectPtr entry = listId.openObject();
  OdDbDictionaryPtr list = OdDbDictionary::cast(entry.get());
  return list && list->numEntries() > 0;
}
