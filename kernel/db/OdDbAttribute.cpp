#include "OdDbAttribute.h"

ODDB_DEFINE_MEMBERS(OdDbAttribute, OdDbText, "AcDbAttribute", "ATTRIB");
