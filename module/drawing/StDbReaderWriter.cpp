#include "StDbReaderWriter.h"

#include "StDbReaderWriterImpl.h"

namespace st {

ODRX_DEFINE_MEMBERS_IMPL(StDbReaderWriter, OdRxObject, StDbReaderWriterImpl);

}  // namespace st
