#include "HostSilentCheck.h"

#include <exception>

#include "HostApplication.h"

bool hostRunSilentCheck(int commandBit) {
  auto isAllowed = hostModuleFunction<bool (*)(int)>("stIsCheckAllowed");
  auto check = hostModuleFunction<void (*)()>("stCheckStandards");
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
