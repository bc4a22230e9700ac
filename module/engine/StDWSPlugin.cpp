#include "StDWSPlugin.h"

#include "StDWSPluginImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StDWSPlugin, OdRxObject, StDWSPluginImpl);

}  // namespace st
