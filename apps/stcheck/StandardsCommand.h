#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck standards DRAWING [--add FILE]... [--remove FILE]... [--clear]`: lists, and edits,
// the standards files associated with a drawing (stored in the drawing). A standards file
// given by a relative path is stored relative to the drawing's folder, so the association
// keeps working when the project folder moves; `check` finds such paths from there.
class StandardsCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
