// The standards button of the desktop's status bar, in the real window with the real modules
// over the bundled example: what a drafter sees after an edit that breaks the standard under
// each notification mode, what the button's click and menu do, the missing-file balloon, and
// the module's unloading taking every piece back.

#include <QMenu>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>
#include <fstream>

#include "DesktopScript.h"
#include "DesktopTestSupport.h"
#include "HostDocument.h"
#include "StAppServices.h"
#include "StDialogs.h"
#include "StSettingsStorage.h"
#include "StUiModule.h"
#include "StUiStandardsAuditButton.h"
#include "hostUiBalloonToolTip.h"

using desktoptest::buttonOf;
using desktoptest::Desktop;
using qthosttest::shownWindow;
using stui::StUiStandardsAuditButton;
namespace fs = std::filesystem;

namespace {

StUiStandardsAuditButton* button() {
  return stui::StUiModule::button();
}

// How many times `command` ran since `from` in the transcript.
int ran(Desktop& d, const std::string& command, std::size_t from = 0) {
  int count = 0;
  const std::string text = d.transcript();
  for (auto at = text.find("Command: " + command + "\n", from); at != std::string::npos;
       at = text.find("Command: " + command + "\n", at + 1))
    ++count;
  return count;
}

void closeBalloons() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* balloon = qobject_cast<hostUiBalloonToolTip*>(w)) balloon->closeBalloon();
  QCoreApplication::processEvents();
}

// Once the Check Standards dialog shows, closes it as a user does, confirming that the check
// stops, so that the drawing is watched again.
void closeCheckWhenShown() {
  qthosttest::whenShown("Check Standards", [](QWidget* w) {
    desktoptest::clickWhenShows("Checking Not Finished.", "OK");
    buttonOf(w, "Close")->click();
  });
}

// Once the Configure Standards dialog shows, cancels it.
void cancelConfigureWhenShown() {
  desktoptest::clickWhenShows("Configure Standards", "Cancel");
}

// The menu action of the button that runs `command`.
QAction* menuItem(QMenu& menu, int command) {
  for (QAction* action : menu.actions())
    if (action->data().toInt() == command) return action;
  return nullptr;
}

}  // namespace

class StatusButtonTest : public QObject, desktoptest::ExampleFolder {
  Q_OBJECT

 private:
  void open(Desktop& d, const fs::path& drawing) {
    d.window->sendWithPath("OPEN", QString::fromStdString(drawing.string()));
  }

 private slots:
  void init() {
    const std::string error = rewriteExample();
    QVERIFY2(error.empty(), error.c_str());
  }

  // A layer the standards lack, made on the command line, under each notification mode.
  void violationIsAnnouncedAsTheModeAsks() {
    Desktop d(config);
    QVERIFY(button());
    QVERIFY(d.window->statusBar()->isAncestorOf(button()));
    QCOMPARE(button()->tooltipText(),
             QString("No standards file(s) associated with the current drawing"));
    open(d, plan);
    QCOMPARE(button()->state(), 0);
    QCOMPARE(button()->tooltipText(), QString("Associated standard file(s)"));

    // Mode 0: nothing shows, but the button turns, and a click then opens the check.
    stSettingsStorage()->setNotificationMode(0);
    d.type("-LAYER NEW Quiet");
    QCOMPARE(button()->state(), 2);
    QCOMPARE(button()->logic().iconId(), 116);
    QVERIFY(!button()->balloon());
    QCOMPARE(button()->tooltipText(), QString("New standards violation"));
    closeCheckWhenShown();
    QTest::mouseClick(button(), Qt::LeftButton);
    QCOMPARE(ran(d, "CHECKSTANDARDS"), 1);

    d.window->setGeometry(0, 0, 800, 760);  // on the offscreen screen whole, for the picture
    // Mode 2: the balloon at the button, its link opens the check; here the layer comes from
    // a script.
    stSettingsStorage()->setNotificationMode(2);
    std::ofstream(dir.path() / "loud.scr") << "-LAYER NEW Loud\n";
    DesktopScript script(*d.app, d.front);
    QString error;
    QVERIFY(script.load(QString::fromStdString((dir.path() / "loud.scr").string()), error));
    script.start();
    QTRY_VERIFY(!script.isRunning());
    QWidget* balloon = shownWindow("Standards Violation");
    QVERIFY2(balloon, d.transcript().c_str());
    QCOMPARE(balloon, static_cast<QWidget*>(button()->balloon()));
    QCOMPARE(button()->balloon()->linkText(), QString("Run Check Standards"));
    QVERIFY(button()->balloon()->content().startsWith("A standards violation has occured."));
    QVERIFY(button()->balloon()->timerRunning());
    QGuiApplication::primaryScreen()->grabWindow(0).save(
        "/tmp/staudit-qt-shots/stdesk-balloon.png");
    closeCheckWhenShown();
    QTest::mouseClick(balloon, Qt::LeftButton, {}, button()->balloon()->linkRect().center());
    QTRY_VERIFY(!button()->balloon());
    QCOMPARE(ran(d, "CHECKSTANDARDS"), 2);

    // With the status bar hidden there is nothing to point at: no balloon, the state turns.
    button()->checkFinished();
    d.window->statusBar()->hide();
    d.type("-LAYER NEW Unseen");
    QVERIFY(!button()->balloon());
    QCOMPARE(button()->state(), 2);
    d.window->statusBar()->show();

    // Mode 1: the task dialog; choosing its first link opens the check, the second does not.
    stSettingsStorage()->setNotificationMode(1);
    qthosttest::whenShown("Standards Audit", [](QWidget* w) {
      buttonOf(w, "Choose a standard object to replace this once")->click();
    });
    closeCheckWhenShown();
    d.type("-LAYER NEW Asked");
    QTRY_COMPARE(ran(d, "CHECKSTANDARDS"), 3);
    QVERIFY(!button()->balloon());
    qthosttest::whenShown("Standards Audit",
                          [](QWidget* w) { buttonOf(w, "Keep non standard object")->click(); });
    d.type("-LAYER NEW Kept");
    QCOMPARE(ran(d, "CHECKSTANDARDS"), 3);
    QCOMPARE(button()->state(), 2);
  }

