#pragma once

// The desktop host as its widget tests drive it: a real host application with the Qt front,
// the real main window, the modules loaded from the configuration as stdesk loads them, and a
// configuration file of its own in a temporary folder.

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "DesktopWindow.h"
#include "HostApplication.h"
#include "HostQtCommandLine.h"
#include "HostQtFront.h"
#include "QtHostSupport.h"
#include "QuitCommand.h"
#include "StartupModules.h"
#include "TestSupport.h"

namespace desktoptest {

// One desktop host; only one lives at a time (one host application per process).
struct Desktop {
  explicit Desktop(const std::filesystem::path& config) {
    app = std::make_unique<HostApplication>(front, HostApplication::Options{config, false});
    QuitCommand::registerIn(app->commands());
    window = std::make_unique<DesktopWindow>(*app, front);
    StartupModules::registerBundled(*app);
    StartupModules::loadAll(*app);
    window->show();
  }
  ~Desktop() {
    app->documents().closeAll();
    app->unloadModules();
    window.reset();
    app.reset();
  }

  // Types a line on the command line as a person does, and presses Enter.
  void type(const QString& line) {
    QLineEdit* input = window->commandLine()->input();
    input->setFocus();
    QTest::keyClicks(input, line);
    QTest::keyClick(input, Qt::Key_Return);
    // The line is sent from the event loop, once the key press is over.
    QCoreApplication::processEvents();
  }
  std::string transcript() const { return window->commandLine()->transcript().toStdString(); }

  // Once the command line's last words are `prompt` (within about five seconds), runs `act`
  // from the event loop, as a person answers a prompt once it shows, however slow the machine.
  void whenAsked(const std::string& prompt, std::function<void()> act, int triesLeft = 500) {
    QTimer::singleShot(10, [this, prompt, act = std::move(act), triesLeft]() mutable {
      if (transcript().ends_with(prompt))
        act();
      else if (triesLeft > 0)
        whenAsked(prompt, std::move(act), triesLeft - 1);
    });
  }

  HostQtFront front;
  std::unique_ptr<HostApplication> app;
  std::unique_ptr<DesktopWindow> window;
};

// What a test class of the desktop derives from: a temporary folder with a fresh copy of the
// bundled example for each test (the floor plan with its two standards files), and the place
// of the host's configuration file.
struct ExampleFolder {
  testsupport::TempDir dir;
  const std::filesystem::path plan = dir.path() / "floor-plan.dxf";
  const std::filesystem::path office = dir.path() / "office-standards.dws";
  const std::filesystem::path site = dir.path() / "site-standards.dws";
  const std::filesystem::path config = dir.path() / "config" / "standards-audit.json";

  // Empties the folder and writes the example again; empty, or what the example's maker said
  // when it failed.
  std::string rewriteExample() {
    for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
      std::filesystem::remove_all(entry.path());
    const auto made = testsupport::makeExamples(dir.path());
    return made.exitCode == 0 ? std::string() : made.output + " ";
  }
};

// Types `command` and runs `act` on the modal dialog of class Dialog titled `title` once it
// shows; a dialog `act` leaves open is ended with `endCode` afterwards, so that a failed
// comparison inside it cannot hang the test. False when no such dialog showed.
template <class Dialog>
bool runDialog(Desktop& d, const QString& command, const QString& title, int endCode,
               const std::function<void(Dialog*)>& act) {
  bool shown = false;
  qthosttest::whenShown(title, [&](QWidget* w) {
    auto* dialog = qobject_cast<Dialog*>(w);
    shown = dialog != nullptr;
    if (dialog) act(dialog);
    if (w->isVisible()) static_cast<QDialog*>(w)->done(endCode);
  });
  d.type(command);
  return shown;
}

// The button of a modal window, by its text without '&'; null when there is none.
inline QAbstractButton* buttonOf(QWidget* window, const QString& text) {
  for (QAbstractButton* b : window->findChildren<QAbstractButton*>())
    if (b->text().remove('&') == text) return b;
  return nullptr;
}

// Once a window titled `title` shows, clicks its button `button`.
inline void clickWhenShows(const QString& title, const QString& button) {
  qthosttest::whenShown(title, [button](QWidget* window) {
    if (QAbstractButton* b = buttonOf(window, button)) b->click();
  });
}

}  // namespace desktoptest
