#include "StUiStandardsList.h"

#include <utility>

#include "StRecordLookup.h"

namespace stui {

namespace {
StUiStandardsList::Entry entryOf(const OdString& path) {
  return {st::getFileName(path, false), path};
}
}  // namespace

StUiStandardsList::StUiStandardsList(const OdArray<OdString>& paths) {
  for (const OdString& path : paths) entries_.push_back(entryOf(path));
}

OdArray<OdString> StUiStandardsList::paths() const {
  OdArray<OdString> out;
  for (const Entry& entry : entries_) out.append(entry.path);
  return out;
}

bool StUiStandardsList::isDuplicate(const OdString& path, int except) const {
  const OdString name = st::getFileName(path, false);
  for (int row = 0; row < size(); ++row)
    if (row != except && at(row).name == name) return true;
  return false;
}

bool StUiStandardsList::add(const OdString& path) {
  if (isDuplicate(path)) return false;
  entries_.push_back(entryOf(path));
  return true;
}

bool StUiStandardsList::replace(int row, const OdString& path) {
  if (!contains(row) || isDuplicate(path, row)) return false;
  entries_[static_cast<std::size_t>(row)] = entryOf(path);
  return true;
}

bool StUiStandardsList::remove(int row) {
  if (!contains(row)) return false;
  entries_.erase(entries_.begin() + row);
  return true;
}

int StUiStandardsList::moveUp(int row) {
  if (!contains(row) || row == 0) return -1;
  std::swap(entries_[static_cast<std::size_t>(row)], entries_[static_cast<std::size_t>(row - 1)]);
  return row - 1;
}

int StUiStandardsList::moveDown(int row) {
  if (!contains(row) || row + 1 >= size()) return -1;
  std::swap(entries_[static_cast<std::size_t>(row)], entries_[static_cast<std::size_t>(row + 1)]);
  return row + 1;
}

StUiStandardsList::Buttons StUiStandardsList::buttonsFor(int row) const {
  if (!contains(row)) return {};
  return {true, row > 0, row + 1 < size()};
}

}  // namespace stui
