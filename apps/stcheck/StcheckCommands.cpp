#include "StcheckCommands.h"

namespace stcheck {

void addCommands(CLI::App& app, int& exitCode) { (void)app; (void)exitCode; }

}  // namespace stcheck
