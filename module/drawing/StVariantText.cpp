#include "StVariantText.h"

#include <charconv>
#include <string>

#include "StHostText.h"

namespace st {

OdString exactRealText(double value) {
  char digits[32];
  auto [end, ec] = std::to_chars(digits, digits + sizeof digits, value);
  return ec == std::errc() ? OdString(std::string(digits, end).c_str())
                           : OdString::format(L"%.17g", value);
}

OdString odVariantToString(const OdVariant& value) {
  switch (value.varType()) {
    case OdVariant::kString:
      return value.getString();
    case OdVariant::kBool:
      return StHostText::translate(value.getBool() ? L"Yes" : L"No");
    case OdVariant::kInt8:
      return OdString::format(L"%d", static_cast<int>(value.getInt8()));
    case OdVariant::kInt16:
      return OdString::format(L"%d", static_cast<int>(value.getInt16()));
    case OdVariant::kInt32:
      return OdString::format(L"%d", static_cast<int>(value.getInt32()));
    case OdVariant::kInt64:
      // The whole value: a 64-bit count cut to its low half would show a wrong number.
      return OdString::format(L"%lld", static_cast<long long>(value.getInt64()));
    case OdVariant::kDouble: {
      OdString text;
      if (StHostText::formatReal(value.getDouble(), 2, -1, text) == eOk) return text;
      return OdString::format(L"%f", value.getDouble());
    }
    case OdVariant::kAnsiString:
      // The code page of a narrow value is its owner's secret; UTF-8 is what plug-ins here
      // put in, and anything else still reads, with U+FFFD for the bytes that do not decode.
      return OdString::fromUtf8(value.getAnsiString().str());
    default:
      return OdString();
  }
}

bool compareOdVariant(const OdVariant& a, const OdVariant& b) {
  if (a.varType() != b.varType()) return false;
  switch (a.varType()) {
    case OdVariant::kString:
      return a.getString().iCollate(b.getString()) == 0;
    case OdVariant::kBool:
      return a.getBool() == b.getBool();
    case OdVariant::kInt8:
      return a.getInt8() == b.getInt8();
    case OdVariant::kInt16:
      return a.getInt16() == b.getInt16();
    case OdVariant::kInt32:
      return a.getInt32() == b.getInt32();
    case OdVariant::kInt64:
      return a.getInt64() == b.getInt64();
    case OdVariant::kDouble: {
      // No tolerance: a standard's value is copied, not computed. Unordered values (NaN)
      // count as equal so that a value that cannot be compared is not reported.
      const double x = a.getDouble();
      const double y = b.getDouble();
      return !(x < y) && !(x > y);
    }
    case OdVariant::kAnsiString:
      return a.getAnsiString().iCompare(b.getAnsiString()) == 0;
    case OdVariant::kRxObjectPtr:
      return a.getRxObjectPtr().get() == b.getRxObjectPtr().get();
    default:
      return false;
  }
}

}  // namespace st
