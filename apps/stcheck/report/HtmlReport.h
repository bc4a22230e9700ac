#pragma once

#include <string>

#include "CheckReport.h"

namespace stcheck {

// A self-contained HTML page (no scripts, no external files) for sending around: a summary
// table per drawing and plug-in, then each drawing's problems with the values to change and
// the fixes on offer. Elements carry ids and data attributes (summary totals in
// #summary [data-remaining] and so on) so that tools can read the page back.
class HtmlReport {
 public:
  static std::string write(const CheckReport& report);
};

}  // namespace stcheck
