#include "StHostText.h"

#include <cmath>

#include "HostEntryPoints.h"
#include "HostPaths.h"
#include "HostServices.h"
#include "HostUser.h"

namespace st {

OdString StHostText::translate(const OdString& text) {
  HostServices* host = hostServices();
  return host ? host->translate(text) : text;
}

OdResult StHostText::formatReal(double value, int unitMode, int precision, OdString& text) {
  if (HostServices* host = hostServices())
    return host->formatReal(value, unitMode, precision, text);
  if ((unitMode != 1 && unitMode != 2) || precision < -1 || precision > 8 || !std::isfinite(value))
    return eInvalidInput;
  if (precision == -1) precision = 4;
  text = OdString::format(unitMode == 1 ? "%.*E" : "%.*f", precision, value);
  return eOk;
}

OdString StHostText::fileNameOf(const OdString& path) {
  HostServices* host = hostServices();
  return host ? host->fileNameOf(path) : HostPaths::fileNameOf(path);
}

OdString StHostText::loginName() {
  HostServices* host = hostServices();
  return host ? host->loginName() : HostUser::loginName();
}

}  // namespace st
