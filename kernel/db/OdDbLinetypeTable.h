#pragma once

#include "OdDbSymbolTable.h"

// The table of linetypes.
class OdDbLinetypeTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbLinetypeTable);

 protected:
  OdDbLinetypeTable() = default;
};

using OdDbLinetypeTablePtr = OdSmartPtr<OdDbLinetypeTable>;
