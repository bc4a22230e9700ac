#pragma once

#include <cstdint>

#include "OdString.h"
#include "StExport.h"

namespace st {

// What an object's ignore mark says: its flags (1 for every mark this module writes), a
// text kept for compatibility that is always empty, and who chose to ignore the problem.
struct ST_EXPORT StFlagsRecord {
  std::int32_t flags = 0;
  OdString extra;
  OdString ignoredBy;
};

}  // namespace st
