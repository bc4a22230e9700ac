#include "StRecordLookup.h"

#include "OdDbSymbolTable.h"
#include "StHostText.h"

namespace st {

bool hasRecord(const OdDbObjectId& table, const OdString& name) {
  if (table.isNull()) return false;
  OdDbSymbolTablePtr symbols = table.safeOpenObject();
  return symbols->has(name);
}

OdDbObjectId getRecord(const OdDbObjectId& table, const OdString& name) {
  if (!hasRecord(table, name)) return OdDbObjectId();
  OdDbSymbolTablePtr symbols = table.safeOpenObject();
  return symbols->getAt(name);
}

bool isFromExternalReference(const OdDbObjectId& id) {
  if (id.isNull()) return false;
  OdDbObjectPtr object = id.openObject();
  OdDbSymbolTableRecordPtr record = OdDbSymbolTableRecord::cast(object.get());
  return record && record->isResolved();
}

OdString getFileName(const OdString& path, bool withExtension) {
  OdString name = StHostText::fileNameOf(path);
  if (withExtension) return name;
  // Cut at the last dot, the one that starts the extension: searching for the extension's
  // text instead would cut "dws.dws" or "mydws.dws" in the wrong place.
  const int dot = name.reverseFind(L'.');
  return dot < 0 ? name : name.left(dot);
}

}  // namespace st
