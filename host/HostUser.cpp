#include "HostUser.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

OdString HostUser::loginName() {
  long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found &&
      found->pw_name && *found->pw_name)
    return OdString::fromUtf8(found->pw_name);
  for (const char* var : {"LOGNAME", "USER"}) {
    if (const char* value = std::getenv(var); value && *value) return OdString::fromUtf8(value);
  }
  return L"unknown";
}
