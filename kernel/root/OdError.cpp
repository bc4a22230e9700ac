#include "OdError.h"

#include "OdRxClass.h"

OdError::OdError(OdResult code) : code_(code), message_(odResultMessage(code)) {}

OdError::OdError(OdResult code, const OdString& message) : OdError(code, message.toUtf8()) {}

OdError::OdError(OdResult code, std::string utf8Message)
    : code_(code), message_(utf8Message.empty() ? odResultMessage(code) : std::move(utf8Message)) {}

OdError::OdError(OdResult code, const char* utf8Message)
    : OdError(code, std::string(utf8Message ? utf8Message : "")) {}

OdString OdError::description() const {
  return OdString::fromUtf8(message_);
}

namespace {
std::string className(const OdRxClass* cls) {
  return cls ? cls->name().toUtf8() : "(null)";
}
}  // namespace

OdError_NotThatKindOfClass::OdError_NotThatKindOfClass(const OdRxClass* actual,
                                                       const OdRxClass* wanted)
    : OdError(eNotThatKindOfClass,
              "an object of class " + className(actual) + " is not a " + className(wanted)) {}

OdError_InvalidIndex::OdError_InvalidIndex() : OdError(eInvalidIndex, "index out of range") {}

OdError_InvalidIndex::OdError_InvalidIndex(long long index, long long size)
    : OdError(eInvalidIndex, "index " + std::to_string(index) + " out of range (size " +
                                 std::to_string(size) + ")") {}
