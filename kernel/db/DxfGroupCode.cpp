#include "DxfGroupCode.h"

#include <array>
#include <charconv>
#include <limits>

namespace {

constexpr DxfValueType computeType(int c) {
  using T = DxfValueType;
  if (c >= 0 && c <= 9) return T::kString;
  if (c >= 10 && c <= 59) return T::kDouble;
  if (c >= 60 && c <= 79) return T::kInt16;
  if (c >= 90 && c <= 99) return T::kInt32;
  if (c >= 100 && c <= 102) return T::kString;
  if (c == 105) return T::kString;
  if (c >= 110 && c <= 149) return T::kDouble;
  if (c >= 160 && c <= 169) return T::kInt64;
  if (c >= 170 && c <= 179) return T::kInt16;
  if (c >= 210 && c <= 239) return T::kDouble;
  if (c >= 270 && c <= 289) return T::kInt16;
  if (c >= 290 && c <= 299) return T::kBool;
  if (c >= 300 && c <= 309) return T::kString;
  if (c >= 310 && c <= 319) return T::kBinary;
  if (c >= 320 && c <= 369) return T::kString;
  if (c >= 370 && c <= 389) return T::kInt16;
  if (c >= 390 && c <= 399) return T::kString;
  if (c >= 400 && c <= 409) return T::kInt16;
  if (c >= 410 && c <= 419) return T::kString;
  if (c >= 420 && c <= 429) return T::kInt32;
  if (c >= 430 && c <= 439) return T::kString;
  if (c >= 440 && c <= 459) return T::kInt32;
  if (c >= 460 && c <= 469) return T::kDouble;
  if (c >= 470 && c <= 481) return T::kString;
  if (c == 999) return T::kString;
  if (c == 1004) return T::kBinary;
  if (c >= 1000 && c <= 1009) return T::kString;
  if (c >= 1010 && c <= 1059) return T::kDouble;
  if (c >= 1060 && c <= 1070) return T::kInt16;
  if (c == 1071) return T::kInt32;
  return T::kUnknown;
}

template <std::size_t N>
constexpr std::array<DxfValueType, N> buildTable() {
  std::array<DxfValueType, N> table{};
  for (std::size_t c = 0; c < N; ++c) table[c] = computeType(static_cast<int>(c));
  return table;
}

}  // namespace

// One entry per code: the per-tag look-up is a single indexed load.
const std::array<DxfValueType, DxfGroupCode::kTableSize> DxfGroupCode::kTypes =
    buildTable<DxfGroupCode::kTableSize>();

bool DxfGroupCode::isHandle(int code) noexcept {
  return code == 5 || code == 105 || (code >= 320 && code <= 369) || (code >= 390 && code <= 399) ||
         code == 480 || code == 481 || code == 1005;
}

std::int64_t DxfGroupCode::minInteger(DxfValueType type) noexcept {
  switch (type) {
    case DxfValueType::kInt16:
      return std::numeric_limits<std::int16_t>::min();
    case DxfValueType::kInt32:
      return std::numeric_limits<std::int32_t>::min();
    case DxfValueType::kBool:
      return 0;
    default:
      return std::numeric_limits<std::int64_t>::min();
  }
}

std::int64_t DxfGroupCode::maxInteger(DxfValueType type) noexcept {
  switch (type) {
    case DxfValueType::kInt16:
      return std::numeric_limits<std::uint16_t>::max();
    case DxfValueType::kInt32:
      return std::numeric_limits<std::uint32_t>::max();
    case DxfValueType::kBool:
      return 255;
    default:
      return std::numeric_limits<std::int64_t>::max();
  }
}

namespace {

std::string_view trimNumber(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  if (s.size() > 1 && s.front() == '+' && s[1] != '-' && s[1] != '+') s.remove_prefix(1);
  return s;
}

int hexDigit(char c) noexcept {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

bool DxfGroupCode::parseInteger(std::string_view text, std::int64_t& value) noexcept {
  text = trimNumber(text);
  if (text.empty()) return false;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

bool DxfGroupCode::parseReal(std::string_view text, double& value) noexcept {
  text = trimNumber(text);
  if (text.empty()) return false;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size();
}

bool DxfGroupCode::parseHex(std::string_view text, std::string* bytes) {
  text = trimNumber(text);
  if (text.size() % 2 != 0) return false;
  if (bytes) bytes->clear();
  for (std::size_t i = 0; i < text.size(); i += 2) {
    int hi = hexDigit(text[i]);
    int lo = hexDigit(text[i + 1]);
    if (hi < 0 || lo < 0) return false;
    if (bytes) bytes->push_back(static_cast<char>(hi * 16 + lo));
  }
  return true;
}

std::string DxfGroupCode::formatReal(double value) {
  char buffer[64];
  auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
  std::string text(buffer, ec == std::errc() ? end : buffer);
  if (text.find_first_of(".eEn") == std::string::npos) text += ".0";
  return text;
}

std::string DxfGroupCode::formatHex(std::string_view bytes) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (unsigned char b : bytes) {
    text.push_back(kDigits[b >> 4]);
    text.push_back(kDigits[b & 15]);
  }
  return text;
}

bool DxfGroupCode::needsCaretEncoding(std::string_view bytes, bool keepTabs) noexcept {
  for (unsigned char c : bytes)
    if ((c < 0x20 && !(keepTabs && c == '\t')) || c == '^') return true;
  return false;
}

std::string DxfGroupCode::caretEncode(std::string_view bytes, bool keepTabs) {
  std::string text;
  text.reserve(bytes.size() + 8);
  for (unsigned char c : bytes) {
    if (c < 0x20 && !(keepTabs && c == '\t')) {
      text.push_back('^');
      text.push_back(static_cast<char>(c + 0x40));
    } else if (c == '^') {
      text += "^ ";
    } else {
      text.push_back(static_cast<char>(c));
    }
  }
  return text;
}

std::string DxfGroupCode::caretDecode(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '^' && i + 1 < text.size()) {
      unsigned char next = static_cast<unsigned char>(text[i + 1]);
      if (next == ' ') {
        bytes.push_back('^');
        ++i;
        continue;
      }
      if (next >= 0x40 && next <= 0x5F) {
        bytes.push_back(static_cast<char>(next - 0x40));
        ++i;
        continue;
      }
    }
    bytes.push_back(c);
  }
  return bytes;
}
