#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck plugins [--enable CLASS]... [--disable CLASS]...`: the registered standards
// plug-ins, whether each is in use and what it checks; switches plug-ins in or out of use in
// the user's configuration. Switches apply in command-line order, so the last word on a
// plug-in wins; an unknown plug-in changes nothing. Listing (no switch) never creates or
// writes the configuration file.
class PluginsCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
