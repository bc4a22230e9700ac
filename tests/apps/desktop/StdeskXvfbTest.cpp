// The real stdesk as a user runs it: refusing bad arguments, and in a real X server (Xvfb) once
// run by a script as a pipeline runs it and once driven by keystrokes as a person drives it,
// the window found by its title.

#include <QObject>
#include <QTest>
#include <fstream>

#include "TestSupport.h"

namespace fs = std::filesystem;
using testsupport::shellQuote;

namespace {
bool haveProgram(const char* name) {
  return testsupport::runCommand(std::string("command -v ") + name).exitCode == 0;
}

// A shell command run inside a fresh X server of its own, with the configuration in `dir`.
testsupport::ProcessResult inXServer(const fs::path& dir, const std::string& command) {
  const std::string env =
      "env -u QT_QPA_PLATFORM STAUDIT_CONFIG=" + shellQuote((dir / "config.json").string()) + " ";
  return testsupport::runCommand("cd " + shellQuote(dir.string()) + " && timeout 180 " + env +
                                 "xvfb-run -a -s '-screen 0 1280x900x24' sh -c " +
                                 shellQuote(command));
}

const std::string stdesk = shellQuote(std::string(STAUDIT_BIN_DIR) + "/stdesk");
}  // namespace

class StdeskXvfbTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    if (QTest::currentTestFunction() != QByteArray("refusesBadArguments") &&
        (!haveProgram("xvfb-run") || !haveProgram("xdotool")))
      QSKIP("Xvfb or xdotool is not installed (./build.sh test installs them)");
  }

  // Wrong arguments and scripts that are not text files get one line and exit 2, before any
  // window shows (the offscreen platform stands in for a screen).
  void refusesBadArguments() {
    const std::pair<std::string, std::string> cases[] = {
        {"--bogus", "stdesk: Unknown option 'bogus'."},
        {"--script /nonexistent/run.scr", "stdesk: cannot read script /nonexistent/run.scr: "},
        {"--script /dev/zero", "stdesk: cannot read script /dev/zero: it is not a regular file"},
    };
    for (const auto& [args, message] : cases) {
      auto run = testsupport::runCommand(stdesk + " " + args);
      QCOMPARE(run.exitCode, 2);
      QVERIFY2(run.output.find(message) != std::string::npos, run.output.c_str());
    }
  }

  // A script makes a layer, saves under a new name, plots, takes a picture and quits; the
  // command line comes back on standard output and QUIT names the drawing it discarded.
  void scriptedRun() {
    testsupport::TempDir dir;
    QVERIFY(testsupport::makeExamples(dir.path()).exitCode == 0);
    std::ofstream(dir.path() / "run.scr") << "; made by the end-to-end test\n"
                                             "-LAYER NEW Kitchen\n"
                                             "-LAYER COLOR 3 Kitchen\n"
                                             "SAVEAS saved.dxf\n"
                                             "PLOT plan.pdf\n"
                                             "SCREENSHOT shot.png\n"
                                             "-LAYER NEW Unsaved\n"
                                             "QUIT\n";
    auto run = inXServer(dir.path(), stdesk + " floor-plan.dxf --script run.scr");
    QVERIFY2(run.exitCode == 0, run.output.c_str());
    QVERIFY2(run.output.find("Command: SAVEAS") != std::string::npos, run.output.c_str());
    QVERIFY2(run.output.find("QUIT discarded the changes to " +
                             (dir.path() / "saved.dxf").string()) != std::string::npos,
             run.output.c_str());

    auto layer = testsupport::ezdxf("print(ezdxf.readfile(path).layers.get('Kitchen').dxf.color)",
                                    dir.path() / "saved.dxf");
    QCOMPARE(QString::fromStdString(layer.output), QString("3\n"));
    QVERIFY(testsupport::readBytes(dir.path() / "plan.pdf").rfind("%PDF", 0) == 0);
    QVERIFY(testsupport::readBytes(dir.path() / "shot.png").rfind("\x89PNG", 0) == 0);
    // The drawing opened is untouched: SAVEAS wrote elsewhere.
    auto original = testsupport::ezdxf("print(ezdxf.readfile(path).layers.has_entry('Kitchen'))",
                                       dir.path() / "floor-plan.dxf");
    QCOMPARE(QString::fromStdString(original.output), QString("False\n"));
  }

  // A person types on the command line of the window found by its title; the layer the
  // standards lack brings up the balloon at the status bar, which leaves the typing where it
  // was; QUIT after SAVE ends the program without a question.
  void typedByAPerson() {
    testsupport::TempDir dir;
    QVERIFY(testsupport::makeExamples(dir.path()).exitCode == 0);
    const std::string session =
        stdesk +
        " floor-plan.dxf > out.txt 2>&1 & pid=$!\n"
        "w=$(xdotool search --sync --onlyvisible --name '^floor-plan.dxf - stdesk$' | head -1)\n"
        "xdotool windowfocus --sync $w\n"
        "type() { printf '%s' \"$1\" | xdotool type --delay 20 --file -; xdotool key Return; }\n"
        "type '-LAYER NEW Typed'\n"
        "for i in $(seq 100); do\n"
        "  xdotool search --onlyvisible --name '^Standards Violation$' >/dev/null && break\n"
        "  sleep 0.1\n"
        "done\n"
        "xdotool search --onlyvisible --name '^Standards Violation$' >/dev/null &&\n"
        "  echo 'balloon shown'\n"
        "type SAVE; type QUIT\n"
        "wait $pid; status=$?; cat out.txt; exit $status\n";
    auto run = inXServer(dir.path(), session);
    QVERIFY2(run.exitCode == 0, run.output.c_str());
    QVERIFY2(run.output.find("balloon shown") != std::string::npos, run.output.c_str());
    auto layer = testsupport::ezdxf("print(ezdxf.readfile(path).layers.has_entry('Typed'))",
                                    dir.path() / "floor-plan.dxf");
    QCOMPARE(QString::fromStdString(layer.output), QString("True\n"));
  }
};

QTEST_GUILESS_MAIN(StdeskXvfbTest)
#include "StdeskXvfbTest.moc"
