#include "OdDbBlockTable.h"

ODDB_DEFINE_MEMBERS(OdDbBlockTable, OdDbSymbolTable, "AcDbBlockTable", "TABLE");
