#include "StcheckCommands.h"

#include "ConvertCommand.h"
#include "InfoCommand.h"

namespace stcheck {

void addCommands(CLI::App& app, int& exitCode) {
  ConvertCommand::add(app, exitCode);
  InfoCommand::add(app, exitCode);
}

}  // namespace stcheck
