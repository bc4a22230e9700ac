#include "OdRxModule.h"

namespace {
class RxWrongVersionModule : public OdRxModule {
 public:
  void initApp() override {}
  void uninitApp() override {}
};
}  // namespace

extern "C" __attribute__((visibility("default"))) OdRxModule* odrxCreateModuleObject() {
  return OdRxObjectImpl<RxWrongVersionModule>::createObject().detach();
}
extern "C" __attribute__((visibility("default"))) OdRxApiVersion odrxGetAPIVersion() {
  return kOdRxApiVersion + 1;
}
