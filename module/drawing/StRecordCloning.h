#pragma once

#include "OdDbDatabase.h"
#include "OdDbObjectId.h"
#include "OdResult.h"
#include "OdString.h"
#include "StExport.h"

// Copying a record of a standards drawing (`source`) into the drawing being fixed
// (`target`), as a fix does. Each gives the id the record has in the target in `newId` and
// answers with a result code, never an exception:
//   eOk (0)              copied, or an existing record kept (see below)
//   eCannotOpenTable (20) the target's table does not open
//   eNullObjectId (21)   the target has no table of that kind
//   eWrongDatabase (40)  target and source are the same drawing
//   eNullPtr (122)       a database is null
//   eCloneFailed (241)   the copy failed: no record called `name` in the source, or the
//                        kernel refused it
// A layer the target already has is kept as it is (the fix then only points objects at it);
// a linetype or text style the target already has is overwritten with the standard's
// definition, keeping its handle, since those records are definitions rather than settings.
namespace st {

ST_EXPORT OdResult stCloneLayerTableRecord(OdDbDatabase* target, OdDbDatabase* source,
                                           const OdString& name, OdDbObjectId& newId);
ST_EXPORT OdResult stCloneLinetypeTableRecord(OdDbDatabase* target, OdDbDatabase* source,
                                              const OdString& name, OdDbObjectId& newId);
ST_EXPORT OdResult stCloneTextStyleTableRecord(OdDbDatabase* target, OdDbDatabase* source,
                                               const OdString& name, OdDbObjectId& newId);

}  // namespace st
