#include "OdString.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <vector>

#include "OdCodePageConverter.h"
#include "OdCollatorCache.h"
#include "OdError.h"
#include "OdUnicodeText.h"
#include "OdUtf16Text.h"

OdString::OdString(const wchar_t* text) : text_(text ? text : L"") {}

OdString::OdString(const wchar_t* text, int length) {
  if (!text) return;
  if (length < 0)
    text_ = text;
  else
    text_.assign(text, static_cast<std::size_t>(length));
}

OdString::OdString(const char* utf8) {
  if (utf8) text_ = odunicode::decodeUtf8(utf8);
}

OdString::OdString(const std::string& utf8) : text_(odunicode::decodeUtf8(utf8)) {}

OdString::OdString(wchar_t ch, int repeat) {
  if (repeat > 0) text_.assign(static_cast<std::size_t>(repeat), ch);
}

OdString OdString::fromUtf8(std::string_view utf8) {
  return OdString(odunicode::decodeUtf8(utf8));
}

std::string OdString::toUtf8() const {
  return odunicode::encodeUtf8(text_);
}

OdString OdString::fromCodePage(std::string_view bytes, const char* codePage) {
  OdCodePageConverter converter(codePage);
  return OdString(converter.decode(bytes));
}

std::string OdString::toCodePage(const char* codePage, bool* lossless) const {
  OdCodePageConverter converter(codePage);
  OdUtf16Text units(text_);
  return converter.encode(units.data(), units.length(), lossless);
}

namespace {

// Formatting failed for a reason other than space: an argument the C library cannot
// convert (a narrow %s that is not valid in the current C locale) or a bad format.
[[noreturn]] void throwFormatError(const std::string& format) {
  throw OdError(eInvalidInput, "cannot format text with format \"" + format +
                                   "\": an argument is not valid text or the format is wrong");
}

// Past this many characters a result is not a text anybody means to build.
constexpr std::size_t kMaxFormattedLength = std::size_t(1) << 26;

}  // namespace

OdString OdString::format(const wchar_t* fmt, ...) {
  if (!fmt) return OdString();
  std::vector<wchar_t> buffer(256);
  for (;;) {
    va_list args;
    va_start(args, fmt);
    errno = 0;
    int written = std::vswprintf(buffer.data(), buffer.size(), fmt, args);
    int error = errno;
    va_end(args);
    if (written >= 0)
      return OdString(std::wstring(buffer.data(), static_cast<std::size_t>(written)));
    // vswprintf reports "too small" and "cannot convert" alike with -1; only the
    // latter sets errno, and growing would never cure it.
    if (error == EILSEQ || error == EINVAL || buffer.size() >= kMaxFormattedLength)
      throwFormatError(OdString(fmt).toUtf8());
    buffer.resize(buffer.size() * 4);
  }
}

OdString OdString::format(const char* fmt, ...) {
  if (!fmt) return OdString();
  va_list args;
  va_start(args, fmt);
  va_list again;
  va_copy(again, args);
  char small[512];
  int needed = std::vsnprintf(small, sizeof small, fmt, args);
  va_end(args);
  if (needed < 0) {
    va_end(again);
    throwFormatError(fmt);
  }
  if (static_cast<std::size_t>(needed) < sizeof small) {
    va_end(again);
    return fromUtf8(std::string_view(small, static_cast<std::size_t>(needed)));
  }
  std::string big(static_cast<std::size_t>(needed) + 1, '\0');
  std::vsnprintf(big.data(), big.size(), fmt, again);
  va_end(again);
  big.resize(static_cast<std::size_t>(needed));
  return fromUtf8(big);
}

wchar_t OdString::getAt(int index) const {
  if (index < 0 || index >= getLength()) throw OdError_InvalidIndex(index, getLength());
  return text_[static_cast<std::size_t>(index)];
}

int OdString::compare(const OdString& other) const noexcept {
  // wchar_t is signed here; compare as code points so that U+10000 sorts after U+FFFF
  // and a stray negative value (never a code point) sorts last.
  const std::size_t n = std::min(text_.size(), other.text_.size());
  for (std::size_t i = 0; i < n; ++i) {
    auto a = static_cast<std::uint32_t>(text_[i]);
    auto b = static_cast<std::uint32_t>(other.text_[i]);
    if (a != b) return a < b ? -1 : 1;
  }
  if (text_.size() == other.text_.size()) return 0;
  return text_.size() < other.text_.size() ? -1 : 1;
}

int OdString::iCompare(const OdString& other) const {
  // Names in drawings are mostly ASCII, or start so ("A-WALL-Слой"). Case folding maps each
  // character on its own, ASCII to ASCII, and never to nothing, so an ASCII prefix can be
  // compared with A-Z folded to a-z and only the rest needs ICU.
  const std::size_t n = std::min(text_.size(), other.text_.size());
  std::size_t i = 0;
  for (; i < n; ++i) {
    wchar_t a = text_[i], b = other.text_[i];
    if (a < 0 || a >= 0x80 || b < 0 || b >= 0x80) break;
    if (a >= L'A' && a <= L'Z') a = static_cast<wchar_t>(a - L'A' + L'a');
    if (b >= L'A' && b <= L'Z') b = static_cast<wchar_t>(b - L'A' + L'a');
    if (a != b) return a < b ? -1 : 1;
  }
  if (i == n) {
    if (text_.size() == other.text_.size()) return 0;
    return text_.size() < other.text_.size() ? -1 : 1;
  }
  OdUtf16Text a(std::wstring_view(text_).substr(i)), b(std::wstring_view(other.text_).substr(i));
  UErrorCode status = U_ZERO_ERROR;
  int result = u_strCaseCompare(a.data(), a.length(), b.data(), b.length(),
                                U_FOLD_CASE_DEFAULT | U_COMPARE_CODE_POINT_ORDER, &status);
  return result < 0 ? -1 : (result > 0 ? 1 : 0);
}

