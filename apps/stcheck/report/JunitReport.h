#pragma once

#include <string>

#include "CheckReport.h"

namespace stcheck {

// JUnit XML for CI dashboards: one test suite per drawing; in it one test case per problem
// (a failure while it remains, skipped when ignored, passed when fixed) and one passing test
// case per plug-in that found nothing. A drawing that could not be read is one test case
// with an error.
class JunitReport {
 public:
  static std::string write(const CheckReport& report);
};

}  // namespace stcheck
