#include "OdUnicodeText.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <climits>
#include <cstdint>

namespace odunicode {

UChar32 toCodePoint(wchar_t ch) noexcept {
  auto c = static_cast<std::int64_t>(ch);
  if (c < 0 || c > 0x10FFFF || U_IS_SURROGATE(c)) return 0xFFFD;
  return static_cast<UChar32>(c);
}

namespace {

// Decodes one piece that ICU's int32_t indexes can address.
void decodeUtf8Piece(const std::uint8_t* bytes, int32_t length, std::wstring& out) {
  for (int32_t i = 0; i < length;) {
    if (bytes[i] < 0x80) {
      out += static_cast<wchar_t>(bytes[i++]);
      continue;
    }
    UChar32 c;
    U8_NEXT_OR_FFFD(bytes, i, length, c);
    out += static_cast<wchar_t>(c);
  }
}

}  // namespace

std::wstring decodeUtf8(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
  std::size_t remaining = utf8.size();
  // Pieces end before a lead byte, so no sequence is cut in two (a piece of more than a
  // gigabyte only happens with texts nobody writes, but must not misread).
  constexpr std::size_t kPiece = std::size_t(1) << 30;
  while (remaining > 0) {
    std::size_t length = std::min(remaining, kPiece);
    if (length < remaining) {
      std::size_t back = 0;
      while (back < 3 && U8_IS_TRAIL(bytes[length - back])) ++back;
      length -= back;
    }
    decodeUtf8Piece(bytes, static_cast<int32_t>(length), out);
    bytes += length;
    remaining -= length;
  }
  return out;
}

std::string encodeUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (wchar_t ch : text) {
    if (ch >= 0 && ch < 0x80) {
      out += static_cast<char>(ch);
      continue;
    }
    std::uint8_t buffer[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, toCodePoint(ch));
    out.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length));
  }
  return out;
}

icu::UnicodeString toIcu(std::wstring_view text) {
  // ICU strings are indexed by int32_t; a longer text is cut rather than overrun.
  std::size_t length = std::min<std::size_t>(text.size(), INT32_MAX / 2);
  icu::UnicodeString out(static_cast<int32_t>(length), 0, 0);  // capacity only
  for (std::size_t i = 0; i < length; ++i) out.append(toCodePoint(text[i]));
  return out;
}

std::wstring fromIcu(const icu::UnicodeString& text) {
  return fromUtf16(text.getBuffer(), text.length());
}

std::wstring fromUtf16(const UChar* units, int32_t length) {
  std::wstring out;
  out.reserve(static_cast<std::size_t>(length));
  for (int32_t i = 0; i < length;) {
    UChar32 c;
    U16_NEXT(units, i, length, c);
    out += static_cast<wchar_t>(U_IS_SURROGATE(c) ? 0xFFFD : c);
  }
  return out;
}

bool isAscii(std::wstring_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= 0 && c < 0x80; });
}

bool isWhiteSpace(wchar_t ch) noexcept {
  return u_isUWhiteSpace(toCodePoint(ch));
}

}  // namespace odunicode
