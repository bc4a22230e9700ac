#pragma once

#include "OdDbSymbolTable.h"

// The table of dimension styles.
class OdDbDimStyleTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbDimStyleTable);

 protected:
  OdDbDimStyleTable() = default;
};

using OdDbDimStyleTablePtr = OdSmartPtr<OdDbDimStyleTable>;
