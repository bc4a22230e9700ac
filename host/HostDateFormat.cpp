#include "HostDateFormat.h"

#include <memory>

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/unistr.h>

OdString HostDateFormat::format(std::chrono::system_clock::time_point when,
                                const OdString& picture) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat formatter(icu::UnicodeString::fromUTF8(picture.toUtf8()),
                                  icu::Locale::getDefault(), status);
  if (U_FAILURE(status)) return OdString();
  auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(when.time_since_epoch());
  icu::UnicodeString text;
  formatter.format(static_cast<UDate>(millis.count()), text, status);
  if (U_FAILURE(status)) return OdString();
  std::string utf8;
  text.toUTF8String(utf8);
  return OdString::fromUtf8(utf8);
}
