#pragma once

#include <string>

#include "CheckReport.h"

namespace stcheck {

// The report for people: each drawing, its problems grouped by plug-in, the values to change
// and the fixes on offer, then one summary line for the run. With `color` the state of each
// problem is coloured with terminal escapes (red remaining, green fixed, yellow ignored).
// Control characters in the texts of the report (names from a drawing, paths, messages) are
// shown escaped (see terminalSafe), so the only escapes that reach the terminal are the
// report's own colours.
class TextReport {
 public:
  static std::string write(const CheckReport& report, bool color);
};

}  // namespace stcheck
