// stcheck: checks drawings against the office's drawing standards from the command line.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

#include "StcheckCommands.h"
#include "StopSignals.h"
#include "TerminalText.h"

int main(int argc, char** argv) {
  stcheck::StopSignals::install();
  CLI::App app{"stcheck: check drawings against their drawing standards", "stcheck"};
  app.set_version_flag("--version", std::string("stcheck ") + STAUDIT_VERSION);
  app.require_subcommand(0, 1);
  int exitCode = 0;
  stcheck::addCommands(app, exitCode);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // Usage errors exit 2 like unreadable input: a pipeline treats both as "not checked".
    int code = app.exit(e);
    return code == 0 ? 0 : 2;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "stcheck: %s\n", stcheck::terminalSafe(e.what()).c_str());
    return 2;
  }
  if (argc == 1) std::fputs(app.help().c_str(), stdout);
  return exitCode;
}
