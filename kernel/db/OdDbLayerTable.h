#pragma once

#include "OdDbSymbolTable.h"

// The table of layers.
class OdDbLayerTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbLayerTable);

 protected:
  OdDbLayerTable() = default;
};

using OdDbLayerTablePtr = OdSmartPtr<OdDbLayerTable>;
