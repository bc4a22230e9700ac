#pragma once

#include "OdDbSymbolTable.h"

// The table of blocks, model space and paper space among them. A release-12 file has no
// such table; its blocks are listed from the BLOCKS section instead.
class OdDbBlockTable : public OdDbSymbolTable {
  ODRX_DECLARE_MEMBERS(OdDbBlockTable);

 protected:
  OdDbBlockTable() = default;
};

using OdDbBlockTablePtr = OdSmartPtr<OdDbBlockTable>;
