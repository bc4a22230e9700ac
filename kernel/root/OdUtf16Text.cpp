#include "OdUtf16Text.h"

#include <unicode/utf16.h>

#include <algorithm>
#include <climits>

#include "OdUnicodeText.h"

OdUtf16Text::OdUtf16Text(std::wstring_view text) {
  text = text.substr(0, std::min<std::size_t>(text.size(), INT32_MAX / 2));
  std::size_t units = text.size();
  for (wchar_t ch : text)
    if (ch > 0xFFFF) ++units;  // a supplementary code point (or garbage, written as one unit)
  UChar* out = inline_;
  if (units > kInlineUnits) {
    heap_.resize(units);
    out = heap_.data();
  }
  int32_t length = 0;
  for (wchar_t ch : text) U16_APPEND_UNSAFE(out, length, odunicode::toCodePoint(ch));
  data_ = out;
  length_ = length;
}
