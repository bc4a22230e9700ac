#pragma once

#include "OdDbSymbolTable.h"

// The table of registered application names.
class OdDbRegAppTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbRegAppTable);

 protected:
  OdDbRegAppTable() = default;
};

using OdDbRegAppTablePtr = OdSmartPtr<OdDbRegAppTable>;
