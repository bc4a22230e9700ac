#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck check PATH... [--standard FILE]... [--format F] [-o FILE] [--jobs N] [--fix]
// [--show-ignored]`: checks drawings against their standards through the module and writes
// one report. Exit 0 when no problem remains, 1 when problems remain, 2 when a drawing could
// not be read or checked (the others are still checked).
class CheckCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