int OdString::collate(const OdString& other) const {
  return OdCollatorCache::compare(text_, other.text_, /*ignoreCase=*/false);
}

int OdString::iCollate(const OdString& other) const {
  return OdCollatorCache::compare(text_, other.text_, /*ignoreCase=*/true);
}

void OdString::setCollationLocale(const char* localeName) {
  OdCollatorCache::setLocale(localeName ? localeName : "");
}

std::string OdString::collationLocale() {
  return OdCollatorCache::localeName();
}

int OdString::find(const OdString& what, int start) const noexcept {
  if (start < 0) start = 0;
  if (start > getLength()) return -1;
  std::size_t pos = text_.find(what.text_, static_cast<std::size_t>(start));
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int OdString::find(wchar_t ch, int start) const noexcept {
  if (start < 0) start = 0;
  if (start >= getLength()) return -1;
  std::size_t pos = text_.find(ch, static_cast<std::size_t>(start));
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

int OdString::reverseFind(wchar_t ch) const noexcept {
  std::size_t pos = text_.rfind(ch);
  return pos == std::wstring::npos ? -1 : static_cast<int>(pos);
}

OdString OdString::mid(int start, int count) const {
  const int length = getLength();
  if (start < 0) start = 0;
  if (start >= length || count == 0) return OdString();
  if (count < 0 || count > length - start) count = length - start;
  return OdString(text_.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count)));
}

OdString OdString::left(int count) const {
  if (count <= 0) return OdString();
  return mid(0, count);
}

OdString OdString::right(int count) const {
  if (count <= 0) return OdString();
  const int length = getLength();
  if (count >= length) return *this;
  return mid(length - count);
}

OdString& OdString::makeUpper() {
  if (odunicode::isAscii(text_)) {
    for (wchar_t& c : text_)
      if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
    return *this;
  }
  // The root locale, not the user's: a layer name must upper-case the same everywhere
  // (a Turkish user's "i" would otherwise become a dotted capital).
  icu::UnicodeString text = odunicode::toIcu(text_);
  text.toUpper(icu::Locale::getRoot());
  text_ = odunicode::fromIcu(text);
  return *this;
}

OdString& OdString::makeLower() {
  if (odunicode::isAscii(text_)) {
    for (wchar_t& c : text_)
      if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
    return *this;
  }
  icu::UnicodeString text = odunicode::toIcu(text_);
  text.toLower(icu::Locale::getRoot());
  text_ = odunicode::fromIcu(text);
  return *this;
}

OdString& OdString::trimLeft() {
  std::size_t first = 0;
  while (first < text_.size() && odunicode::isWhiteSpace(text_[first])) ++first;
  text_.erase(0, first);
  return *this;
}

OdString& OdString::trimRight() {
  std::size_t end = text_.size();
  while (end > 0 && odunicode::isWhiteSpace(text_[end - 1])) --end;
  text_.erase(end);
  return *this;
}

int OdString::replace(const OdString& what, const OdString& with) {
  if (what.text_.empty()) return 0;
  int count = 0;
  std::wstring result;
  std::size_t from = 0;
  for (std::size_t pos; (pos = text_.find(what.text_, from)) != std::wstring::npos;) {
    result.append(text_, from, pos - from);
    result += with.text_;
    from = pos + what.text_.size();
    ++count;
  }
  if (count == 0) return 0;
  result.append(text_, from, std::wstring::npos);
  text_.swap(result);
  return count;
}

OdString& OdString::deleteChars(int index, int count) {
  const int length = getLength();
  if (index < 0) index = 0;
  if (index >= length || count <= 0) return *this;
  if (count > length - index) count = length - index;
  text_.erase(static_cast<std::size_t>(index), static_cast<std::size_t>(count));
  return *this;
}

OdString& OdString::insert(int index, const OdString& text) {
  if (index < 0) index = 0;
  if (index > getLength()) index = getLength();
  text_.insert(static_cast<std::size_t>(index), text.text_);
  return *this;
}

int OdAnsiString::iCompare(const OdAnsiString& other) const noexcept {
  const std::size_t n = std::min(text_.size(), other.text_.size());
  for (std::size_t i = 0; i < n; ++i) {
    auto a = static_cast<unsigned char>(text_[i]);
    auto b = static_cast<unsigned char>(other.text_[i]);
    if (a >= 'A' && a <= 'Z') a = static_cast<unsigned char>(a - 'A' + 'a');
    if (b >= 'A' && b <= 'Z') b = static_cast<unsigned char>(b - 'A' + 'a');
    if (a != b) return a < b ? -1 : 1;
  }
  if (text_.size() == other.text_.size()) return 0;
  return text_.size() < other.text_.size() ? -1 : 1;
}
