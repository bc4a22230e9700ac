// The dialog base modules build on: help reached by F1, the Help button and context-help
// mode; the code given to done() is what runModal returns; the host's help for a key.

#include <QDialogButtonBox>
#include <QMainWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWhatsThis>

#include "QtHostSupport.h"
#include "hostUiDialog.h"

using qthosttest::QtHost;
using qthosttest::whenShown;

namespace {
// A module's dialog that counts the help asked of it.
class CountingDialog : public hostUiDialog {
 public:
  CountingDialog() : hostUiDialog("Check Standards", "checkstandards") {
    box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    helpButton = addHelpButton(box);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
  }
  void help() override { ++helpAsked; }
  QDialogButtonBox* box;
  QPushButton* helpButton;
  int helpAsked = 0;
};
}  // namespace

class HostUiDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void helpAndResultCodes();
  void defaultHelpAsksTheHost();
};

void HostUiDialogTest::helpAndResultCodes() {
  QtHost host;
  QMainWindow window;
  window.show();
  host.front.setMainWindow(&window);
  CountingDialog dialog;
  QCOMPARE(dialog.parentWidget(), &window);  // over the host's window when none is given
  QCOMPARE(dialog.windowTitle(), QStringLiteral("Check Standards"));

  // Each way to ask for help reaches help() once; then the code given to done() comes back.
  whenShown("Check Standards", [&](QWidget* w) {
    QTest::keyClick(w, Qt::Key_F1);
    QTest::mouseClick(dialog.helpButton, Qt::LeftButton);
    QWhatsThis::enterWhatsThisMode();
    QTRY_COMPARE(dialog.helpAsked, 3);
    QVERIFY(!QWhatsThis::inWhatsThisMode());
    dialog.done(42);
  });
  QCOMPARE(dialog.runModal(), 42);
  QCOMPARE(dialog.helpAsked, 3);

  const std::pair<QDialogButtonBox::StandardButton, int> buttons[] = {
      {QDialogButtonBox::Ok, QDialog::Accepted}, {QDialogButtonBox::Cancel, QDialog::Rejected}};
  for (auto [button, code] : buttons) {
    whenShown("Check Standards", [&, button](QWidget*) {
      QTest::mouseClick(dialog.box->button(button), Qt::LeftButton);
    });
    QCOMPARE(dialog.runModal(), code);
  }
  whenShown("Check Standards", [](QWidget* w) { QTest::keyClick(w, Qt::Key_Escape); });
  QCOMPARE(dialog.runModal(), int(QDialog::Rejected));
  QCOMPARE(dialog.helpAsked, 3);
}

void HostUiDialogTest::defaultHelpAsksTheHost() {
  QtHost host;
  testsupport::TempDir helpFolder;
  host.app.help().setFolder(helpFolder.path());
  QSignalSpy written(&host.front, &HostQtFront::commandLineWritten);
  hostUiDialog dialog("Configure Standards", "configurestandards");
  dialog.help();
  // The host looked for the key's page (there is none here) and said so.
  QCOMPARE(written.count(), 1);
  QVERIFY(written.at(0).at(0).toString().contains("no help page for \"configurestandards\""));
  dialog.setHelpKey(QString());
  dialog.help();
  QCOMPARE(written.count(), 1);  // no key, nothing to show
}

QTEST_MAIN(HostUiDialogTest)
#include "HostUiDialogTest.moc"
