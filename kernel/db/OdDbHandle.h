#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// An object's handle: the 64-bit number that names an object within its drawing for good,
// written in files as upper-case hexadecimal text without leading zeros. Zero is the null
// handle, which no object has.
class OdDbHandle {
 public:
  constexpr OdDbHandle() = default;
  constexpr OdDbHandle(std::uint64_t value) : value_(value) {}

  // Parses hexadecimal text (either case, surrounding blanks allowed). Returns false and
  // leaves `out` unchanged for empty text, a character that is not a hex digit, or a value
  // of more than 64 bits.
  static bool parse(std::string_view text, OdDbHandle& out) noexcept;
  // Upper-case hex without leading zeros ("0" for the null handle).
  std::string ascii() const;

  constexpr bool isNull() const noexcept { return value_ == 0; }
  constexpr std::uint64_t value() const noexcept { return value_; }
  constexpr operator std::uint64_t() const noexcept { return value_; }

  OdDbHandle& operator++() noexcept {
    ++value_;
    return *this;
  }

 private:
  std::uint64_t value_ = 0;
};

template <>
struct std::hash<OdDbHandle> {
  std::size_t operator()(OdDbHandle h) const noexcept {
    return std::hash<std::uint64_t>()(h.value());
  }
};
