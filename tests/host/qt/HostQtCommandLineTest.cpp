// The command-line window driven as a person drives it: commands typed and sent to the real
// host, a command's question answered or cancelled, history and completion.

#include <QAbstractItemView>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <filesystem>
#include <functional>

#include "HostQtCommandLine.h"
#include "QtHostSupport.h"
#include "UICmdProcess.h"

using qthosttest::QtHost;

namespace {
// What the asking command last got.
struct Asked {
  bool got = false;
  bool ran = false;
  OdString answer;
};
Asked g_asked;

// A command that asks for a name, as a module's command asks on the command line.
class AskCommand : public UICmdProcess {
 public:
  bool execute() override {
    g_asked.ran = true;
    g_asked.got = HostApplication::running().getString(L"Layer name: ", g_asked.answer);
    return g_asked.got;
  }
};

// The command line and a host it talks to, shown.
struct Setup {
  QtHost host;
  HostQtCommandLine line{&host.app.commands()};
  bool active = false;
  Setup() {
    host.front.setCommandLine(&line);
    host.app.commands().add(L"ASKNAME", L"TEST", kHostCmdModal, &createCommand<AskCommand>);
    line.resize(640, 200);
    line.show();
    line.activateWindow();
    active = QTest::qWaitForWindowActive(&line);
    line.input()->setFocus();
    g_asked = Asked{};
  }
  // Types `text` and Enter, and lets the command run (it may wait inside).
  void type(const QString& text) {
    QTest::keyClicks(line.input(), text);
    QTest::keyClick(line.input(), Qt::Key_Return);
    QTest::qWait(1);
  }
  QString prompt() const {
    for (QLabel* label : line.findChildren<QLabel*>())
      if (label->buddy() == line.input()) return label->text();
    return {};
  }
};

// Once `line` waits for input (within about five seconds), runs `act` from inside its wait, as
// a person answers the question the command asked.
void whenWaiting(HostQtCommandLine* line, std::function<void()> act, int triesLeft = 250) {
  QTimer::singleShot(20, line, [line, act = std::move(act), triesLeft]() mutable {
    if (line->isWaiting())
      act();
    else if (triesLeft > 0)
      whenWaiting(line, std::move(act), triesLeft - 1);
  });
}

int occurrences(const QString& text, const QString& what) {
  return static_cast<int>(text.count(what));
}
}  // namespace

class HostQtCommandLineTest : public QObject {
  Q_OBJECT

 private slots:
  void commandAsksAndGetsTheWordTyped();
  void escapeCancelsAWaitingCommandElseClearsTheLine();
  void upAndDownWalkTheHistory();
  void commandNamesComplete();
};

void HostQtCommandLineTest::commandAsksAndGetsTheWordTyped() {
  Setup s;
  QVERIFY(s.active);
  QCOMPARE(s.prompt(), QStringLiteral("Command: "));
  QString promptWhileWaiting;
  bool nestedWait = true;
  whenWaiting(&s.line, [&] {
    promptWhileWaiting = s.prompt();
    QString ignored;
    nestedWait = s.line.waitForLine(ignored);
    QTest::keyClicks(s.line.input(), "Walls");
    QTest::keyClick(s.line.input(), Qt::Key_Return);
  });
  s.type("askname");
  QTRY_VERIFY(g_asked.ran && !s.line.isWaiting());
  QVERIFY(g_asked.got);
  QCOMPARE(g_asked.answer, OdString(L"Walls"));
  QCOMPARE(promptWhileWaiting, QStringLiteral("Layer name: "));
  QVERIFY(!nestedWait);
  QCOMPARE(s.prompt(), QStringLiteral("Command: "));

  // Each line once, after its prompt; the host's own naming of the command is not repeated.
  s.type("NOSUCH");
  QTRY_VERIFY(s.line.transcript().contains("unknown command"));
  QCOMPARE(s.line.transcript(), QStringLiteral("Command: askname\n"
                                               "Layer name: Walls\n"
                                               "Command: NOSUCH\n"
                                               "unknown command \"NOSUCH\"\n"));
  std::filesystem::create_directories("/tmp/staudit-qt-shots");
  s.line.grab().save("/tmp/staudit-qt-shots/command-line.png");

  // A second command typed on the same line runs after the first, its name shown by the host.
  s.type("ASKNAME Doors ASKNAME Windows");
  QTRY_VERIFY(s.line.transcript().endsWith("Layer name: Windows\n"));
  QCOMPARE(occurrences(s.line.transcript(), "Command: ASKNAME\n"), 1);
  QCOMPARE(g_asked.answer, OdString(L"Windows"));
}

