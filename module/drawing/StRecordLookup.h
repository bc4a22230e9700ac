#pragma once

#include "OdDbObjectId.h"
#include "OdString.h"
#include "StExport.h"

// Finding records by name and naming standards files.
namespace st {

// True when the symbol table `table` has a live record called `name` (case ignored). False
// for a null `table`; an object that is not a symbol table throws OdError_NotThatKindOfClass.
ST_EXPORT bool hasRecord(const OdDbObjectId& table, const OdString& name);
// The live record called `name` in `table`, or a null id (also for a null `table`).
ST_EXPORT OdDbObjectId getRecord(const OdDbObjectId& table, const OdString& name);
// True when `id` is a symbol table record that came from an external reference. False for a
// null id, an object that does not open, and any other kind of object.
ST_EXPORT bool isFromExternalReference(const OdDbObjectId& id);
// The file name of `path` (after its last '/' or '\'), with or without its extension.
// Without, only the last extension goes: "C:\std\Office.dws" gives "Office", "dws.dws" gives
// "dws" and "a.b.dws" gives "a.b"; a name without a dot is returned whole.
ST_EXPORT OdString getFileName(const OdString& path, bool withExtension);

}  // namespace st
