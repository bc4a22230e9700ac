#include "OdDbLinetypeTable.h"

ODDB_DEFINE_MEMBERS(OdDbLinetypeTable, OdDbSymbolTable, "AcDbLinetypeTable", "TABLE");
