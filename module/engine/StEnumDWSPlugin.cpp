#include "StEnumDWSPlugin.h"

namespace st {

ODRX_NO_CONS_DEFINE_MEMBERS(StEnumDWSPlugin, OdRxObject);

}  // namespace st
