// Commands that exercise the host from inside a module, the way a real module reaches it:
// through new_ICmdFactory and get_host_funcptr only.

#include <cwchar>

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "ICmdFactory.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "OdRxModule.h"

namespace {

const wchar_t* const kGroup = L"HOSTTEST";

HostServices& host() {
  HostServices* services = hostServices();
  if (!services) throw OdError(eNotInitializedYet, "the test module runs without a host");
  return *services;
}

// Greets the user by login name.
class HelloCommand : public UICmdProcess {
 public:
  bool execute() override {
    host().cmdPrintf(L"hello %ls\n", host().loginName().c_str());
    return true;
  }
};

// Asks with a message box and reports the answer.
class AskCommand : public UICmdProcess {
 public:
  bool execute() override {
    int answer = host().messageBox(L"Choose OK to go on.", L"Associate Standards",
                                   HostButtons::kOkCancel, HostIcon::kWarning);
    host().cmdPrintf(L"ask got %d\n", answer);
    if (answer == kHostOk) host().sendCommand(L"HOSTTESTHELLO ");
    return answer == kHostOk;
  }
};

// Sends another command while running: it must run after this one.
class ChainCommand : public UICmdProcess {
 public:
  bool execute() override {
    host().cmdPrint(L"chain start\n");
    host().sendCommand(L"HOSTTESTHELLO ");
    host().cmdPrint(L"chain end\n");
    return true;
  }
};

class FailCommand : public UICmdProcess {
 public:
  bool execute() override { throw OdError(eInvalidInput, "the test command fails on purpose"); }
};

// The command set for which the silent check below is allowed: HOSTTESTALLOW sets it.
int g_allowed = 0;

class AllowCommand : public UICmdProcess {
 public:
  bool execute() override {
    OdString mask;
    if (!host().getString(L"Mask: ", mask)) return false;
    g_allowed = static_cast<int>(std::wcstol(mask.c_str(), nullptr, 0));
    return true;
  }
};

template <class Command>
UICmdProcess* make() {
  return new Command();
}

class HostTestModule : public OdRxModule {
 public:
  void initApp() override {
    ICmdFactoryPtr factory(new_ICmdFactory(), kOdRxObjAttach);
    if (!factory) throw OdError(eNotInitializedYet, "no host to register commands with");
    factory->registerCommand(L"HOSTTESTHELLO", kGroup, 0, &make<HelloCommand>);
    factory->registerCommand(L"HOSTTESTASK", kGroup, 0, &make<AskCommand>);
    factory->registerCommand(L"HOSTTESTCHAIN", kGroup, 0, &make<ChainCommand>);
    factory->registerCommand(L"HOSTTESTFAIL", kGroup, 0, &make<FailCommand>);
    factory->registerCommand(L"HOSTTESTALLOW", kGroup, 0, &make<AllowCommand>);
  }
  void uninitApp() override {
    ICmdFactoryPtr factory(new_ICmdFactory(), kOdRxObjAttach);
    if (factory) factory->unregisterGroup(kGroup);
  }
};

}  // namespace

ODRX_DEFINE_MODULE(HostTestModule);

// The silent check a host's file commands offer: this one only says that it ran, and on
// which drawing, so that a test sees it ran before the command's work.
extern "C" __attribute__((visibility("default"))) bool stIsCheckAllowed(int mask) {
  return (mask & g_allowed) != 0;
}
extern "C" __attribute__((visibility("default"))) void stCheckStandards() {
  OdDbDatabase* db = host().currentDatabase();
  host().cmdPrintf(L"test check of %ls\n", db ? db->getFilename().c_str() : L"nothing");
  if (g_allowed & 0x100) throw OdError(eInvalidInput, "the test check fails on purpose");
}
