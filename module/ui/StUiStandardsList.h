#pragma once

#include <vector>

#include "OdArray.h"
#include "OdString.h"

namespace stui {

// The ordered list of standards files the Standards page edits, without any widget: the
// entries in the order they are saved, the duplicate test and the moves, and which of the
// page's buttons a selection enables. Rows are 0-based; an operation given a row that is not
// in the list changes nothing and answers false (or -1).
class StUiStandardsList {
 public:
  struct Entry {
    OdString name;  // the file name without its extension, as the list shows it
    OdString path;  // the full path, as written into the drawing
  };
  // Which buttons a selection enables.
  struct Buttons {
    bool remove = false;
    bool up = false;
    bool down = false;
  };

  StUiStandardsList() = default;
  explicit StUiStandardsList(const OdArray<OdString>& paths);

  int size() const { return static_cast<int>(entries_.size()); }
  bool empty() const { return entries_.empty(); }
  // The entry of `row`; the row must be in the list.
  const Entry& at(int row) const { return entries_.at(static_cast<std::size_t>(row)); }
  // The paths in row order: what is written into the drawing.
  OdArray<OdString> paths() const;

  // True when a file of the same name (without extension, compared with case respected, the
  // folder disregarded) is listed, other than in row `except`.
  bool isDuplicate(const OdString& path, int except = -1) const;
  // Appends `path`; false, the list unchanged, for a duplicate.
  bool add(const OdString& path);
  // Puts `path` in place of the file of `row`, which keeps its position; false for a row not
  // in the list or a name another row has.
  bool replace(int row, const OdString& path);
  bool remove(int row);
  // Swap `row` with the row above (below); the row the entry moved to, or -1 when it cannot
  // move.
  int moveUp(int row);
  int moveDown(int row);

  // The buttons a selection of `row` (-1: none) enables: "-" whenever a row is selected, "Up"
  // below the first row, "Down" above the last.
  Buttons buttonsFor(int row) const;

 private:
  bool contains(int row) const { return row >= 0 && row < size(); }
  std::vector<Entry> entries_;
};

}  // namespace stui
