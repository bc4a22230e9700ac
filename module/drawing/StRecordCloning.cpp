#include "StRecordCloning.h"

#include "OdDbLayerTable.h"
#include "OdDbLinetypeTable.h"
#include "OdDbTextStyleTable.h"
#include "OdError.h"

namespace st {
namespace {

using TableIdOf = OdDbObjectId (OdDbDatabase::*)() const;

// The shared steps; `Table` is the table's class, which the target's table must be.
template <class Table>
OdResult cloneRecord(OdDbDatabase* target, OdDbDatabase* source, const OdString& name,
                     OdDbObjectId& newId, TableIdOf tableIdOf,
                     OdDb::DuplicateRecordCloning duplicates) {
  if (!target || !source) return eNullPtr;
  if (target == source) return eWrongDatabase;
  const OdDbObjectId targetTableId = (target->*tableIdOf)();
  if (targetTableId.isNull()) return eNullObjectId;
  OdDbObjectPtr targetObject;
  if (targetTableId.openObject(targetObject, OdDb::kForRead) != eOk) return eCannotOpenTable;
  OdSmartPtr<Table> targetTable = Table::cast(targetObject.get());
  if (!targetTable) return eCannotOpenTable;

  try {
    OdSmartPtr<Table> sourceTable = (source->*tableIdOf)().safeOpenObject();
    OdDbObjectIdArray ids;
    ids.append(sourceTable->getAt(name));
    OdDbIdMapping mapping;
    source->wblockCloneObjects(ids, targetTableId, mapping, duplicates, false);
    OdDbIdPair pair(ids[0]);
    mapping.compute(pair);
    newId = pair.value;
  } catch (const OdError&) {
    return eCloneFailed;
  }
  return eOk;
}

}  // namespace

OdResult stCloneLayerTableRecord(OdDbDatabase* target, OdDbDatabase* source, const OdString& name,
                                 OdDbObjectId& newId) {
  return cloneRecord<OdDbLayerTable>(target, source, name, newId, &OdDbDatabase::getLayerTableId,
                                     OdDb::kDrcIgnore);
}

OdResult stCloneLinetypeTableRecord(OdDbDatabase* target, OdDbDatabase* source,
                                    const OdString& name, OdDbObjectId& newId) {
  return cloneRecord<OdDbLinetypeTable>(target, source, name, newId,
                                        &OdDbDatabase::getLinetypeTableId, OdDb::kDrcReplace);
}

OdResult stCloneTextStyleTableRecord(OdDbDatabase* target, OdDbDatabase* source,
                                     const OdString& name, OdDbObjectId& newId) {
  return cloneRecord<OdDbTextStyleTable>(target, source, name, newId,
                                         &OdDbDatabase::getTextStyleTableId, OdDb::kDrcReplace);
}

}  // namespace st
