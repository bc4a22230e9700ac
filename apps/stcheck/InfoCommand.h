#pragma once

#include <CLI/CLI.hpp>

namespace stcheck {

// `stcheck info FILE [--format text|json]`: what a drawing holds: its release ($ACADVER),
// form (ASCII or binary), text encoding, the names of its layers, linetypes, text styles,
// dimension styles and blocks in table order, and how many entities (model space and paper
// space, not counting vertices, attributes and SEQEND) and objects (the OBJECTS section) it
// has. The JSON keys are version, binary, encoding, layers, linetypes, textStyles,
// dimStyles, blocks, entities and objects. Exit code 0, or 2 with "stcheck: <message>" on
// standard error when the file cannot be read.
class InfoCommand {
 public:
  static void add(CLI::App& app, int& exitCode);
};

}  // namespace stcheck
