#include "OdDbRegAppTableRecord.h"

ODDB_DEFINE_MEMBERS(OdDbRegAppTableRecord, OdDbSymbolTableRecord, "AcDbRegAppTableRecord", "APPID");

void OdDbRegAppTableRecord::initNewObject() {
  initFromTemplate(
      "0\nAPPID\n100\nAcDbSymbolTableRecord\n100\nAcDbRegAppTableRecord\n2\nNEW\n70\n0\n");
}
