// The Standards Settings dialog driven as a user drives it, in the real desktop host with the
// real modules: what it opens with (the real settings in a configuration file of its own, the
// real drawing's standards files), what OK writes, that Cancel writes nothing, its help, and
// the STANDARDSSETTINGS command that opens it.

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "DesktopTestSupport.h"
#include "HostConfigTree.h"
#include "HostQtText.h"
#include "StAppServices.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StSettingsStorage.h"
#include "StUiSettingsDlg.h"

// What a failed comparison of two texts prints.
char* toString(const OdString& text) {
  return qstrdup(toQString(text).toUtf8().constData());
}

using desktoptest::Desktop;
using stui::StUiSettingsDlg;
namespace fs = std::filesystem;

namespace {

OdString od(const fs::path& path) {
  return OdString::fromUtf8(path.string());
}

QStringList itemTexts(const QComboBox* box) {
  QStringList texts;
  for (int i = 0; i < box->count(); ++i) texts << box->itemText(i);
  return texts;
}

// The real settings, except for a notification mode that this host's drawing variable cannot
// hold (it takes 0..2 only); every write is logged in order before it reaches them.
struct OddModeSettings : st::StSettingsStorage {
  explicit OddModeSettings(st::StSettingsStorage& settings) : real(settings) {}
  void init() override {}
  OdString getPreferredFile() override { return real.getPreferredFile(); }
  int getNotificationMode() override { return 5; }
  unsigned getAutoFixCommands() override { return real.getAutoFixCommands(); }
  bool hasPreferredFile() override { return real.hasPreferredFile(); }
  bool getAutoFixProperties() override { return real.getAutoFixProperties(); }
  bool getShowIgnoredProblems() override { return real.getShowIgnoredProblems(); }
  void setShowIgnoredProblems(bool on) override {
    writes << "showIgnored";
    real.setShowIgnoredProblems(on);
  }
  void setAutoFixProperties(bool on) override {
    writes << "autoFix";
    real.setAutoFixProperties(on);
  }
  void setNotificationMode(int mode) override { writes << QString("mode %1").arg(mode); }
  void setPreferredFile(const OdString& path) override {
    writes << "preferredFile";
    real.setPreferredFile(path);
  }
  void setAutoFixCommands(unsigned commands) override {
    writes << "commands";
    real.setAutoFixCommands(commands);
  }
  OdString getDeveloper() override { return real.getDeveloper(); }
  OdString getWebSite() override { return real.getWebSite(); }

  st::StSettingsStorage& real;
  QStringList writes;
};

}  // namespace

class SettingsDialogTest : public QObject, desktoptest::ExampleFolder {
  Q_OBJECT

 private:
  // Opens the floor plan with `files` as its standards files.
  void openPlanWith(Desktop& d, const OdArray<OdString>& files) {
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    associate(d, files);
  }
  // Makes `files` the standards files of the current drawing.
  void associate(Desktop& d, const OdArray<OdString>& files) {
    OdDbDatabase* db = d.app->currentDatabase();
    QVERIFY2(db, d.transcript().c_str());
    st::StManager* manager = st::stManagerCache()->getManager(db);
    QVERIFY(manager && manager->setStandardsFiles(db, files));
    QCOMPARE(manager->getStandardsFiles(db).length(), files.length());
  }

 private slots:
  void init() {
    const std::string error = rewriteExample();
    QVERIFY2(error.empty(), error.c_str());
  }

