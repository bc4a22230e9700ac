#pragma once

#include "OdString.h"
#include "StService.h"

namespace st {

// Numbers of the module's alerts.
enum StMessageNumber : int {
  kStMsgDuplicateFileName = 0,  // a notice: showMessage
  kStMsgNoPluginChecked = 0,    // an error: showError
};

// The module's modal alerts that belong to no dialog of their own: notices (OK, no icon) and
// errors (OK, stop icon), each looked up by number in its own table, filled at init from the
// string table. The box carries the host's own caption.
class ST_EXPORT StMessage : public StService {
 public:
  // The box's answer (a HostAnswer); 0, showing nothing, for an unknown number or when no
  // host runs.
  virtual int showMessage(int number) = 0;
  virtual int showError(int number) = 0;
};

}  // namespace st
