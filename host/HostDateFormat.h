#pragma once

#include <chrono>

#include "OdString.h"

// Dates as the user's locale writes them, for what the host and its modules show about files.
class HostDateFormat {
 public:
  // `when` written with a date picture such as "d MMMM yyyy" (day, month name, year) in the
  // process's default locale and time zone; empty when the picture or the time cannot be
  // formatted.
  static OdString format(std::chrono::system_clock::time_point when, const OdString& picture);
};
