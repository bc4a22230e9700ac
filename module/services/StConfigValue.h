#pragma once

#include <cstdint>

#include "OdString.h"
#include "OdVariant.h"

namespace st {

// Reading configuration values whatever integer width they were written with (a tree edited
// by hand, or by another release, may hold a flag as a bool or a 64-bit number).
class StConfigValue {
 public:
  // True, with `out` set, for a bool or integer variant; false for any other type.
  static bool toInteger(const OdVariant& value, std::int64_t& out);
  // True, with `out` set, for a text variant.
  static bool toText(const OdVariant& value, OdString& out);
};

}  // namespace st
