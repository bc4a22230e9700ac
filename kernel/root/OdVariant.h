#pragma once

#include <cstdint>
#include <variant>

#include "OdRxObject.h"
#include "OdSmartPtr.h"
#include "OdString.h"

// A value of one of a fixed set of types, used for property values.
//
// The type codes are part of the interface (callers store and compare them as numbers).
// Unsigned integers are kept in the signed type of their width, bit for bit: setUInt32(x)
// gives type kInt32, and getUInt32 reads the same bits back. The type field has no flag bits,
// so varType() is always below 64.
//
// Typed getters check: asking for another type than the one held throws
// OdError(eNotThatKindOfClass) naming both types; there is no conversion between types.
class OdVariant {
 public:
  enum Type : int {
    kVoid = 0,
    kString = 1,  // OdString
    kBool = 2,
    kInt8 = 3,
    kInt16 = 4,
    kInt32 = 5,
    kInt64 = 6,
    kDouble = 7,
    kAnsiString = 8,  // OdAnsiString, bytes in a code page only the owner knows
    kRxObjectPtr = 9  // OdRxObjectPtr, holding a reference
  };

  OdVariant() = default;
  // Out of line: inlined std::variant destruction of string alternatives draws false
  // "may be used uninitialized" warnings from some compilers in every caller.
  OdVariant(const OdVariant& other);
  OdVariant(OdVariant&& other) noexcept;
  OdVariant& operator=(const OdVariant& other);
  OdVariant& operator=(OdVariant&& other) noexcept;
  ~OdVariant();

  OdVariant(const OdString& value) : value_(value) {}
  OdVariant(const wchar_t* value) : value_(OdString(value)) {}
  // Deleted: a narrow text is either an OdString (Unicode) or an OdAnsiString (bytes in some
  // code page); say which.
  OdVariant(const char*) = delete;
  // Deleted: any other pointer would silently become a bool.
  OdVariant(const void*) = delete;
  OdVariant(bool value) : value_(value) {}
  OdVariant(std::int8_t value) : value_(value) {}
  OdVariant(std::uint8_t value) : value_(static_cast<std::int8_t>(value)) {}
  OdVariant(std::int16_t value) : value_(value) {}
  OdVariant(std::uint16_t value) : value_(static_cast<std::int16_t>(value)) {}
  OdVariant(std::int32_t value) : value_(value) {}
  OdVariant(std::uint32_t value) : value_(static_cast<std::int32_t>(value)) {}
  OdVariant(long value) : value_(static_cast<std::int64_t>(value)) {}
  OdVariant(unsigned long value) : value_(static_cast<std::int64_t>(value)) {}
  OdVariant(long long value) : value_(static_cast<std::int64_t>(value)) {}
  OdVariant(unsigned long long value) : value_(static_cast<std::int64_t>(value)) {}
  OdVariant(double value) : value_(value) {}
  OdVariant(const OdAnsiString& value) : value_(value) {}
  OdVariant(const OdRxObjectPtr& value) : value_(value) {}
  // Adds a reference to `value` (null gives a null object pointer, still of type kRxObjectPtr).
  OdVariant(OdRxObject* value) : value_(OdRxObjectPtr(value)) {}

  Type varType() const noexcept { return static_cast<Type>(value_.index()); }
  bool isVoid() const noexcept { return varType() == kVoid; }
  // "void", "string", "bool", "int8", ... ; "unknown" for a code outside the set.
  static const char* typeName(int type) noexcept;

  const OdString& getString() const { return get<OdString>(kString); }
  bool getBool() const { return get<bool>(kBool); }
  std::int8_t getInt8() const { return get<std::int8_t>(kInt8); }
  std::int16_t getInt16() const { return get<std::int16_t>(kInt16); }
  std::int32_t getInt32() const { return get<std::int32_t>(kInt32); }
  std::int64_t getInt64() const { return get<std::int64_t>(kInt64); }
  std::uint8_t getUInt8() const { return static_cast<std::uint8_t>(getInt8()); }
  std::uint16_t getUInt16() const { return static_cast<std::uint16_t>(getInt16()); }
  std::uint32_t getUInt32() const { return static_cast<std::uint32_t>(getInt32()); }
  std::uint64_t getUInt64() const { return static_cast<std::uint64_t>(getInt64()); }
  // The value of an integer of any width (kInt8 to kInt64) in `out`; false, `out` untouched,
  // for a value of another type. Integers come in the width their source stored them in, so
  // a reader that only wants the number asks this rather than for one width.
  bool getInteger(std::int64_t& out) const noexcept {
    switch (varType()) {
      case kInt8:
        out = std::get<std::int8_t>(value_);
        return true;
      case kInt16:
        out = std::get<std::int16_t>(value_);
        return true;
      case kInt32:
        out = std::get<std::int32_t>(value_);
        return true;
      case kInt64:
        out = std::get<std::int64_t>(value_);
        return true;
      default:
        return false;
    }
  }
  double getDouble() const { return get<double>(kDouble); }
  const OdAnsiString& getAnsiString() const { return get<OdAnsiString>(kAnsiString); }
  const OdRxObjectPtr& getRxObjectPtr() const { return get<OdRxObjectPtr>(kRxObjectPtr); }

  OdVariant& setVoid();
  OdVariant& setString(const OdString& value);
  OdVariant& setBool(bool value);
  OdVariant& setInt8(std::int8_t value);
  OdVariant& setInt16(std::int16_t value);
  OdVariant& setInt32(std::int32_t value);
  OdVariant& setInt64(std::int64_t value);
  OdVariant& setUInt8(std::uint8_t value);
  OdVariant& setUInt16(std::uint16_t value);
  OdVariant& setUInt32(std::uint32_t value);
  OdVariant& setUInt64(std::uint64_t value);
  OdVariant& setDouble(double value);
  OdVariant& setAnsiString(const OdAnsiString& value);
  OdVariant& setRxObjectPtr(const OdRxObjectPtr& value);

 private:
  // The alternatives' order is the type code.
  using Value = std::variant<std::monostate, OdString, bool, std::int8_t, std::int16_t,
                             std::int32_t, std::int64_t, double, OdAnsiString, OdRxObjectPtr>;
  static_assert(std::variant_size_v<Value> == kRxObjectPtr + 1, "one alternative per type code");

  template <class T>
  const T& get(Type wanted) const {
    if (const T* value = std::get_if<T>(&value_)) return *value;
    throwWrongType(wanted);
  }
  template <class T>
  OdVariant& set(T value);
  [[noreturn]] void throwWrongType(Type wanted) const;

  Value value_;
};
