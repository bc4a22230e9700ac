#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck settings [NAME=VALUE]...`: shows the standards settings and changes them in the
// user's configuration. Names: autoFixProperties, showIgnoredProblems (true/false, yes/no,
// on/off, 1/0 in any case), preferredFile (a path, empty for none), autoFixCommands (a
// comma-separated list of save, saveas, import, plot, transmit, or none).
//
// Every assignment is checked before any is applied, and they are saved in one write: the
// command changes all it was asked to or nothing. Listing (no assignment) never creates or
// writes the configuration file.
class SettingsCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
