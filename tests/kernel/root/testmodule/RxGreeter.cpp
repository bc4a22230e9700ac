#include "RxGreeter.h"

namespace {
class RxGreeterImpl : public RxGreeter {
 public:
  OdString greet() const override { return OdString(L"hello from the test module"); }
};
}  // namespace

ODRX_DEFINE_MEMBERS_IMPL(RxGreeter, OdRxObject, RxGreeterImpl);
