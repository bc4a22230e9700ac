#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// Adds every subcommand to `app`. A subcommand's callback stores its process exit code in
// `exitCode` (0 success, 1 problems remain, 2 a file could not be read or written) and
// reports its own errors on standard error.
void addCommands(CLI::App& app, int& exitCode);

}  // namespace stcheck
