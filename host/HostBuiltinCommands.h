#pragma once

class HostCommandRegistry;

// Registers the host's own commands (group "HOSTCORE") in `registry`: OPEN, CLOSE, SETVAR
// and HELP, described at HostApplication, the file commands of HostFileCommands.h and
// HostImportCommand.h and the edit commands of HostEditCommands.h. They take their arguments as
// the next words of the command line and act on the running host application.
void registerHostBuiltins(HostCommandRegistry& registry);
