#include "StcheckCommands.h"

#include "CheckCommand.h"
#include "ConvertCommand.h"
#include "InfoCommand.h"
#include "PluginsCommand.h"
#include "SettingsCommand.h"
#include "StandardsCommand.h"

namespace stcheck {

void addCommands(CLI::App& app, int& exitCode) {
  CheckCommand::add(app, exitCode);
  ConvertCommand::add(app, exitCode);
  InfoCommand::add(app, exitCode);
  PluginsCommand::add(app, exitCode);
  SettingsCommand::add(app, exitCode);
  StandardsCommand::add(app, exitCode);
}

}  // namespace stcheck
