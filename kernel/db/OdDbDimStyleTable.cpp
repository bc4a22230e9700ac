#include "OdDbDimStyleTable.h"

ODDB_DEFINE_MEMBERS(OdDbDimStyleTable, OdDbSymbolTable, "AcDbDimStyleTable", "TABLE");
