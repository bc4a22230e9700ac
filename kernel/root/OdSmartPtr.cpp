#include "OdSmartPtr.h"

#include "OdError.h"

void odrxThrowNotThatKindOfClass(const OdRxObject* obj, const OdRxClass* wanted) {
  throw OdError_NotThatKindOfClass(obj ? obj->isA() : nullptr, wanted);
}
