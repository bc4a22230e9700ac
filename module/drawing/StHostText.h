#pragma once

#include "OdResult.h"
#include "OdString.h"

namespace st {

// The host services the drawing helpers need, with what they mean when no host runs (a
// plug-in tested on its own, a tool without a front): texts are their own translation,
// reals are written with 4 decimals, paths are split and the user is named by the host
// library's own helpers.
class StHostText {
 public:
  static OdString translate(const OdString& text);
  // As HostServices::formatReal (eOk, or eInvalidInput leaving `text` as it was).
  static OdResult formatReal(double value, int unitMode, int precision, OdString& text);
  static OdString fileNameOf(const OdString& path);
  static OdString loginName();
};

}  // namespace st
