#include "OdDbTagRange.h"

#include "DxfDocument.h"

namespace {
bool opensGroup(const DxfObject& obj, std::size_t i) {
  if (obj.code(i) != 102) return false;
  std::string_view v = obj.rawValue(i);
  while (!v.empty() && v.front() == ' ') v.remove_prefix(1);
  return !v.empty() && v.front() == '{';
}
}  // namespace

std::size_t odDbSkipGroup(const DxfObject& obj, std::size_t index) {
  if (!opensGroup(obj, index)) return index + 1;
  std::size_t n = obj.size();
  for (std::size_t i = index + 1; i < n; ++i)
    if (obj.code(i) == 102) return i + 1;
  return n;
}

std::pair<std::size_t, std::size_t> OdDbTagRange::bounds() const {
  std::size_t n = obj_.size();
  std::size_t begin = 1;
  bool found = false;
  if (!subclass_.empty()) {
    for (std::size_t i = 1; i < n; i = odDbSkipGroup(obj_, i)) {
      int code = obj_.code(i);
      if (code == 1001) break;
      if (code == 100) {
        std::string_view v = obj_.rawValue(i);
        while (!v.empty() && (v.back() == ' ' || v.back() == '\r')) v.remove_suffix(1);
        while (!v.empty() && v.front() == ' ') v.remove_prefix(1);
        if (v == subclass_) {
          begin = i + 1;
          found = true;
          break;
        }
      }
    }
  }
  std::size_t end = begin;
  for (; end < n; end = odDbSkipGroup(obj_, end)) {
    int code = obj_.code(end);
    if (code == 1001 || (found && code == 100)) break;
  }
  return {begin, end > n ? n : end};
}

std::size_t OdDbTagRange::find(int code) const {
  auto [begin, end] = bounds();
  for (std::size_t i = begin; i < end; i = odDbSkipGroup(obj_, i))
    if (obj_.code(i) == code) return i;
  return DxfObject::npos;
}

OdString OdDbTagRange::text(int code, const OdString& dflt) const {
  std::size_t i = find(code);
  return i == DxfObject::npos ? dflt : obj_.text(i);
}

std::int64_t OdDbTagRange::integer(int code, std::int64_t dflt) const {
  std::size_t i = find(code);
  return i == DxfObject::npos ? dflt : obj_.integer(i);
}

double OdDbTagRange::real(int code, double dflt) const {
  std::size_t i = find(code);
  return i == DxfObject::npos ? dflt : obj_.real(i);
}

std::size_t OdDbTagRange::insertPosition(std::initializer_list<int> after) const {
  auto [begin, end] = bounds();
  std::size_t best = DxfObject::npos;
  int bestRank = -1;
  for (std::size_t i = begin; i < end; i = odDbSkipGroup(obj_, i)) {
    int rank = 0;
    for (int c : after) {
      ++rank;
      if (obj_.code(i) == c && rank >= bestRank) {
        best = i;
        bestRank = rank;
      }
    }
  }
  return best == DxfObject::npos ? end : best + 1;
}

void OdDbTagRange::setText(int code, const OdString& value, std::initializer_list<int> after) {
  std::size_t i = find(code);
  if (i != DxfObject::npos) {
    if (!(obj_.text(i) == value)) obj_.setText(i, value);
    return;
  }
  obj_.insertTag(insertPosition(after), obj_.document().makeText(code, value));
}

void OdDbTagRange::setInteger(int code, std::int64_t value, std::initializer_list<int> after) {
  std::size_t i = find(code);
  if (i != DxfObject::npos) {
    if (obj_.integer(i) != value) obj_.setInteger(i, value);
    return;
  }
  obj_.insertTag(insertPosition(after), obj_.document().makeInteger(code, value));
}

void OdDbTagRange::setReal(int code, double value, std::initializer_list<int> after) {
  std::size_t i = find(code);
  if (i != DxfObject::npos) {
    if (obj_.real(i) != value) obj_.setReal(i, value);
    return;
  }
  obj_.insertTag(insertPosition(after), obj_.document().makeReal(code, value));
}

void OdDbTagRange::remove(int code) {
  for (std::size_t i = find(code); i != DxfObject::npos; i = find(code)) obj_.eraseTag(i);
}
