#pragma once

#include "OdDbSymbolTable.h"

// The table of text styles (and shape files).
class OdDbTextStyleTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbTextStyleTable);

 protected:
  OdDbTextStyleTable() = default;
};

using OdDbTextStyleTablePtr = OdSmartPtr<OdDbTextStyleTable>;
