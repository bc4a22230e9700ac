#pragma once

#include <string>
#include <string_view>

#include "OdString.h"

// Converts the bytes of a DXF string value to Unicode and back, the way the file's version
// and code page say:
//  - from R2007 (AC1021) strings are UTF-8;
//  - before that they are in the $DWGCODEPAGE code page (windows-1252 when the variable is
//    missing or names no code page we know), and characters outside it are written as
//    \U+XXXX; \M+nXXXX names a double-byte character of an East Asian code page (n: 1
//    Japanese 932, 2 Traditional Chinese 950, 3 Korean 949, 4 Johab 1361, 5 Simplified
//    Chinese 936).
// \U+XXXX is understood in every version, as files that were upgraded keep such escapes.
// Never throws for bad bytes: whatever cannot be decoded becomes U+FFFD.
class DxfTextCodec {
 public:
  // `acadVersion` is $ACADVER ("AC1015", may be empty); `dwgCodePage` is $DWGCODEPAGE
  // ("ANSI_1252", "dos932", may be empty).
  DxfTextCodec(std::string_view acadVersion, std::string_view dwgCodePage);

  bool isUtf8() const noexcept { return utf8_; }
  // The code page as ICU names it ("windows-1252", "UTF-8").
  const std::string& codePage() const noexcept { return codePage_; }

  OdString decode(std::string_view bytes) const;
  // Encodes for this file. Before R2007 characters the code page lacks become \U+XXXX
  // (a pair of escapes for characters beyond U+FFFF).
  std::string encode(const OdString& text) const;

 private:
  bool utf8_ = false;
  std::string codePage_;
};
