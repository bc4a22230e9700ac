// The command line as a module uses it: a module loaded by the host registers commands that
// command-line text then runs, in order, with the input-context reactor told after each.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "HostApp.h"
#include "HostEdInputContextReactor.h"
#include "HostEntryPoints.h"
#include "HostTestSupport.h"
#include "HostUser.h"
#include "OdResBuf.h"

namespace {

using hosttest::count;
using hosttest::QuietHost;

const OdString kModule = L"HostTestModule.dll";

class CommandLog : public HostEdInputContextReactor {
 public:
  void afterCommand(const OdString& name) override { log.push_back("after " + name.toUtf8()); }
  void commandWillStart(const OdString& name) override { log.push_back("start " + name.toUtf8()); }
  void commandFailed(const OdString& name, const OdString& message) override {
    log.push_back("failed " + name.toUtf8() + ": " + message.toUtf8());
  }
  std::vector<std::string> log;
};

TEST(HostCommandLine, ModuleCommandRunsOnceItsTextIsSubmitted) {
  QuietHost q;
  q.host.loadModule(kModule);
  q.host.submit(L"hosttesthello");
  EXPECT_EQ(count(q.host.output(), "hello"), 0u) << "a word without a trailing blank waits";
  q.host.submit(L" ");
  EXPECT_NE(q.host.output().find("hello " + HostUser::loginName().toUtf8() + "\n"),
            std::string::npos)
      << q.host.output();

  // Unloading the module takes its commands away with it.
  ASSERT_TRUE(q.host.app().unloadModule(L"HostTestModule"));
  EXPECT_EQ(q.host.app().commands().find(L"HOSTTESTHELLO"), nullptr);
  q.host.submit(L"HOSTTESTHELLO ");
  EXPECT_NE(q.host.output().find("unknown command \"HOSTTESTHELLO\""), std::string::npos);
}

TEST(HostCommandLine, TextSentByARunningCommandRunsAfterIt) {
  QuietHost q;
  q.host.loadModule(kModule);
  CommandLog reactor;
  hostServices()->addInputContextReactor(&reactor);
  q.host.submit(L"HOSTTESTCHAIN ");
  hostServices()->removeInputContextReactor(&reactor);

  const std::string& out = q.host.output();
  auto end = out.find("chain end");
  auto hello = out.find("Command: HOSTTESTHELLO");
  ASSERT_NE(end, std::string::npos) << out;
  ASSERT_NE(hello, std::string::npos) << out;
  EXPECT_LT(end, hello);
  EXPECT_EQ(reactor.log, (std::vector<std::string>{"start HOSTTESTCHAIN", "after HOSTTESTCHAIN",
                                                   "start HOSTTESTHELLO", "after HOSTTESTHELLO"}));
}

TEST(HostCommandLine, FailuresAreReportedAndTheNextCommandsStillRun) {
  QuietHost q;
  q.host.loadModule(kModule);
  CommandLog reactor;
  hostServices()->addInputContextReactor(&reactor);
  q.host.submit(L"HOSTTESTFAIL NOSUCH \"HOSTTESTHELLO\"\n");
  hostServices()->removeInputContextReactor(&reactor);

  const std::string& out = q.host.output();
  EXPECT_NE(out.find("command HOSTTESTFAIL failed: the test command fails on purpose\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("unknown command \"NOSUCH\"\n"), std::string::npos) << out;
  EXPECT_EQ(count(out, "hello "), 1u) << out;
  EXPECT_EQ(reactor.log,
            (std::vector<std::string>{
                "start HOSTTESTFAIL", "failed HOSTTESTFAIL: the test command fails on purpose",
                "after HOSTTESTFAIL", "start HOSTTESTHELLO", "after HOSTTESTHELLO"}));
}

TEST(HostCommandLine, ScriptOpensADrawingAnswersABoxAndSetsAVariable) {
  QuietHost q;
  q.host.loadModule(kModule);
  auto drawing = hosttest::writeDrawing(q.dir.path() / "my drawing.dxf");
  auto script = q.dir.path() / "check.scr";
  std::ofstream(script) << "; a comment line\n"
                        << "OPEN \"" << drawing.string() << "\"\n"
                        << "ANSWER cancel\n"
                        << "HOSTTESTASK\n"
                        << "SETVAR STANDARDSVIOLATION 1\n"
                        << "SETVAR STANDARDSVIOLATION 7\n";
  ASSERT_TRUE(q.host.runScript(script));

  ASSERT_NE(q.host.currentDocument(), nullptr) << q.host.output();
  EXPECT_EQ(q.host.currentDocument()->title(), OdString(L"my drawing.dxf"));
  EXPECT_NE(q.host.output().find("ask got 2\n"), std::string::npos) << q.host.output();
  EXPECT_EQ(count(q.host.output(), "hello "), 0u) << "cancel sends no further command";
  OdResBufPtr value = hostServices()->getSysVar(L"standardsviolation");
  ASSERT_FALSE(value.isNull());
  EXPECT_EQ(value->getInt32(), 1) << "the out-of-range 7 is refused";
  EXPECT_NE(q.host.output().find("value 7 of system variable STANDARDSVIOLATION is outside 0..2"),
            std::string::npos)
      << q.host.output();

  EXPECT_FALSE(q.host.runScript(q.dir.path() / "missing.scr"));
  EXPECT_NE(q.host.output().find("cannot read script"), std::string::npos);
}

TEST(HostEntryPoints, AnswerForTheRunningHostOnly) {
  EXPECT_EQ(get_host_funcptr(kHostFuncServices), nullptr);
  EXPECT_EQ(GetApp(), nullptr);
  EXPECT_EQ(new_ICmdFactory(), nullptr);

  HostAppPtr app;
  {
    QuietHost q;
    EXPECT_EQ(hostServices(), static_cast<HostServices*>(&q.host.app()));
    EXPECT_EQ(hostDocManager(), &q.host.app().documents());
    EXPECT_EQ(get_host_funcptr(1), nullptr);
    EXPECT_THROW(HeadlessHost(HeadlessHost::Options{q.dir.path() / "other.json", nullptr}),
                 OdError);

    app.attach(GetApp());
    ASSERT_FALSE(app.isNull());
    HostConfigKeyPtr root = app->configuration();
    ASSERT_FALSE(root.isNull());
    EXPECT_FALSE(root->openSubkey("cmddata", false).isNull());
  }
  // Held past the host's end, the application object answers null instead of dangling.
  EXPECT_EQ(app->configuration(), nullptr);
  EXPECT_EQ(get_host_funcptr(kHostFuncDocManager), nullptr);
}

}  // namespace
