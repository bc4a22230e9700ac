// The Qt front as the host uses it: message boxes and task dialogs answered by clicks and
// keys, command-line text, the status bar offered to modules, the PDF plot written whole or
// not at all.

#include <QCommandLinkButton>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>
#include <cstdio>
#include <filesystem>

#include "HostQtCommandLine.h"
#include "HostQtStatusBar.h"
#include "HostQtTaskDialog.h"
#include "OdDbDatabase.h"
#include "QtHostSupport.h"

using qthosttest::QtHost;
using qthosttest::whenShown;

namespace {
const char* kShots = "/tmp/staudit-qt-shots";

void screenshot(QWidget* w, const char* name) {
  std::filesystem::create_directories(kShots);
  w->grab().save(QString::fromUtf8(kShots) + "/" + name + ".png");
}

std::size_t filesIn(const std::filesystem::path& dir) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(dir), {}));
}
}  // namespace

class HostQtFrontTest : public QObject {
  Q_OBJECT

 private slots:
  void messageBoxesGiveTheHostsAnswers();
  void taskDialogsGiveTheChosenId();
  void commandLineTextGoesToWidgetStreamAndSignal();
  void statusBarTakesAndGivesBackModuleWidgets();
  void plotWritesAWholePdfOrAnError();
};

void HostQtFrontTest::messageBoxesGiveTheHostsAnswers() {
  QtHost host;
  QMainWindow window;
  window.show();
  host.front.setMainWindow(&window);

  // How the box is answered: a button clicked, Enter (the default) or Escape.
  enum Act { kClick, kEnter, kEscape };
  struct Case {
    HostButtons buttons;
    int defaultAnswer;
    Act act;
    QMessageBox::StandardButton clicked;
    int expected;
  };
  const Case cases[] = {
      {HostButtons::kYesNoCancel, 0, kClick, QMessageBox::No, kHostNo},
      {HostButtons::kYesNoCancel, 0, kEnter, QMessageBox::NoButton, kHostYes},
      {HostButtons::kYesNoCancel, kHostNo, kEnter, QMessageBox::NoButton, kHostNo},
      {HostButtons::kYesNoCancel, 0, kEscape, QMessageBox::NoButton, kHostCancel},
      {HostButtons::kOkCancel, kHostCancel, kEnter, QMessageBox::NoButton, kHostCancel},
      {HostButtons::kOkCancel, 0, kEscape, QMessageBox::NoButton, kHostCancel},
      {HostButtons::kYesNo, 0, kEscape, QMessageBox::NoButton, kHostNo},
      {HostButtons::kOk, 0, kEscape, QMessageBox::NoButton, kHostOk},
      {HostButtons::kRetryCancel, 0, kClick, QMessageBox::Retry, kHostRetry},
      {HostButtons::kRetryCancel, 0, kEscape, QMessageBox::NoButton, kHostCancel},
  };
  int n = 0;
  for (const Case& c : cases) {
    const QString title = QStringLiteral("Drawing Standards %1").arg(++n);
    QString shownText;
    QWidget* shownParent = nullptr;
    whenShown(title, [&, c](QWidget* w) {
      auto* box = qobject_cast<QMessageBox*>(w);
      if (!box) return;
      shownText = box->text();
      shownParent = box->parentWidget();
      if (n == 1) screenshot(box, "message-box");
      if (c.act == kClick)
        QTest::mouseClick(box->button(c.clicked), Qt::LeftButton);
      else
        QTest::keyClick(box, c.act == kEnter ? Qt::Key_Return : Qt::Key_Escape);
    });
    HostMessageBox box{L"The drawing has 3 problems.\r\nFix them now?",
                       OdString(title.toStdWString()), c.buttons, HostIcon::kQuestion,
                       c.defaultAnswer};
    QCOMPARE(host.front.showMessageBox(box), c.expected);
    QCOMPARE(shownText, QStringLiteral("The drawing has 3 problems.\nFix them now?"));
    QCOMPARE(shownParent, &window);
  }
}

