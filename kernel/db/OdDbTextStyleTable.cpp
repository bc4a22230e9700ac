#include "OdDbTextStyleTable.h"

ODDB_DEFINE_MEMBERS(OdDbTextStyleTable, OdDbSymbolTable, "AcDbTextStyleTable", "TABLE");
