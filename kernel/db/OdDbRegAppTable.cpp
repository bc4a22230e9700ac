#include "OdDbRegAppTable.h"

ODDB_DEFINE_MEMBERS(OdDbRegAppTable, OdDbSymbolTable, "AcDbRegAppTable", "TABLE");
