#pragma once

// Internal to TD_Db: reading and writing the tags of one subclass of an object.
//
// Objects of release 13 and later group their tags by subclass ("100 AcDbEntity",
// "100 AcDbLayerTableRecord"); older files have no markers. A range covers the tags after the
// marker `subclass` up to the next marker or the extended data (1001), or, when the object
// has no such marker, every tag after the type up to the extended data. Application groups
// (102 {...}) inside are skipped. The range is found again on each call, so it follows
// changes made in between.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "DxfObject.h"
#include "OdString.h"

class OdDbTagRange {
 public:
  OdDbTagRange(DxfObject& obj, std::string_view subclass) : obj_(obj), subclass_(subclass) {}

  // Index of the first tag with `code` in the range, or DxfObject::npos.
  std::size_t find(int code) const;
  bool has(int code) const { return find(code) != DxfObject::npos; }

  // The value of the first tag with `code`, or `dflt` when there is none.
  OdString text(int code, const OdString& dflt = OdString()) const;
  std::int64_t integer(int code, std::int64_t dflt) const;
  double real(int code, double dflt) const;

  // Sets the first tag with `code`, or inserts one: after the last tag of the range whose
  // code is one of `after` (in that list's order of preference, last listed first), else at
  // the end of the range.
  void setText(int code, const OdString& value, std::initializer_list<int> after = {});
  void setInteger(int code, std::int64_t value, std::initializer_list<int> after = {});
  void setReal(int code, double value, std::initializer_list<int> after = {});
  // Removes every tag with `code` from the range.
  void remove(int code);

  // [begin, end) of the range.
  std::pair<std::size_t, std::size_t> bounds() const;

 private:
  std::size_t insertPosition(std::initializer_list<int> after) const;

  DxfObject& obj_;
  std::string subclass_;
};

// Index just past the application group (102 {...}) that starts at `index`, or `index + 1`
// when the tag there does not open one.
std::size_t odDbSkipGroup(const DxfObject& obj, std::size_t index);
