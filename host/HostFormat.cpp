#include "HostFormat.h"

#include <cwchar>
#include <string>

OdString hostVFormat(const wchar_t* format, va_list args) {
  if (!format) return OdString();
  std::wstring buffer(256, L'\0');
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    int n = std::vswprintf(buffer.data(), buffer.size(), format, copy);
    va_end(copy);
    if (n >= 0) {
      buffer.resize(static_cast<std::size_t>(n));
      return OdString(std::move(buffer));
    }
    // vswprintf gives no length on overflow (and -1 for a bad format): grow to a limit.
    if (buffer.size() >= (1u << 20)) return OdString(L"(output too long or not formattable)\n");
    buffer.resize(buffer.size() * 4);
  }
}
