#pragma once

#include <exception>
#include <string>

#include "OdResult.h"
#include "OdString.h"

class OdRxClass;

// The kernel's exception. Carries a result code and a message that says what failed and
// where (file, line or byte offset, group code) in lower case, without a trailing period.
class OdError : public std::exception {
 public:
  explicit OdError(OdResult code);
  OdError(OdResult code, const OdString& message);
  OdError(OdResult code, std::string utf8Message);
  OdError(OdResult code, const char* utf8Message);  // null or "" as for no message

  OdResult code() const noexcept { return code_; }
  // The message; when none was given, a lower-case description of the code
  // (odResultMessage: "key not found").
  OdString description() const;
  // The message as UTF-8.
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  OdResult code_;
  std::string message_;
};

// Thrown when an object is used as a class it is not (a smart pointer built from an object
// of another class, a table opened as the wrong kind).
class OdError_NotThatKindOfClass : public OdError {
 public:
  OdError_NotThatKindOfClass(const OdRxClass* actual, const OdRxClass* wanted);
};

// Thrown by checked indexing of an array or a result-buffer chain.
class OdError_InvalidIndex : public OdError {
 public:
  OdError_InvalidIndex();
  // Says which index was asked for and how many elements there are.
  OdError_InvalidIndex(long long index, long long size);
};
