#pragma once

// Internal to TD_Root: an ICU converter for one code page, borrowed from a small per-thread
// cache for the time of one conversion (opening a converter costs more than most of the
// conversions it does). Other libraries use OdString::fromCodePage / toCodePage.

#include <unicode/ucnv.h>

#include <string>
#include <string_view>

class OdCodePageConverter {
 public:
  // Throws OdError(eUnknownCodePage) naming the code page when ICU has no converter of
  // that name (null and the empty name included: ICU would take those as the platform's
  // default, which no caller means).
  explicit OdCodePageConverter(const char* codePage);
  ~OdCodePageConverter();
  OdCodePageConverter(const OdCodePageConverter&) = delete;
  OdCodePageConverter& operator=(const OdCodePageConverter&) = delete;

  // Bytes the code page cannot decode become ICU's substitute (U+FFFD, or U+001A in the
  // single-byte code pages that define it). Throws OdError(eInvalidInput) for input of
  // more than a gigabyte.
  std::wstring decode(std::string_view bytes);
  // Encodes UTF-16 text. Characters the code page lacks become its substitute byte(s);
  // `lossless`, when not null, is set to whether there were none.
  std::string encode(const UChar* text, int32_t length, bool* lossless);

 private:
  std::string name_;
  UConverter* converter_;
};
