#include "OdDbAttribute.h"

ODDB_DEFINE_MEMBERS(OdDbAttribute, OdDbText, "AcDbAttribute", "ATTRIB");

void OdDbAttribute::initNewObject() {
  initFromTemplate(
      "0\nATTRIB\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0.0\n20\n0.0\n30\n0.0\n40\n2."
      "5\n1\n\n100\nAcDbAttribute\n2\n\n70\n0\n");
}
