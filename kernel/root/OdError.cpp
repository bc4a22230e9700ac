#include "OdError.h"

#include "OdRxClass.h"

OdError::OdError(OdResult code) : code_(code), message_(odResultName(code)) {}

OdError::OdError(OdResult code, const OdString& message) : code_(code), message_(message.toUtf8()) {}

OdError::OdError(OdResult code, std::string utf8Message)
    : code_(code), message_(utf8Message.empty() ? odResultName(code) : std::move(utf8Message)) {}

OdString OdError::description() const { return OdString::fromUtf8(message_); }

namespace {
std::string className(const OdRxClass* cls) { return cls ? cls->name().toUtf8() : "(null)"; }
}  // namespace

OdError_NotThatKindOfClass::OdError_NotThatKindOfClass(const OdRxClass* actual,
                                                       const OdRxClass* wanted)
    : OdError(eNotThatKindOfClass,
              "an object of class " + className(actual) + " is not a " + className(wanted)) {}

OdError_InvalidIndex::OdError_InvalidIndex() : OdError(eInvalidIndex, "index out of range") {}
