#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "OdDbHandle.h"
#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "OdString.h"

class DxfDocument;
class DxfObject;
struct DxfTag;
class OdResBuf;
using OdResBufPtr = OdSmartPtr<OdResBuf>;

// A result buffer: one typed value under a DXF group code (its "type"), chained to the next
// buffer. Chains carry the data of xrecords and the extended data of objects.
//
// The value's kind follows from the group code: text (1-9, 100-102, 300-309, 410-419,
// 1000-1003...), a handle (320-369, 390-399, 480-481, 1005), a binary chunk (310-319, 1004),
// a double (10-59, 110-149, 210-239, 1010-1059), an integer or a bool (the rest). Numeric
// getters convert between integer and double kinds; asking a text buffer for a number or a
// number buffer for text throws OdError(eInvalidInput) naming the type.
//
// Buffers are reference counted; a chain holds its next buffer, so holding the first holds
// the chain.
class OdResBuf : public OdRxObject {
  ODRX_DECLARE_MEMBERS(OdResBuf);

  static OdResBufPtr newRb(int restype = 0);
  static OdResBufPtr newRb(int restype, const OdString& value);
  static OdResBufPtr newRb(int restype, const wchar_t* value);
  static OdResBufPtr newRb(int restype, const char* utf8);
  static OdResBufPtr newRb(int restype, int value);
  static OdResBufPtr newRb(int restype, std::int64_t value);
  static OdResBufPtr newRb(int restype, double value);
  static OdResBufPtr newRb(int restype, bool value);
  static OdResBufPtr newRb(int restype, const OdDbHandle& value);

  int restype() const noexcept { return restype_; }
  void setRestype(int restype) noexcept { restype_ = restype; }

  // The next buffer of the chain, or null.
  OdResBufPtr next() const { return next_; }
  // Links `next` after this buffer (dropping the rest of the old chain) and returns it.
  OdResBuf* setNext(OdResBuf* next);
  // The last buffer of the chain that starts here.
  OdResBuf* last();
  // The buffer `index` steps down the chain; throws OdError_InvalidIndex past its end.
  OdResBuf* at(int index);

  const OdString& getString() const;
  void setString(const OdString& value);
  std::int16_t getInt16() const { return static_cast<std::int16_t>(getInt64()); }
  std::int32_t getInt32() const { return static_cast<std::int32_t>(getInt64()); }
  std::int64_t getInt64() const;
  bool getBool() const { return getInt64() != 0; }
  double getDouble() const;
  void setInt16(std::int16_t value) { setInt64(value); }
  void setInt32(std::int32_t value) { setInt64(value); }
  void setInt64(std::int64_t value);
  void setBool(bool value) { setInt64(value ? 1 : 0); }
  void setDouble(double value);
  OdDbHandle getHandle() const;
  void setHandle(const OdDbHandle& value);
  // The object the handle names in `db`, or a null id.
  OdDbObjectId getObjectId(OdDbDatabase* db) const;
  void setObjectId(const OdDbObjectId& id) { setHandle(id.getHandle()); }
  const std::string& getBinaryChunk() const;
  void setBinaryChunk(std::string bytes);

  // Internal to TD_Db: a chain from tags [begin, end) of an object (null when empty), and
  // the tags of a chain in `doc`.
  static OdResBufPtr fromTags(const DxfObject& obj, std::size_t begin, std::size_t end);
  static std::vector<DxfTag> toTags(DxfDocument& doc, const OdResBuf* chain);

 protected:
  OdResBuf() = default;

 private:
  [[noreturn]] void wrongKind(const char* wanted) const;

  int restype_ = 0;
  std::variant<std::monostate, OdString, std::int64_t, double, OdDbHandle, std::string> value_;
  OdResBufPtr next_;
};
