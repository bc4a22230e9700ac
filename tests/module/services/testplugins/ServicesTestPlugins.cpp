// A plug-in library that loads: the registry must find it and report nothing.

#include "OdRxModule.h"

namespace {

class ServicesTestPlugins : public OdRxModule {
 public:
  void initApp() override {}
  void uninitApp() override {}
};

}  // namespace

ODRX_DEFINE_MODULE(ServicesTestPlugins);
