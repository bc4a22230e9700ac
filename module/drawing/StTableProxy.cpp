#include "StTableProxy.h"

#include "StTableProxyImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StTableProxy, OdRxObject, StTableProxyImpl);

}  // namespace st
