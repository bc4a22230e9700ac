#pragma once

#include <string>

#include "CheckReport.h"

namespace stcheck {

// SARIF 2.1.0 for code-scanning dashboards: one run of the tool "stcheck", one rule per
// plug-in, one result per problem located in the drawing file (a logical location names the
// object and its handle). Remaining problems are errors; ignored ones carry an in-source
// suppression naming who ignored them; fixed ones are results of kind "pass". A drawing that
// could not be read is a tool execution notification.
class SarifReport {
 public:
  static std::string write(const CheckReport& report);
};

}  // namespace stcheck
