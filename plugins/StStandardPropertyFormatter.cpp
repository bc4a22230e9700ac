#include "StStandardPropertyFormatter.h"

#include <cmath>
#include <cstdint>

#include "OdDb.h"
#include "StLayerProperties.h"
#include "StVariantText.h"

namespace st {

namespace {

bool isOneOf(const OdString& name, std::initializer_list<const wchar_t*> names) {
  for (const wchar_t* candidate : names)
    if (name == candidate) return true;
  return false;
}

}  // namespace

OdString StStandardPropertyFormatter::colorText(int index) {
  static const wchar_t* const kNames[] = {L"red",  L"yellow",  L"green", L"cyan",
                                          L"blue", L"magenta", L"white"};
  if (index == OdDb::kColorByBlock) return L"ByBlock";
  if (index == OdDb::kColorByLayer) return L"ByLayer";
  if (index >= 1 && index <= 7) return kNames[index - 1];
  return OdString::format(L"Color %d", index);
}

OdString StStandardPropertyFormatter::format(const OdString& name, const OdVariant& value) {
  if (value.isVoid()) return L"(not set)";
  std::int64_t number = 0;
  if (isOneOf(name, {L"Color", L"DIMCLRD", L"DIMCLRE", L"DIMCLRT"}) && value.getInteger(number)) {
    // A true colour is the only colour stored in 32 bits: 0x00RRGGBB.
    if (value.varType() == OdVariant::kInt32)
      return OdString::format(L"%d,%d,%d", static_cast<int>((number >> 16) & 0xFF),
                              static_cast<int>((number >> 8) & 0xFF),
                              static_cast<int>(number & 0xFF));
    return colorText(static_cast<int>(number));
  }
  if (isOneOf(name, {L"Lineweight", L"DIMLWD", L"DIMLWE"}) && value.getInteger(number))
    return lineWeightToString(static_cast<OdDb::LineWeight>(static_cast<std::int32_t>(number)));
  if (name == L"Transparency" && value.getInteger(number)) {
    if ((number & 0xFFFFFFFF) == 0) return L"ByLayer";
    const int alpha = static_cast<int>(number & 0xFF);
    return OdString::format(L"%d%%", static_cast<int>(std::lround((255 - alpha) * 100.0 / 255)));
  }
  if (name == L"Oblique angle" && value.varType() == OdVariant::kDouble)
    return OdString::format(L"%.4g\u00B0", value.getDouble() * 180.0 / M_PI);
  if (name == L"Text flags" && value.getInteger(number)) {
    OdString text;
    if (number & 2) text += L"Backwards";
    if (number & 4) text += text.isEmpty() ? L"Upside down" : L", upside down";
    return text.isEmpty() ? OdString(L"None") : text;
  }
  return odVariantToString(value);
}

OdString StStandardPropertyFormatter::formatExact(const OdString& name, const OdVariant& value) {
  if (name == L"Oblique angle" && value.varType() == OdVariant::kDouble)
    return exactRealText(value.getDouble() * 180.0 / M_PI) + L"\u00B0";
  return StPropertyFormatter::formatExact(name, value);
}

}  // namespace st