void HostQtFrontTest::taskDialogsGiveTheChosenId() {
  QtHost host;
  HostTaskDialog asked;
  asked.windowTitle = L"Standards Violation";
  asked.mainInstruction = L"Layer \"Walls\" does not match the standard";
  asked.content = L"Its colour is red;\r\nthe standard says blue.";
  asked.icon = HostIcon::kWarning;
  asked.buttons = {{101, L"Fix it\nGive the layer the standard's properties"},
                   {102, L"Leave it"},
                   {103, L"Stop checking\nKeep the problems for later"}};
  asked.defaultButton = 102;

  // Command links, as a person sees them: text, note, the instruction in bold.
  for (bool links : {true, false}) {
    asked.commandLinks = links;
    whenShown("Standards Violation", [&](QWidget* w) {
      auto* dialog = qobject_cast<HostQtTaskDialog*>(w);
      QVERIFY(dialog);
      QCOMPARE(int(dialog->buttons().size()), 3);
      auto* first = qobject_cast<QCommandLinkButton*>(dialog->buttons()[0].first);
      QCOMPARE(first != nullptr, links);
      QCOMPARE(dialog->buttons()[0].first->text(), QStringLiteral("Fix it"));
      if (links) {
        QCOMPARE(first->description(), QStringLiteral("Give the layer the standard's properties"));
        bool bold = false, content = false;
        for (QLabel* label : dialog->findChildren<QLabel*>()) {
          bold |= label->text().startsWith("Layer \"Walls\"") && label->font().bold();
          content |= label->text() == "Its colour is red;\nthe standard says blue.";
        }
        QVERIFY(bold && content);
        screenshot(dialog, "task-dialog");
      }
      QTest::mouseClick(dialog->buttons()[2].first, Qt::LeftButton);
    });
    QCOMPARE(host.front.showTaskDialog(asked), 103);
  }

  asked.commandLinks = true;
  const std::pair<int, int> keys[] = {{Qt::Key_Return, 102}, {Qt::Key_Escape, kHostCancel}};
  for (auto [key, expected] : keys) {
    whenShown("Standards Violation", [key](QWidget* w) { QTest::keyClick(w, Qt::Key(key)); });
    QCOMPARE(host.front.showTaskDialog(asked), expected);
  }
  // No default named: the first button is.
  asked.defaultButton = 0;
  whenShown("Standards Violation", [](QWidget* w) { QTest::keyClick(w, Qt::Key_Return); });
  QCOMPARE(host.front.showTaskDialog(asked), 101);
  // The close box dismisses it.
  whenShown("Standards Violation", [](QWidget* w) { w->close(); });
  QCOMPARE(host.front.showTaskDialog(asked), int(kHostCancel));
  // The host's own call reaches the same dialog.
  whenShown("Standards Violation", [](QWidget* w) { QTest::keyClick(w, Qt::Key_Return); });
  QCOMPARE(host.app.taskDialog(asked), 101);
}

void HostQtFrontTest::commandLineTextGoesToWidgetStreamAndSignal() {
  QtHost host;
  std::FILE* echo = std::tmpfile();
  QVERIFY(echo);
  host.front.setEcho(echo);
  QSignalSpy written(&host.front, &HostQtFront::commandLineWritten);

  // Without a widget the text still reaches the stream and the signal, and nobody is asked.
  host.app.cmdPrint(L"Layers checked: 4 \u00e9\n");
  OdString line;
  QVERIFY(!host.front.readCommandInput(line));

  HostQtCommandLine commandLine(&host.app.commands());
  host.front.setCommandLine(&commandLine);
  host.app.cmdPrint(L"Fix all? ");
  QCOMPARE(commandLine.transcript(), QStringLiteral("Fix all? "));
  host.front.setScriptRunning(true);
  QVERIFY(!host.front.readCommandInput(line));  // a script answers for itself
  QVERIFY(!commandLine.isWaiting());

  QCOMPARE(written.count(), 2);
  QCOMPARE(written.at(0).at(0).toString(), QStringLiteral("Layers checked: 4 \u00e9\n"));
  std::rewind(echo);
  char buffer[64] = {};
  const std::size_t n = std::fread(buffer, 1, sizeof buffer - 1, echo);
  QCOMPARE(std::string(buffer, n), std::string("Layers checked: 4 \xc3\xa9\nFix all? "));
  std::fclose(echo);
}

