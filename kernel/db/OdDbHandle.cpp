#include "OdDbHandle.h"

bool OdDbHandle::parse(std::string_view text, OdDbHandle& out) noexcept {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
    text.remove_suffix(1);
  if (text.empty()) return false;
  std::uint64_t value = 0;
  int digits = 0;
  for (char c : text) {
    int d;
    if (c >= '0' && c <= '9') {
      d = c - '0';
    } else if (c >= 'A' && c <= 'F') {
      d = c - 'A' + 10;
    } else if (c >= 'a' && c <= 'f') {
      d = c - 'a' + 10;
    } else {
      return false;
    }
    if (value != 0 || d != 0) ++digits;
    if (digits > 16) return false;
    value = (value << 4) | static_cast<std::uint64_t>(d);
  }
  out = OdDbHandle(value);
  return true;
}

std::string OdDbHandle::ascii() const {
  static const char kDigits[] = "0123456789ABCDEF";
  if (value_ == 0) return "0";
  char buffer[17];
  int pos = 16;
  buffer[pos] = '\0';
  for (std::uint64_t v = value_; v != 0; v >>= 4) buffer[--pos] = kDigits[v & 0xF];
  return std::string(buffer + pos);
}
