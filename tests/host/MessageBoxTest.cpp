// Message boxes and task dialogs in the headless front: scripted answers reach the command
// that asked, and every box is printed.

#include <gtest/gtest.h>

#include <string>

#include "HostEntryPoints.h"
#include "HostTestSupport.h"

namespace {

using hosttest::count;
using hosttest::QuietHost;

TEST(HostMessageBox, ScriptedAnswerReachesTheCommand) {
  QuietHost q;
  q.host.loadModule(L"HostTestModule");

  q.host.queueAnswer(kHostCancel);
  EXPECT_FALSE(q.host.runCommand(L"HOSTTESTASK").value);
  q.host.queueAnswer(kHostOk);
  EXPECT_TRUE(q.host.runCommand(L"HOSTTESTASK").value);

  const std::string& out = q.host.output();
  EXPECT_NE(out.find("message box \"Associate Standards\" (warning):\n  Choose OK to go on.\n"
                     "  answer: cancel (scripted)\nask got 2\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("  answer: ok (scripted)\nask got 1\n"), std::string::npos) << out;
  // OK sends HOSTTESTHELLO, which ran once the asking command was done.
  EXPECT_EQ(count(out, "Command: HOSTTESTHELLO"), 1u) << out;
  EXPECT_EQ(q.host.front().queuedAnswers(), 0u);
}

TEST(HostMessageBox, UnscriptedOrUnfitAnswersFallBackToTheDefault) {
  QuietHost q;
  q.host.loadModule(L"HostTestModule");
  HeadlessFront& front = q.host.front();

  EXPECT_TRUE(q.host.runCommand(L"HOSTTESTASK").value) << "the first button is the default";
  front.setDefaultAnswer(kHostCancel);
  EXPECT_FALSE(q.host.runCommand(L"HOSTTESTASK").value);
  front.queueAnswer(kHostYes);  // an OK/Cancel box has no Yes
  EXPECT_FALSE(q.host.runCommand(L"HOSTTESTASK").value);
  EXPECT_NE(q.host.output().find("scripted answer yes is not one this box gives"),
            std::string::npos)
      << q.host.output();
  EXPECT_EQ(count(q.host.output(), "answer: cancel (default)"), 2u);
}

TEST(HostMessageBox, TaskDialogAnswersWithAButtonId) {
  QuietHost q;
  HostTaskDialog dialog;
  dialog.windowTitle = L"Standards Audit";
  dialog.mainInstruction = L"Standards - Violation Found";
  dialog.icon = HostIcon::kWarning;
  dialog.commandLinks = true;
  dialog.buttons = {{1004, L"Choose a standard object\nThe dialog opens."},
                    {1005, L"Keep non standard object\nThe object stays."}};

  q.host.queueAnswer(1005);
  EXPECT_EQ(hostServices()->taskDialog(dialog), 1005);
  q.host.queueAnswer(kHostCancel);
  EXPECT_EQ(hostServices()->taskDialog(dialog), kHostCancel);
  dialog.defaultButton = 1005;
  EXPECT_EQ(hostServices()->taskDialog(dialog), 1005);

  const std::string& out = q.host.output();
  EXPECT_NE(out.find("task dialog \"Standards Audit\" (warning):\n  Standards - Violation Found\n"
                     "  [1004] Choose a standard object\n  The dialog opens.\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("answer: 1005 (default)"), std::string::npos) << out;
}

TEST(HostMessageBox, AnswerNamesParse) {
  int answer = 0;
  EXPECT_TRUE(hostParseAnswer(L" Cancel ", answer));
  EXPECT_EQ(answer, kHostCancel);
  EXPECT_TRUE(hostParseAnswer(L"1004", answer));
  EXPECT_EQ(answer, 1004);
  EXPECT_FALSE(hostParseAnswer(L"maybe", answer));
  EXPECT_FALSE(hostParseAnswer(L"12abc", answer));
  EXPECT_FALSE(hostParseAnswer(L"", answer));
}

}  // namespace