  // Without a drawing: the stored values show; an unknown preferred file is the extra item,
  // selected; OK at once writes an empty preferred file, keeps the rest and drops command
  // bits no box stands for.
  void withoutADrawingOkAtOnceClearsThePreferredFile() {
    {
      Desktop d(config);
      st::StSettingsStorage* settings = stSettingsStorage();
      QVERIFY(settings);
      settings->setAutoFixProperties(true);
      settings->setShowIgnoredProblems(false);
      settings->setAutoFixCommands(0x01 | st::kStCheckOnSaveAs | st::kStCheckOnETransmit | 0x40);
      settings->setPreferredFile(L"/srv/standards/Company.dws");

      StUiSettingsDlg dialog;
      QCOMPARE(dialog.windowTitle(), QString("Standards Settings"));
      QVERIFY(dialog.notificationButton(st::kStNotifyStatusBar)->isChecked());
      QVERIFY(dialog.autoFixBox()->isChecked() && !dialog.showIgnoredBox()->isChecked());
      QString checked;
      for (QCheckBox* box : dialog.findChildren<QCheckBox*>())
        if (box->isChecked()) checked += box->objectName() + " ";
      QCOMPARE(checked, QString("checkOnSaveAs checkOnETransmit autoFix "));
      QCOMPARE(itemTexts(dialog.preferredFileBox()), QStringList({"None", "Company"}));
      QCOMPARE(dialog.preferredFileBox()->currentIndex(), 1);
      QCOMPARE(dialog.preferredFileBox()->currentData().toString(),
               QString("/srv/standards/Company.dws"));

      dialog.show();
      QTest::mouseClick(dialog.okButton(), Qt::LeftButton);
      QCOMPARE(dialog.result(), int(QDialog::Accepted));
      QCOMPARE(settings->getPreferredFile(), OdString());
      QVERIFY(settings->getAutoFixProperties() && !settings->getShowIgnoredProblems());
      QCOMPARE(settings->getAutoFixCommands(), unsigned(0x28));
    }
    // Written through to the configuration file.
    auto tree = HostConfigTree::open(config);
    auto preferred = tree->getValue({"cmddata", "StandardsAudit"}, "preferredFile");
    QVERIFY(preferred && preferred->getString().isEmpty());
  }

  // With a drawing: its standards files in its order by file name, the stored preferred one
  // selected; clicks and a keyboard choice in the list are written on OK only; Cancel and
  // Escape write nothing; "None" writes an empty preferred file. A preferred file's full path
  // is compared with case respected, and the item shown is the list's own search by name.
  void withADrawingChoicesAreWrittenOnOkOnly() {
    Desktop d(config);
    const fs::path unknown = dir.path() / "elsewhere" / "Company.dws";
    openPlanWith(d, {od(office), od(site)});
    st::StSettingsStorage* settings = stSettingsStorage();
    settings->setPreferredFile(od(unknown));
    settings->setAutoFixCommands(0);
    {
      // Two files of the drawing and an unknown preferred one, for a person to look at.
      StUiSettingsDlg dialog;
      QComboBox* files = dialog.preferredFileBox();
      QCOMPARE(itemTexts(files),
               QStringList({"None", "office-standards", "site-standards", "Company"}));
      QCOMPARE(files->itemData(2).toString(), QString::fromStdString(site.string()));
      QCOMPARE(files->currentIndex(), 3);
      dialog.show();
      QVERIFY(QTest::qWaitForWindowExposed(&dialog));
      fs::create_directories("/tmp/staudit-qt-shots");
      QVERIFY(dialog.grab().save("/tmp/staudit-qt-shots/standards-settings.png"));

      QTest::mouseClick(dialog.commandBox(st::kStCheckOnSave), Qt::LeftButton);
      QTest::mouseClick(dialog.commandBox(st::kStCheckOnPlot), Qt::LeftButton);
      QTest::mouseClick(dialog.notificationButton(st::kStNotifyAlert), Qt::LeftButton);
      QTest::mouseClick(dialog.showIgnoredBox(), Qt::LeftButton);
      QTest::keyClick(files, Qt::Key_Home);
      QTest::keyClick(files, Qt::Key_Down);
      QTest::keyClick(files, Qt::Key_Down);
      QCOMPARE(files->currentText(), QString("site-standards"));
      QTest::mouseClick(dialog.okButton(), Qt::LeftButton);
    }
    QCOMPARE(settings->getAutoFixCommands(), unsigned(0x12));
    QCOMPARE(settings->getNotificationMode(), int(st::kStNotifyAlert));
    QVERIFY(settings->getShowIgnoredProblems());
    QCOMPARE(settings->getPreferredFile(), od(site));

    const std::string stored = testsupport::readBytes(config);
    for (bool escape : {false, true}) {
      StUiSettingsDlg dialog;
      QCOMPARE(dialog.preferredFileBox()->currentIndex(), 2);
      dialog.show();
      QTest::mouseClick(dialog.notificationButton(st::kStNotifyNone), Qt::LeftButton);
      QTest::mouseClick(dialog.autoFixBox(), Qt::LeftButton);
      QTest::mouseClick(dialog.commandBox(st::kStCheckOnImport), Qt::LeftButton);
      QTest::keyClick(dialog.preferredFileBox(), Qt::Key_Home);
      if (escape)
        QTest::keyClick(&dialog, Qt::Key_Escape);
      else
        QTest::mouseClick(dialog.cancelButton(), Qt::LeftButton);
      QCOMPARE(dialog.result(), int(QDialog::Rejected));
    }
    QCOMPARE(testsupport::readBytes(config), stored);
    QCOMPARE(settings->getNotificationMode(), int(st::kStNotifyAlert));
    QCOMPARE(settings->getPreferredFile(), od(site));

    {
      StUiSettingsDlg dialog;
      dialog.show();
      QTest::keyClick(dialog.preferredFileBox(), Qt::Key_Home);
      QCOMPARE(dialog.preferredFileBox()->currentText(), QString("None"));
      QTest::mouseClick(dialog.okButton(), Qt::LeftButton);
      QCOMPARE(settings->getPreferredFile(), OdString());
    }

    // The same file named with other case in its folder is another file: the extra item.
    // Of two files of one name the list's search by name shows the first.
    const fs::path other = dir.path() / "old" / "Site-Standards.dws";
    associate(d, {od(office), od(site), od(other)});
    OdString shouted = od(office);
    shouted.makeUpper();
    struct Case {
      OdString preferred;
      int count, index;
    };
    for (const Case& c : {Case{shouted, 5, 4}, Case{od(other), 4, 2}}) {
      settings->setPreferredFile(c.preferred);
      StUiSettingsDlg dialog;
      QCOMPARE(dialog.preferredFileBox()->count(), c.count);
      QCOMPARE(dialog.preferredFileBox()->currentIndex(), c.index);
    }
  }

