#include "StBlockProxy.h"

#include "StBlockProxyImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StBlockProxy, OdRxObject, StBlockProxyImpl);

}  // namespace st
