#include "OdDbAttributeDefinition.h"

ODDB_DEFINE_MEMBERS(OdDbAttributeDefinition, OdDbText, "AcDbAttributeDefinition", "ATTDEF");

void OdDbAttributeDefinition::initNewObject() {
  initFromTemplate(
      "0\nATTDEF\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0.0\n20\n0.0\n30\n0.0\n40\n2."
      "5\n1\n\n100\nAcDbAttributeDefinition\n3\n\n2\n\n70\n0\n");
}
