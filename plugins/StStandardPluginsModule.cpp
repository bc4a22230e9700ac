// The plug-in library's module object: registers the four plug-in classes with the kernel's
// run-time class system when the library loads, so that the module's plug-in registry can
// create them by class name, and removes them when it unloads. The module's engine classes
// (StDWSPlugin, StError, StFix) must be registered before this library loads.

#include "OdRxModule.h"
#include "StDWSLayerPlugin.h"

namespace {

class StStandardPluginsModule : public OdRxModule {
 public:
  void initApp() override { st::StDWSLayerPlugin::rxInit(); }
  void uninitApp() override { st::StDWSLayerPlugin::rxUninit(); }
};

}  // namespace

ODRX_DEFINE_MODULE(StStandardPluginsModule);
