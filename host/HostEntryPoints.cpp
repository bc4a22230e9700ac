#include "HostEntryPoints.h"

#include "HostApp.h"
#include "HostApplication.h"
#include "ICmdFactory.h"
#include "OdRxObjectImpl.h"

namespace {

// Answers for whichever host runs at the time of each call.
class HostCmdFactory : public ICmdFactory {
 public:
  bool registerCommand(const OdString& name, const OdString& group, int flags,
                       UICmdCreator creator) override {
    HostApplication* app = HostApplication::current();
    return app && app->commands().add(name, group, flags, creator);
  }
  bool unregisterCommand(const OdString& name) override {
    HostApplication* app = HostApplication::current();
    return app && app->commands().remove(name);
  }
  int unregisterGroup(const OdString& group) override {
    HostApplication* app = HostApplication::current();
    return app ? app->commands().removeGroup(group) : 0;
  }
};

}  // namespace

void* get_host_funcptr(int selector) {
  HostApplication* app = HostApplication::current();
  if (!app) return nullptr;
  switch (selector) {
    case kHostFuncServices:
      return static_cast<HostServices*>(app);
    case kHostFuncDocManager:
      return app->docManager();
    default:
      return nullptr;
  }
}

HostApp* GetApp() {
  HostApplication* app = HostApplication::current();
  if (!app) return nullptr;
  HostApp* object = app->appObject();
  object->addRef();
  return object;
}

ICmdFactory* new_ICmdFactory() {
  if (!HostApplication::current()) return nullptr;
  return OdRxObjectImpl<HostCmdFactory, ICmdFactory>::createObject().detach();
}