  // A stored notification mode outside the buttons opens with none checked, and OK leaves it
  // unwritten; the settings are written in a fixed order, the mode first when one is checked.
  void modeOutsideTheButtonsIsKept() {
    Desktop d(config);
    d.window->sendWithPath("OPEN", QString::fromStdString(plan.string()));
    OddModeSettings settings(*stSettingsStorage());
    {
      StUiSettingsDlg dialog(&settings);
      QCOMPARE(dialog.findChild<QButtonGroup*>()->checkedId(), -1);
      for (QRadioButton* radio : dialog.findChildren<QRadioButton*>())
        QVERIFY2(!radio->isChecked(), qPrintable(radio->objectName()));
      dialog.show();
      QTest::mouseClick(dialog.okButton(), Qt::LeftButton);
    }
    QCOMPARE(settings.writes, QStringList({"showIgnored", "autoFix", "preferredFile", "commands"}));
    settings.writes.clear();
    {
      StUiSettingsDlg dialog(&settings);
      dialog.show();
      QTest::mouseClick(dialog.notificationButton(st::kStNotifyNone), Qt::LeftButton);
      QTest::keyClick(dialog.okButton(), Qt::Key_Space);
    }
    QCOMPARE(settings.writes,
             QStringList({"mode 0", "showIgnored", "autoFix", "preferredFile", "commands"}));
  }

  // STANDARDSSETTINGS typed on the command line opens this dialog, laid out as it reads; its
  // Help button asks the host's help for the dialog's page.
  void commandOpensTheDialogWithHelp() {
    Desktop d(config);
    testsupport::TempDir noHelp;
    d.app->help().setFolder(noHelp.path());
    QStringList seen;
    qthosttest::whenShown("Standards Settings", [&](QWidget* window) {
      auto* dialog = qobject_cast<StUiSettingsDlg*>(window);
      if (!dialog) return;
      for (auto* group : dialog->findChildren<QGroupBox*>()) seen << group->title();
      seen << dialog->findChild<QLabel*>("preferredFileLabel")->text();
      for (QWidget* w = dialog->notificationButton(0); w != dialog->helpButton();
           w = w->nextInFocusChain())
        if (auto* button = qobject_cast<QAbstractButton*>(w)) seen << button->text();
      QTest::mouseClick(dialog->helpButton(), Qt::LeftButton);
      QTest::mouseClick(dialog->okButton(), Qt::LeftButton);
    });
    d.type("STANDARDSSETTINGS");
    QVERIFY2(!QApplication::activeModalWidget(), d.transcript().c_str());
    QCOMPARE(seen.join('|'),
             QString("Notification settings|Check standards by command:|Check Standards "
                     "settings|Preferred standards file to use for replacements:|Disable "
                     "standards notifications|Display alert upon standards violation|Display "
                     "standards status bar icon|Save|Save as|Import|Plot|eTransmit|Automatically "
                     "fix non-standard properties|Show ignored problems|OK|Cancel"));
    QVERIFY2(d.transcript().find("no help page for \"IDH_STANDARDSSETTINGS\"") != std::string::npos,
             d.transcript().c_str());
  }
};

QTEST_MAIN(SettingsDialogTest)
#include "SettingsDialogTest.moc"
