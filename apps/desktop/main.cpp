// stdesk: the desktop host. Opens the drawings named on its command line in a window with the
// standards module loaded, and optionally runs a command script once it has started.
//
//   stdesk [DRAWING...] [--script FILE]

#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <cstdio>
#include <exception>
#include <memory>

#include "DesktopScript.h"
#include "DesktopWindow.h"
#include "HostApplication.h"
#include "HostQtFront.h"
#include "QuitCommand.h"
#include "ScreenshotCommand.h"
#include "StartupModules.h"

namespace {
int fail(const QString& message) {
  std::fprintf(stderr, "stdesk: %s\n", message.toLocal8Bit().constData());
  return 2;
}
}  // namespace

int main(int argc, char** argv) {
  QApplication qapp(argc, argv);
  QApplication::setApplicationName("stdesk");
  QApplication::setApplicationVersion(STAUDIT_VERSION);

  QCommandLineParser parser;
  parser.setApplicationDescription("The desktop host of standards-audit.");
  parser.addHelpOption();
  parser.addVersionOption();
  QCommandLineOption scriptOption("script", "Runs the command script FILE after start-up.", "FILE");
  parser.addOption(scriptOption);
  parser.addPositionalArgument("DRAWING", "Drawings to open.", "[DRAWING...]");
  if (!parser.parse(QApplication::arguments())) return fail(parser.errorText());
  if (parser.isSet("help")) parser.showHelp(0);
  if (parser.isSet("version")) parser.showVersion();

  try {
    HostQtFront front;
    // A run whose output is captured (a script, a test) can read the command line back.
    if (!::isatty(STDOUT_FILENO)) front.setEcho(stdout);
    HostApplication host(front);
    QuitCommand::registerIn(host.commands());
    ScreenshotCommand::registerIn(host.commands());

    DesktopScript script(host, front);
    if (parser.isSet(scriptOption)) {
      QString error;
      if (!script.load(parser.value(scriptOption), error)) return fail(error);
      // Drawings that cannot be opened are then reported on the command line, not in boxes.
      front.setScriptRunning(true);
    }

    auto window = std::make_unique<DesktopWindow>(host, front);
    StartupModules::registerBundled(host);
    StartupModules::loadAll(host);
    for (const QString& drawing : parser.positionalArguments())
      window->sendWithPath("OPEN", QFileInfo(drawing).absoluteFilePath());
    window->show();
    if (parser.isSet(scriptOption)) script.start();
    const int status = QApplication::exec();

    // Modules go while the window they may have placed widgets in still stands.
    host.documents().closeAll();
    host.unloadModules();
    window.reset();
    return status;
  } catch (const std::exception& e) {
    return fail(e.what());
  }
}
