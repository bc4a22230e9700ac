#include "OdVariant.h"

#include <string>

#include "OdError.h"

OdVariant::OdVariant(const OdVariant& other) = default;
OdVariant::OdVariant(OdVariant&& other) noexcept = default;
OdVariant& OdVariant::operator=(const OdVariant& other) = default;
OdVariant& OdVariant::operator=(OdVariant&& other) noexcept = default;
OdVariant::~OdVariant() = default;

template <class T>
OdVariant& OdVariant::set(T value) {
  value_ = std::move(value);
  return *this;
}

OdVariant& OdVariant::setVoid() {
  return set(std::monostate());
}
OdVariant& OdVariant::setString(const OdString& value) {
  return set(value);
}
OdVariant& OdVariant::setBool(bool value) {
  return set(value);
}
OdVariant& OdVariant::setInt8(std::int8_t value) {
  return set(value);
}
OdVariant& OdVariant::setInt16(std::int16_t value) {
  return set(value);
}
OdVariant& OdVariant::setInt32(std::int32_t value) {
  return set(value);
}
OdVariant& OdVariant::setInt64(std::int64_t value) {
  return set(value);
}
OdVariant& OdVariant::setUInt8(std::uint8_t value) {
  return set(static_cast<std::int8_t>(value));
}
OdVariant& OdVariant::setUInt16(std::uint16_t value) {
  return set(static_cast<std::int16_t>(value));
}
OdVariant& OdVariant::setUInt32(std::uint32_t value) {
  return set(static_cast<std::int32_t>(value));
}
OdVariant& OdVariant::setUInt64(std::uint64_t value) {
  return set(static_cast<std::int64_t>(value));
}
OdVariant& OdVariant::setDouble(double value) {
  return set(value);
}
OdVariant& OdVariant::setAnsiString(const OdAnsiString& value) {
  return set(value);
}
OdVariant& OdVariant::setRxObjectPtr(const OdRxObjectPtr& value) {
  return set(value);
}

const char* OdVariant::typeName(int type) noexcept {
  switch (type) {
    case kVoid:
      return "void";
    case kString:
      return "string";
    case kBool:
      return "bool";
    case kInt8:
      return "int8";
    case kInt16:
      return "int16";
    case kInt32:
      return "int32";
    case kInt64:
      return "int64";
    case kDouble:
      return "double";
    case kAnsiString:
      return "narrow string";
    case kRxObjectPtr:
      return "object pointer";
    default:
      return "unknown";
  }
}

void OdVariant::throwWrongType(Type wanted) const {
  throw OdError(eNotThatKindOfClass,
                std::string("variant holds ") + typeName(varType()) + ", not " + typeName(wanted));
}
