#include "CheckReport.h"

#include <algorithm>

namespace stcheck {

std::size_t DrawingReport::remaining() const {
  return static_cast<std::size_t>(std::count_if(
      problems.begin(), problems.end(), [](const ReportProblem& p) { return p.remains(); }));
}

int CheckReport::exitCode() const {
  bool problems = false;
  for (const DrawingReport& d : drawings) {
    if (d.failed() || !d.notFixed.empty()) return 2;
    if (d.remaining() > 0) problems = true;
  }
  return problems ? 1 : 0;
}

}  // namespace stcheck
