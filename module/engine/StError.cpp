#include "StError.h"

#include "StErrorImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StError, OdRxObject, StErrorImpl);

}  // namespace st