  // A drawing whose standards file is gone says so as it becomes current, whatever the mode;
  // the click then opens the configuration.
  void missingFileShowsItsBalloonAndClickConfigures() {
    fs::rename(dir.path() / "office-standards.dws", dir.path() / "moved.dws");
    Desktop d(config);
    open(d, plan);
    QTRY_VERIFY(shownWindow("Missing Standards File"));
    QCOMPARE(button()->state(), 1);
    QCOMPARE(button()->tooltipText(), QString("Missing standard file(s)"));
    QVERIFY(button()->balloon()->linkText().isEmpty());
    QVERIFY(button()->balloon()->options() & hostUiBalloonToolTip::kCloseButton);
    cancelConfigureWhenShown();
    QTest::mouseClick(button(), Qt::LeftButton);
    QCOMPARE(ran(d, "STANDARDS"), 1);
    closeBalloons();

    // Notifications off: the balloon shows all the same when the drawing is made current again.
    stSettingsStorage()->setNotificationMode(0);
    d.type("NEW");
    QCOMPARE(d.window->tabs()->count(), 2);
    QVERIFY(!shownWindow("Missing Standards File"));
    d.window->tabs()->setCurrentIndex(0);
    QTRY_VERIFY(shownWindow("Missing Standards File"));
    closeBalloons();

    // No drawing open: a click sends nothing.
    d.app->documents().closeAll();
    const std::string before = d.transcript();
    QTest::mouseClick(button(), Qt::LeftButton);
    QCoreApplication::processEvents();
    QCOMPARE(d.transcript(), before);
  }

  // The menu: the two dialogs' commands, the notifications switch and the settings, which is
  // the dialog the Standards menu opens.
  void menuReachesTheCommandsAndTheSettings() {
    Desktop d(config);
    open(d, plan);
    stSettingsStorage()->setNotificationMode(1);
    std::unique_ptr<QMenu> menu(button()->createMenu());
    QStringList texts;
    for (QAction* action : menu->actions()) texts << action->text();
    QCOMPARE(texts, QStringList({"Check Standards...", "Configure Standards...",
                                 "Enable Notifications", "", "Settings..."}));
    QAction* notifications = menuItem(*menu, StUiStandardsAuditButton::kMenuEnableNotifications);
    QVERIFY(notifications->isCheckable() && notifications->isChecked());

    button()->runMenuCommand(StUiStandardsAuditButton::kMenuEnableNotifications);
    QCOMPARE(stSettingsStorage()->getNotificationMode(), 0);
    menu.reset(button()->createMenu());
    QVERIFY(!menuItem(*menu, StUiStandardsAuditButton::kMenuEnableNotifications)->isChecked());
    button()->runMenuCommand(StUiStandardsAuditButton::kMenuEnableNotifications);
    QCOMPARE(stSettingsStorage()->getNotificationMode(), 2);

    closeCheckWhenShown();
    button()->runMenuCommand(StUiStandardsAuditButton::kMenuCheckStandards);
    cancelConfigureWhenShown();
    button()->runMenuCommand(StUiStandardsAuditButton::kMenuConfigureStandards);
    QCOMPARE(ran(d, "CHECKSTANDARDS"), 1);
    QCOMPARE(ran(d, "STANDARDS"), 1);

    // Settings... and Standards > Standards Settings... open the one dialog.
    QString seen;
    qthosttest::whenShown("Standards Settings", [&](QWidget* w) {
      seen = w->metaObject()->className();
      buttonOf(w, "Cancel")->click();
    });
    button()->runMenuCommand(StUiStandardsAuditButton::kMenuSettings);
    QCOMPARE(seen, QString("stui::StUiSettingsDlg"));
    seen.clear();
    qthosttest::whenShown("Standards Settings", [&](QWidget* w) {
      seen = w->metaObject()->className();
      buttonOf(w, "Cancel")->click();
    });
    d.type("STANDARDSSETTINGS");
    QCOMPARE(seen, QString("stui::StUiSettingsDlg"));
  }

  // Unloading the user interface takes the button, the listener and the command away; the
  // engine goes on without them.
  void unloadingTakesEverythingBack() {
    Desktop d(config);
    open(d, plan);
    QVERIFY(button());
    QVERIFY(d.app->unloadModule(L"StandardsAuditUi"));
    QVERIFY(!button());
    QVERIFY(!st::stDialogs().checkStandards && !st::stDialogs().errorReport);
    QVERIFY(!d.window->statusBar()->findChild<StUiStandardsAuditButton*>());
    stSettingsStorage()->setNotificationMode(2);
    d.type("-LAYER NEW AfterUnload");
    QVERIFY(!shownWindow("Standards Violation"));
    d.type("STANDARDSSETTINGS");
    QVERIFY2(d.transcript().find("unknown command \"STANDARDSSETTINGS\"") != std::string::npos,
             d.transcript().c_str());
  }
};

QTEST_MAIN(StatusButtonTest)
#include "StatusButtonTest.moc"
