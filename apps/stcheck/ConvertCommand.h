#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck convert IN OUT [--binary | --ascii]`: reads a drawing and writes it again,
// in its own format or converted. An untouched drawing comes out byte for byte the same.
// Exit code 0, or 2 with "stcheck: <message>" on standard error when a file cannot be read
// or written.
class ConvertCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
