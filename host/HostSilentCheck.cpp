#include "HostSilentCheck.h"

#include <exception>

#include "HostApplication.h"
#include "OdRxDynamicLinker.h"

namespace {

template <class Function>
Function exported(const char* name) {
  // POSIX guarantees that a function's address survives the trip through void*.
  return reinterpret_cast<Function>(odrxDynamicLinker()->findSymbol(name));
}

}  // namespace

bool hostRunSilentCheck(int commandBit) {
  auto isAllowed = exported<bool (*)(int)>("stIsCheckAllowed");
  auto check = exported<void (*)()>("stCheckStandards");
  if (!isAllowed || !check || !isAllowed(commandBit)) return false;
  // The user asked for the check but not for it to stand in the way of the command.
  try {
    check();
  } catch (const std::exception& e) {  // OdError among them
    if (HostApplication* app = HostApplication::current())
      app->cmdPrintf(L"standards check failed: %ls\n", OdString::fromUtf8(e.what()).c_str());
  }
  return true;
}
