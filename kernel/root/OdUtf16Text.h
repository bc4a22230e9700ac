#pragma once

// Internal to TD_Root: a wide text converted to UTF-16 for ICU's C and C++ functions that
// take (pointer, length). Short texts, which most names are, stay on the stack, so
// comparing two names allocates nothing.

#include <unicode/umachine.h>

#include <cstdint>
#include <string_view>
#include <vector>

class OdUtf16Text {
 public:
  // Values that are not code points become U+FFFD. A text longer than ICU's int32_t
  // lengths can address is cut there.
  explicit OdUtf16Text(std::wstring_view text);
  OdUtf16Text(const OdUtf16Text&) = delete;
  OdUtf16Text& operator=(const OdUtf16Text&) = delete;

  const UChar* data() const noexcept { return data_; }
  int32_t length() const noexcept { return length_; }

 private:
  static constexpr std::size_t kInlineUnits = 120;
  UChar inline_[kInlineUnits];
  std::vector<UChar> heap_;
  const UChar* data_ = nullptr;
  int32_t length_ = 0;
};
