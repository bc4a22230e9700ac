#include "StFix.h"

#include "StFixImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StFix, OdRxObject, StFixImpl);

}  // namespace st
