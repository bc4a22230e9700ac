#include "StcheckCommands.h"

#include "ConvertCommand.h"

namespace stcheck {

void addCommands(CLI::App& app, int& exitCode) {
  ConvertCommand::add(app, exitCode);
}

}  // namespace stcheck
