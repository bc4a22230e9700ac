#include "OdDbLayerTable.h"

ODDB_DEFINE_MEMBERS(OdDbLayerTable, OdDbSymbolTable, "AcDbLayerTable", "TABLE");
