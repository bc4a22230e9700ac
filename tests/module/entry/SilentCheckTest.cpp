// The silent check end to end: a real drawing checked against a real standards file by a
// plug-in created through the registry, when the host saves, with the report on the command
// line and the drawing saved afterwards; and the report's "Fix errors" leading to the
// interactive check.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "EntryTestSupport.h"
#include "StAppServices.h"
#include "StDialogs.h"
#include "StErrorAccumulatorImpl.h"
#include "StExports.h"
#include "StManagerCache.h"
#include "StManagerImpl.h"
#include "StSettingsStorage.h"

namespace {

namespace fs = std::filesystem;
using entrytest::count;
using entrytest::ModuleHost;

class SilentCheckTest : public ::testing::Test {
 protected:
  SilentCheckTest() : m({"EngineLayerPlugin"}) {
    const std::vector<fs::path> standards{entrytest::writeDrawing(
        m.dir.path() / "office.dws", nullptr, {{"Walls", 1}, {"Doors", 5}})};
    plan = entrytest::writeDrawing(m.dir.path() / "plan.dxf", &standards,
                                   {{"Walls", 3}, {"Doors", 2}, {"Windows", 4}});
    m.host.openDrawing(plan);
    stSettingsStorage()->setAutoFixCommands(st::kStCheckOnSave);
  }

  st::StManagerImpl* manager() {
    return dynamic_cast<st::StManagerImpl*>(
        st::stManagerCache()->getManager(m.host.currentDocument()->database()));
  }

  // The colours of the layers of the file `plan` as ezdxf reads them: "Doors=2 Walls=3 ...".
  std::string colorsByOracle() {
    const std::string script =
        "import sys, ezdxf\n"
        "doc = ezdxf.readfile(sys.argv[1])\n"
        "print(' '.join(f'{l.dxf.name}={l.dxf.color}' for l in sorted(doc.layers, key=lambda "
        "l: l.dxf.name) if l.dxf.name in ('Doors', 'Walls')))\n";
    auto result = testsupport::runCommand(std::string(STAUDIT_PYTHON) + " -c " +
                                          testsupport::shellQuote(script) + " " +
                                          testsupport::shellQuote(plan.string()));
    EXPECT_EQ(result.exitCode, 0) << result.output;
    return result.output;
  }

  ModuleHost m;
  fs::path plan;
};

TEST_F(SilentCheckTest, SaveChecksFirstReportsAndSaves) {
  ASSERT_NE(manager(), nullptr) << m.output();
  stSettingsStorage()->setAutoFixProperties(false);
  fs::remove(plan);
  m.host.submit(L"SAVE ");
  EXPECT_NE(m.output().find("Command: SAVE\n"
                            "standards check: 2 problem(s) not fixed, 0 fixed automatically\n"
                            "not fixed:\n  Doors (Layers)\n  Walls (Layers)\n"),
            std::string::npos)
      << m.output();
  ASSERT_TRUE(fs::is_regular_file(plan)) << m.output();
  EXPECT_EQ(colorsByOracle(), "Doors=2 Walls=3\n");
  EXPECT_EQ(manager()->mode(), 0);
  EXPECT_TRUE(manager()->isIdle());

  // Fixed automatically, the saved file has the standard colours.
  stSettingsStorage()->setAutoFixProperties(true);
  m.host.submit(L"SAVE ");
  EXPECT_NE(m.output().find("standards check: 0 problem(s) not fixed, 2 fixed automatically\n"
                            "fixed automatically:\n  Doors; fixed by Doors (Layers)\n"
                            "  Walls; fixed by Walls (Layers)\n"),
            std::string::npos)
      << m.output();
  EXPECT_EQ(colorsByOracle(), "Doors=5 Walls=1\n");

  // Nothing left to find: no report. Commands outside the set do not check.
  m.host.submit(L"SAVE PLOT ");
  EXPECT_EQ(count(m.output(), "standards check:"), 2u) << m.output();
  EXPECT_EQ(count(m.output(), "Command: SAVE"), 3u) << m.output();
}

// What the dialogs below saw: reports, unfixed errors reported, and for each interactive
// check the manager's mode and whether it was idle (its plug-ins starting afresh).
std::vector<std::string> g_seen;

TEST_F(SilentCheckTest, FixErrorsOpensTheInteractiveCheckAfresh) {
  stSettingsStorage()->setAutoFixProperties(false);
  g_seen.clear();
  st::StDialogs dialogs;
  dialogs.errorReport = [](st::StManager*, const st::StErrorAccumulatorImpl& found) {
    g_seen.push_back("report " + std::to_string(found.errors().size()));
    return 0;  // "Fix errors"
  };
  dialogs.checkStandards = [](st::StManager* manager) {
    auto* impl = dynamic_cast<st::StManagerImpl*>(manager);
    g_seen.push_back("check mode " + std::to_string(impl->mode()) +
                     (impl->isIdle() ? " idle" : " running"));
    return 1;
  };
  st::stSetDialogs(dialogs);
  stCheckStandards();
  st::stSetDialogs(st::StDialogs{});
  EXPECT_EQ(g_seen, (std::vector<std::string>{"report 2", "check mode 0 idle"}));
  EXPECT_EQ(count(m.output(), "standards check:"), 0u) << "the report was the dialog's";
}

}  // namespace
