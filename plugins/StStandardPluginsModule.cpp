// The plug-in library's module object: registers the four plug-in classes with the kernel's
// run-time class system when the library loads, so that the module's plug-in registry can
// create them by class name, and removes them when it unloads. The module's engine classes
// (StDWSPlugin, StError, StFix) must be registered before this library loads.

#include <iterator>

#include "OdRxModule.h"
#include "StDWSDimstylePlugin.h"
#include "StDWSLayerPlugin.h"
#include "StDWSLinetypePlugin.h"
#include "StDWSTextstylePlugin.h"

namespace {

struct PluginClass {
  void (*rxInit)();
  void (*rxUninit)();
};

// In class-name order, the order the manager walks them.
const PluginClass kClasses[] = {
    {[] { st::StDWSDimstylePlugin::rxInit(); }, [] { st::StDWSDimstylePlugin::rxUninit(); }},
    {[] { st::StDWSLayerPlugin::rxInit(); }, [] { st::StDWSLayerPlugin::rxUninit(); }},
    {[] { st::StDWSLinetypePlugin::rxInit(); }, [] { st::StDWSLinetypePlugin::rxUninit(); }},
    {[] { st::StDWSTextstylePlugin::rxInit(); }, [] { st::StDWSTextstylePlugin::rxUninit(); }},
};

class StStandardPluginsModule : public OdRxModule {
 public:
  // A class that cannot be registered (registered already, or the engine's classes missing)
  // throws the kernel's OdError after the ones registered by this call are removed again, so
  // that the library is not left half loaded.
  void initApp() override {
    std::size_t registered = 0;
    try {
      for (; registered < std::size(kClasses); ++registered) kClasses[registered].rxInit();
    } catch (...) {
      while (registered > 0) kClasses[--registered].rxUninit();
      throw;
    }
  }
  void uninitApp() override {
    for (std::size_t i = std::size(kClasses); i > 0; --i) kClasses[i - 1].rxUninit();
  }
};

}  // namespace

ODRX_DEFINE_MODULE(StStandardPluginsModule);
