#include "EntityTags.h"

#include <cstdio>

EntityTags::EntityTags(const char* type, const OdString& layer, const OdString& linetype)
    : type_(type) {
  add(0, type);
  add(100, "AcDbEntity");
  add(8, layer);
  if (!linetype.isEmpty()) add(6, linetype);
}

EntityTags& EntityTags::add(int code, const char* value) {
  text_ += std::to_string(code) + "\n" + value + "\n";
  return *this;
}

EntityTags& EntityTags::add(int code, const OdString& value) {
  return add(code, value.toUtf8().c_str());
}

EntityTags& EntityTags::add(int code, int value) {
  return add(code, std::to_string(value).c_str());
}

EntityTags& EntityTags::add(int code, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.6f", value);
  std::string number = buffer;
  // Trailing zeros go, one decimal stays: "1200.0", "0.65", never "-0.0".
  while (number.back() == '0' && number[number.size() - 2] != '.') number.pop_back();
  if (number == "-0.0") number = "0.0";
  return add(code, number.c_str());
}

EntityTags& EntityTags::point(int code, double x, double y, double z) {
  return add(code, x).add(code + 10, y).add(code + 20, z);
}

EntityTags& EntityTags::flatPoint(int code, double x, double y) {
  return add(code, x).add(code + 10, y);
}
