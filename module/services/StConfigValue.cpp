#include "StConfigValue.h"

namespace st {

bool StConfigValue::toInteger(const OdVariant& value, std::int64_t& out) {
  switch (value.varType()) {
    case OdVariant::kBool:
      out = value.getBool() ? 1 : 0;
      return true;
    case OdVariant::kInt8:
      out = value.getInt8();
      return true;
    case OdVariant::kInt16:
      out = value.getInt16();
      return true;
    case OdVariant::kInt32:
      out = value.getInt32();
      return true;
    case OdVariant::kInt64:
      out = value.getInt64();
      return true;
    default:
      return false;
  }
}

bool StConfigValue::toText(const OdVariant& value, OdString& out) {
  if (value.varType() != OdVariant::kString) return false;
  out = value.getString();
  return true;
}

}  // namespace st
