#include "StManager.h"

#include "StManagerImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StManager, OdRxObject, StManagerImpl);

}  // namespace st
