#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck settings [NAME=VALUE]...`: shows the standards settings and changes them in the
// user's configuration. Names: autoFixProperties, showIgnoredProblems (true/false),
// preferredFile (a path, empty for none), autoFixCommands (a comma-separated list of save,
// saveas, import, plot, transmit, or none).
class SettingsCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