void HostQtCommandLineTest::escapeCancelsAWaitingCommandElseClearsTheLine() {
  Setup s;
  QVERIFY(s.active);
  whenWaiting(&s.line, [&] {
    QTest::keyClicks(s.line.input(), "Wal");
    QTest::keyClick(s.line.input(), Qt::Key_Escape);
  });
  s.type("ASKNAME");
  QTRY_VERIFY(g_asked.ran && !s.line.isWaiting());
  QVERIFY(!g_asked.got);
  QVERIFY(s.line.transcript().endsWith("Layer name: *cancel*\n"));
  QVERIFY(s.line.input()->text().isEmpty());

  QTest::keyClicks(s.line.input(), "PLOT");
  QTest::keyClick(s.line.input(), Qt::Key_Escape);
  QVERIFY(s.line.input()->text().isEmpty());

  // The window closing under a waiting command cancels it.
  g_asked = Asked{};
  auto* doomed = new HostQtCommandLine(&s.host.app.commands());
  s.host.front.setCommandLine(doomed);
  doomed->show();
  whenWaiting(doomed, [&] { delete doomed; });
  QTest::keyClicks(doomed->input(), "ASKNAME");
  QTest::keyClick(doomed->input(), Qt::Key_Return);
  QTRY_VERIFY(g_asked.ran);
  QVERIFY(!g_asked.got);
}

void HostQtCommandLineTest::upAndDownWalkTheHistory() {
  Setup s;
  QVERIFY(s.active);
  whenWaiting(&s.line, [&] {
    QTest::keyClicks(s.line.input(), "Walls");
    QTest::keyClick(s.line.input(), Qt::Key_Return);
  });
  s.type("ASKNAME");
  QTRY_VERIFY(g_asked.got);
  s.type("NOSUCH");
  s.type("NOSUCH");  // repeated lines are kept once
  QCOMPARE(s.line.history(), QStringList({"ASKNAME", "Walls", "NOSUCH"}));

  QLineEdit* input = s.line.input();
  const char* expected[] = {"NOSUCH", "Walls", "ASKNAME", "ASKNAME"};
  for (const char* text : expected) {
    QTest::keyClick(input, Qt::Key_Up);
    QCOMPARE(input->text(), QString(text));
  }
  const char* back[] = {"Walls", "NOSUCH", ""};
  for (const char* text : back) {
    QTest::keyClick(input, Qt::Key_Down);
    QCOMPARE(input->text(), QString(text));
  }
}

void HostQtCommandLineTest::commandNamesComplete() {
  Setup s;
  QVERIFY(s.active);
  QLineEdit* input = s.line.input();
  // Tab completes as far as the names agree, then the whole name.
  QTest::keyClicks(input, "sa");
  QCOMPARE(input->completer()->completionCount(), 2);  // SAVE, SAVEAS
  QTest::keyClick(input, Qt::Key_Tab);
  QCOMPARE(input->text(), QStringLiteral("SAVE"));
  QVERIFY(input->hasFocus());
  input->clear();
  QTest::keyClicks(input, "askn");
  QTest::keyClick(input, Qt::Key_Tab);
  QCOMPARE(input->text(), QStringLiteral("ASKNAME"));
  input->clear();

  // A command registered later is offered as soon as one types.
  s.host.app.commands().add(L"ASKTWICE", L"TEST", kHostCmdModal, &createCommand<AskCommand>);
  QTest::keyClicks(input, "ask");
  QCOMPARE(input->completer()->completionCount(), 2);
  QTRY_VERIFY(input->completer()->popup()->isVisible());
  QTest::keyClick(input->completer()->popup(), Qt::Key_Tab);  // keys go to an open popup
  QCOMPARE(input->text(), QStringLiteral("ASK"));
  QTest::keyClicks(input, "t");
  QTest::keyClick(input, Qt::Key_Tab);
  QCOMPARE(input->text(), QStringLiteral("ASKTWICE"));
  // A name chosen in the popup is sent, and the line is empty afterwards.
  input->clear();
  QTest::keyClicks(input, "ask");
  QTRY_VERIFY(input->completer()->popup()->isVisible());
  QTest::keyClick(input->completer()->popup(), Qt::Key_Down);
  QTest::keyClick(input->completer()->popup(), Qt::Key_Down);
  QCOMPARE(input->text(), QStringLiteral("ASKTWICE"));
  whenWaiting(&s.line, [&] { QTest::keyClick(input, Qt::Key_Escape); });
  QTest::keyClick(input->completer()->popup(), Qt::Key_Return);
  QVERIFY(input->text().isEmpty() && !input->completer()->popup()->isVisible());
  QTRY_VERIFY(g_asked.ran);
  QVERIFY(s.line.transcript().startsWith("Command: ASKTWICE\n"));

  // Words after the command are not command names.
  QTest::keyClicks(input, "ASKTWICE");
  QTest::keyClicks(input, " sa");
  QTest::keyClick(input, Qt::Key_Tab);
  QCOMPARE(input->text(), QStringLiteral("ASKTWICE sa"));
}

QTEST_MAIN(HostQtCommandLineTest)
#include "HostQtCommandLineTest.moc"
