#pragma once

#include "CheckReport.h"
#include "StErrorAccumulatorImpl.h"

namespace stcheck {

// Turns what the module's silent check collected into report problems: the object's handle
// and name, the problem's texts, the values the recommended fix would change (current from
// the problem, standard from the fix), the best candidate fixes with their standards files
// (the recommended one first) and how many more there are, and who ignored it. Values are shown as
// the plug-in formats them, or as the module shows any value; two different values that come out
// alike (the drawing's number of places) are both shown with every digit they need. A fix that
// put a record of another name in the object's place gives the problem that name as renamedTo;
// objectName stays the name the object had.
class ProblemReader {
 public:
  static ReportProblem read(const st::StErrorAccumulatorImpl::Entry& entry, bool fixed);
};

}  // namespace stcheck
