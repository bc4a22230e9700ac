#include "StModule.h"

#include <exception>

#include "HostApDocManager.h"
#include "HostEntryPoints.h"
#include "ICmdFactory.h"
#include "OdError.h"
#include "StAppServices.h"
#include "StBlockProxy.h"
#include "StCheckStandardsCmd.h"
#include "StConfigureStandardsCmd.h"
#include "StDWSPlugin.h"
#include "StDbReactor.h"
#include "StDbReaderWriter.h"
#include "StDocManagerReactor.h"
#include "StError.h"
#include "StFix.h"
#include "StManager.h"
#include "StPluginLibraries.h"
#include "StTableProxy.h"

namespace st {

namespace {

const wchar_t* const kCommandGroup = L"HOST";
const wchar_t* const kCheckCommand = L"CHECKSTANDARDS";
const wchar_t* const kConfigureCommand = L"STANDARDS";

template <class Class>
constexpr StModule::RegisteredClass entry(const char* name) {
  return {name, [] { Class::rxInit(); }, [] { Class::rxUninit(); }, &Class::desc};
}

const std::array<StModule::RegisteredClass, 9> kClasses = {
    entry<StAppServices>("StAppServices"),
    entry<StDbReactor>("StDbReactor"),
    entry<StDbReaderWriter>("StDbReaderWriter"),
    entry<StBlockProxy>("StBlockProxy"),
    entry<StTableProxy>("StTableProxy"),
    entry<StError>("StError"),
    entry<StFix>("StFix"),
    entry<StDWSPlugin>("StDWSPlugin"),
    entry<StManager>("StManager"),
};

void removeDocumentReactor() {
  if (HostApDocManager* documents = hostDocManager())
    documents->removeReactor(stDocManagerReactor().get());
  stReleaseDocManagerReactor();
}

}  // namespace

const std::array<StModule::RegisteredClass, 9>& StModule::registeredClasses() {
  return kClasses;
}

void StModule::initApp() {
  std::size_t registered = 0;
  try {
    for (; registered < kClasses.size(); ++registered) kClasses[registered].rxInit();
    stAppServices();
    if (HostApDocManager* documents = hostDocManager())
      documents->addReactor(stDocManagerReactor().get());
  } catch (...) {
    removeDocumentReactor();
    stReleaseAppServices();
    stUnloadPluginLibraries();
    for (std::size_t i = 0; i < registered; ++i) kClasses[i].rxUninit();
    throw;
  }
}

void StModule::uninitApp() {
  // The plug-in classes of the libraries the registry loaded derive from StDWSPlugin, whose
  // descriptor cannot go while they are registered; and those libraries cannot go while
  // their plug-ins live in the managers the services hold. So the services go first, then
  // the libraries, then the module's own classes.
  removeDocumentReactor();
  stReleaseAppServices();
  stUnloadPluginLibraries();
  std::exception_ptr first;
  for (const auto& cls : kClasses) {
    try {
      cls.rxUninit();
    } catch (...) {
      if (!first) first = std::current_exception();
    }
  }
  unregisterCommands();
  if (first) std::rethrow_exception(first);
}

bool StModule::registerCommands() {
  ICmdFactoryPtr factory(new_ICmdFactory(), kOdRxObjAttach);
  if (!factory) return false;
  const bool check =
      factory->registerCommand(kCheckCommand, kCommandGroup, 0, &StCheckStandardsCmd::create);
  const bool configure = factory->registerCommand(kConfigureCommand, kCommandGroup, 0,
                                                  &StConfigureStandardsCmd::create);
  return check && configure;
}

void StModule::unregisterCommands() {
  ICmdFactoryPtr factory(new_ICmdFactory(), kOdRxObjAttach);
  if (!factory) return;
  factory->unregisterCommand(kCheckCommand);
  factory->unregisterCommand(kConfigureCommand);
}

}  // namespace st

// The module's entry points. Making the module object is the moment the library is loaded,
// so the commands are registered here; initApp follows.
extern "C" ST_EXPORT OdRxModule* odrxCreateModuleObject() {
  st::StModule::registerCommands();
  return OdRxObjectImpl<st::StModule>::createObject().detach();
}

extern "C" ST_EXPORT OdRxApiVersion odrxGetAPIVersion() {
  return kOdRxApiVersion;
}
