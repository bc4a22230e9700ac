// The plug-in library's module object: registers the four plug-in classes with the kernel's
// run-time class system when the library loads, so that the module's plug-in registry can
// create them by class name, and removes them when it unloads. The module's engine classes
// (StDWSPlugin, StError, StFix) must be registered before this library loads.

#include "OdRxModule.h"
#include "StDWSDimstylePlugin.h"
#include "StDWSLayerPlugin.h"
#include "StDWSLinetypePlugin.h"
#include "StDWSTextstylePlugin.h"

namespace {

class StStandardPluginsModule : public OdRxModule {
 public:
  void initApp() override {
    st::StDWSDimstylePlugin::rxInit();
    st::StDWSLayerPlugin::rxInit();
    st::StDWSLinetypePlugin::rxInit();
    st::StDWSTextstylePlugin::rxInit();
  }
  void uninitApp() override {
    st::StDWSTextstylePlugin::rxUninit();
    st::StDWSLinetypePlugin::rxUninit();
    st::StDWSLayerPlugin::rxUninit();
    st::StDWSDimstylePlugin::rxUninit();
  }
};

}  // namespace

ODRX_DEFINE_MODULE(StStandardPluginsModule);