void HostQtFrontTest::statusBarTakesAndGivesBackModuleWidgets() {
  QtHost host;
  QVERIFY(host.app.statusBar() == nullptr);
  QMainWindow window;
  window.resize(600, 300);
  host.front.setStatusBar(window.statusBar());
  window.show();
  auto* bar = dynamic_cast<HostQtStatusBar*>(host.app.statusBar());
  QVERIFY(bar);
  QCOMPARE(bar->toolkit(), OdString(L"qt"));

  auto* first = new QPushButton("Standards");
  auto* second = new QPushButton("Other");
  QVERIFY(bar->addModuleWidget(first));
  QVERIFY(bar->addModuleWidget(second));
  QVERIFY(!bar->addModuleWidget(first));
  QVERIFY(!bar->addModuleWidget(nullptr));
  QCOMPARE(bar->moduleWidgetCount(), 2);
  QVERIFY(QTest::qWaitForWindowExposed(&window));
  QTRY_VERIFY(first->isVisible());
  // At the right end of the bar, in the order placed.
  QVERIFY(first->geometry().left() > window.width() / 2);
  QVERIFY(second->geometry().left() > first->geometry().left());

  QVERIFY(bar->removeModuleWidget(first));
  QVERIFY(!bar->removeModuleWidget(first));
  QVERIFY(first->parent() == nullptr && !first->isVisible());
  QCOMPARE(bar->moduleWidgetCount(), 1);
  delete first;
  // A widget that goes with its module leaves no dangling entry.
  delete second;
  QCOMPARE(bar->moduleWidgetCount(), 0);
}

void HostQtFrontTest::plotWritesAWholePdfOrAnError() {
  namespace fs = std::filesystem;
  QtHost host;
  testsupport::TempDir dir;
  const fs::path drawing = dir.path() / "plan.dxf";
  // Taller than wide: a portrait page.
  const auto made = testsupport::ezdxf(
      "doc = ezdxf.new('R2010')\n"
      "doc.modelspace().add_line((0, 0), (10, 300), dxfattribs={'color': 1})\n"
      "doc.saveas(path)\n",
      drawing);
  QVERIFY2(made.exitCode == 0, made.output.c_str());
  OdDbDatabasePtr db = OdDbDatabase::readFile(drawing);

  // Written whole, and again over the first; nothing else left. The plot area a view gives
  // turns the page: a wide area, a landscape page.
  const fs::path pdf = dir.path() / "plan.pdf";
  OdString error;
  for (bool wide : {false, true}) {
    host.front.setPlotAreaHandler(
        [wide](const OdDbDatabase&) -> std::optional<HostQtFront::PlotView> {
          if (!wide) return std::nullopt;
          return HostQtFront::PlotView{nullptr, HostViewBox{0, 0, 100, 20}};
        });
    QVERIFY2(host.front.plotToPdf(*db, OdString(pdf.wstring()), error), error.toUtf8().c_str());
    const std::string bytes = testsupport::readBytes(pdf);
    QVERIFY(bytes.rfind("%PDF-", 0) == 0);
    QVERIFY(bytes.find("%%EOF") != std::string::npos);
    // The title, in the UTF-16 form the writer gives every text.
    QVERIFY(bytes.find(std::string("/Title (\xfe\xff\0p\0l\0a\0n)", 19)) != std::string::npos);
    // A4 in points, the long side across for a landscape page.
    const bool landscape = bytes.find("/MediaBox [0 0 842.000000 595.000000]") != std::string::npos;
    const bool portrait = bytes.find("/MediaBox [0 0 595.000000 842.000000]") != std::string::npos;
    QVERIFY2(wide ? landscape : portrait, bytes.substr(bytes.find("/MediaBox"), 40).c_str());
  }
  host.front.setPlotAreaHandler(nullptr);
  QCOMPARE(filesIn(dir.path()), std::size_t(2));

  // A folder that cannot be one (a file stands in its way): one error naming the file and why.
  const fs::path blocked = drawing / "plan.pdf";
  QVERIFY(!host.front.plotToPdf(*db, OdString(blocked.wstring()), error));
  const QString text = QString::fromStdWString(error.str());
  QVERIFY2(
      text.contains(QString::fromStdString(blocked.string())) && text.contains("Not a directory"),
      qPrintable(text));
  // A plot the user made read-only stays as it is.
  const std::string before = testsupport::readBytes(pdf);
  fs::permissions(pdf, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  QVERIFY(!host.front.plotToPdf(*db, OdString(pdf.wstring()), error));
  QVERIFY2(QString::fromStdWString(error.str()).contains("read-only"), error.toUtf8().c_str());
  QVERIFY(testsupport::readBytes(pdf) == before);
  QCOMPARE(filesIn(dir.path()), std::size_t(2));
}

QTEST_MAIN(HostQtFrontTest)
#include "HostQtFrontTest.moc"
