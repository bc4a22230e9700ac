#include "OdDbAttributeDefinition.h"

ODDB_DEFINE_MEMBERS(OdDbAttributeDefinition, OdDbText, "AcDbAttributeDefinition", "ATTDEF");
