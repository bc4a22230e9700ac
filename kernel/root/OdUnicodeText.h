#pragma once

// Internal to TD_Root: the conversions between the kernel's wide strings (one code point per
// wchar_t), UTF-8 and ICU's UTF-16 strings, done with ICU's macros and classes. Other
// libraries use OdString instead.

#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace odunicode {

// A wide character as a code point: anything that is not one (a surrogate, a negative
// value, a value past U+10FFFF) becomes U+FFFD.
UChar32 toCodePoint(wchar_t ch) noexcept;

// UTF-8 to code points; every ill-formed sequence becomes one U+FFFD, as the Unicode
// standard recommends. Never throws for bad bytes.
std::wstring decodeUtf8(std::string_view utf8);
// Code points to UTF-8; values that are not code points are written as U+FFFD.
std::string encodeUtf8(std::wstring_view text);

// Between wide strings and ICU strings; unpaired surrogates become U+FFFD either way.
// (OdUtf16Text is the cheaper way to hand a wide text to a function that only reads it.)
icu::UnicodeString toIcu(std::wstring_view text);
std::wstring fromIcu(const icu::UnicodeString& text);
std::wstring fromUtf16(const UChar* units, int32_t length);

bool isAscii(std::wstring_view text) noexcept;
// Unicode White_Space, which includes the no-break space and the ideographic space.
bool isWhiteSpace(wchar_t ch) noexcept;

}  // namespace odunicode
