#include "StConfigValue.h"

namespace st {

bool StConfigValue::toInteger(const OdVariant& value, std::int64_t& out) {
  if (value.varType() == OdVariant::kBool) {
    out = value.getBool() ? 1 : 0;
    return true;
  }
  return value.getInteger(out);
}

bool StConfigValue::toText(const OdVariant& value, OdString& out) {
  if (value.varType() != OdVariant::kString) return false;
  out = value.getString();
  return true;
}

}  // namespace st
