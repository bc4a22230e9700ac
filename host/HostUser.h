#pragma once

#include "OdString.h"

// Who runs the host.
class HostUser {
 public:
  // The login name of the user the process runs as; from the account database, else from
  // LOGNAME or USER; "unknown" when none says.
  static OdString loginName();
};
