// The module loaded by file name into a headless host: its two commands, and the boxes
// CHECKSTANDARDS answers a drawing with no standards, an empty list or a missing file with.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "EntryTestSupport.h"
#include "HostMessage.h"
#include "OdRxDynamicLinker.h"

namespace {

namespace fs = std::filesystem;
using entrytest::count;
using entrytest::ModuleHost;

const char* const kAssociateBox =
    "message box \"Associate Standards\" (warning):\n"
    "  There are no standards files associated with the current drawing.\n"
    "  Choose OK to associate standards files with the drawing, or Cancel to dismiss this "
    "alert.\n";
const char* const kMissingBox =
    "message box \"Missing Standards File\" (warning):\n"
    "  One or more standards files associated with this drawing can't be located.\n";

TEST(StModuleCommands, LoadingRegistersBothAndUnloadingRemovesThem) {
  ModuleHost m({"EngineLayerPlugin"});
  ASSERT_FALSE(odrxDynamicLinker()->getModule(L"EngineTestPlugins").isNull()) << m.output();
  HostCommandRegistry& commands = m.host.app().commands();
  for (const wchar_t* name : {L"CHECKSTANDARDS", L"STANDARDS"}) {
    const HostCommandRegistry::Command* command = commands.find(name);
    ASSERT_NE(command, nullptr) << OdString(name).toUtf8();
    EXPECT_EQ(command->group, OdString(L"HOST"));
    EXPECT_EQ(command->flags, 0);
  }
  ASSERT_TRUE(m.host.app().unloadModule(L"StandardsAudit"));
  EXPECT_EQ(commands.find(L"CHECKSTANDARDS"), nullptr);
  EXPECT_EQ(commands.find(L"STANDARDS"), nullptr);
  EXPECT_TRUE(odrxDynamicLinker()->getModule(L"EngineTestPlugins").isNull())
      << "the plug-in library the module loaded went with it";
}

TEST(StModuleCommands, CheckWithoutStandardsOffersToAssociateThem) {
  ModuleHost m;
  const std::vector<fs::path> none;
  m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "bare.dxf"));
  m.host.queueAnswer(kHostCancel);
  m.host.submit(L"CHECKSTANDARDS ");
  EXPECT_EQ(count(m.output(), kAssociateBox), 1u) << m.output();
  EXPECT_EQ(count(m.output(), "Command: STANDARDS"), 0u) << m.output();

  // An association that exists but lists nothing counts as none.
  m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "empty.dxf", &none));
  m.host.queueAnswer(kHostOk);
  m.host.submit(L"CHECKSTANDARDS ");
  EXPECT_EQ(count(m.output(), kAssociateBox), 2u) << m.output();
  EXPECT_EQ(count(m.output(), "Command: STANDARDS"), 1u) << m.output();
  EXPECT_EQ(count(m.output(), "the configure standards dialog needs the desktop host"), 1u)
      << m.output();
}

TEST(StModuleCommands, CheckWithAMissingStandardsFileSaysSo) {
  ModuleHost m;
  const std::vector<fs::path> standards{entrytest::writeDrawing(m.dir.path() / "office.dws"),
                                        m.dir.path() / "gone.dws"};
  m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "plan.dxf", &standards));
  m.host.queueAnswer(kHostOk);
  m.host.submit(L"CHECKSTANDARDS ");
  EXPECT_EQ(count(m.output(), kMissingBox), 1u) << m.output();
  EXPECT_EQ(count(m.output(), kAssociateBox), 0u) << m.output();
  EXPECT_EQ(count(m.output(), "Command: STANDARDS"), 1u) << m.output();

  // With every file there, the check goes on to its dialog.
  fs::copy_file(standards[0], standards[1]);
  m.host.submit(L"CHECKSTANDARDS ");
  EXPECT_EQ(count(m.output(), kMissingBox), 1u) << m.output();
  EXPECT_EQ(count(m.output(), "the check standards dialog needs the desktop host"), 1u)
      << m.output();
}

}  // namespace
