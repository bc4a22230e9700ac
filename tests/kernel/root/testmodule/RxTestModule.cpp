#include "OdRxModule.h"
#include "RxGreeter.h"

namespace {
class RxTestModule : public OdRxModule {
 public:
  void initApp() override { RxGreeter::rxInit(); }
  void uninitApp() override { RxGreeter::rxUninit(); }
};
}  // namespace

ODRX_DEFINE_MODULE(RxTestModule);
