// The module object and its plain exports: the classes it registers and deletes, in their
// order, and the answers of the exported functions without and with a host.

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "EntryTestSupport.h"
#include "OdError.h"
#include "OdRxDynamicLinker.h"
#include "StAppServices.h"
#include "StAttachedStandards.h"
#include "StError.h"
#include "StExports.h"
#include "StModule.h"
#include "StSettingsStorage.h"

namespace {

namespace fs = std::filesystem;
using entrytest::ModuleHost;

OdResult codeThrownBy(void (*action)()) {
  try {
    action();
  } catch (const OdError& e) {
    return e.code();
  }
  return eOk;
}

TEST(StModule, RegistersItsClassesInOrderAndDeletesThemInTheSameOrder) {
  std::vector<std::string> names;
  for (const auto& cls : st::StModule::registeredClasses()) names.push_back(cls.name);
  EXPECT_EQ(names, (std::vector<std::string>{"StAppServices", "StDbReactor", "StDbReaderWriter",
                                             "StBlockProxy", "StTableProxy", "StError", "StFix",
                                             "StDWSPlugin", "StManager"}));

  OdSmartPtr<st::StModule> module = OdRxObjectImpl<st::StModule>::createObject();
  module->initApp();
  for (const auto& cls : st::StModule::registeredClasses()) {
    ASSERT_NE(cls.desc(), nullptr) << cls.name;
    EXPECT_EQ(cls.desc()->name(), OdString::fromUtf8(cls.name));
  }
  module->uninitApp();
  for (const auto& cls : st::StModule::registeredClasses()) EXPECT_EQ(cls.desc(), nullptr);

  // Nothing left registered: a second uninitApp, like a second rxUninit, is the kernel's
  // error for a class that is not registered; the module can start again afterwards.
  EXPECT_EQ(codeThrownBy([] { OdRxObjectImpl<st::StModule>::createObject()->uninitApp(); }),
            eNotInitializedYet);
  EXPECT_EQ(codeThrownBy([] { st::StError::rxUninit(); }), 255);

  // A class registered already: initApp fails and undoes what it did, so it can run again.
  st::StError::rxInit();
  EXPECT_EQ(codeThrownBy([] { OdRxObjectImpl<st::StModule>::createObject()->initApp(); }),
            eAlreadyRegistered);
  EXPECT_EQ(st::StModule::registeredClasses().front().desc(), nullptr);
  st::StError::rxUninit();
  module->initApp();
  module->uninitApp();
}

TEST(StExports, AnswerWithoutAndWithSettings) {
  EXPECT_FALSE(stIsDatabaseHasAttachedStandards(nullptr));
  stCheckStandards();  // no host, no drawing: nothing to do, nothing thrown

  ModuleHost m;
  st::StSettingsStorage* settings = stSettingsStorage();
  ASSERT_NE(settings, nullptr);
  settings->setAutoFixCommands(0xFFFFFFFFu);
  EXPECT_FALSE(stIsCheckAllowed(0));
  EXPECT_TRUE(stIsCheckAllowed(-1));
  settings->setAutoFixCommands(st::kStCheckOnSave | st::kStCheckOnPlot);
  EXPECT_TRUE(stIsCheckAllowed(0x10));
  EXPECT_FALSE(stIsCheckAllowed(0x20 | 0x04 | 0x08));

  // The host finds both by name in the loaded module.
  EXPECT_EQ(odrxDynamicLinker()->findSymbol("stIsCheckAllowed"),
            reinterpret_cast<void*>(&stIsCheckAllowed));
  EXPECT_EQ(odrxDynamicLinker()->findSymbol("stCheckStandards"),
            reinterpret_cast<void*>(&stCheckStandards));
}

}  // namespace

namespace {

// The standards files a drawing file names, as stored.
std::vector<std::string> storedList(const fs::path& file) {
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  st::StDbReaderWriterPtr list = st::StDbReaderWriter::createObject();
  list->setDatabase(db.get());
  OdArray<OdString> files;
  list->readStandardFiles(files);
  std::vector<std::string> out;
  for (const OdString& f : files) out.push_back(f.toUtf8());
  return out;
}

TEST(StExports, TransmitPacksTheStandardsFoundAndTheDrawingNamesThemBesideItself) {
  ModuleHost m;
  const fs::path project = m.dir.path() / "project";
  fs::create_directories(project / "std");
  fs::create_directories(m.dir.path() / "elsewhere");
  entrytest::writeDrawing(project / "std" / "office.dws");
  const fs::path twin = entrytest::writeDrawing(m.dir.path() / "elsewhere" / "office.dws");
  const fs::path gone = m.dir.path() / "gone.dws";
  // Relative paths as stored by a user: found from the drawing's folder, wherever the host
  // was started.
  const std::vector<fs::path> stored{"std/office.dws", gone, twin};
  const fs::path plan = entrytest::writeDrawing(project / "plan.dxf", &stored);
  m.host.openDrawing(plan);

  OdArray<OdString> found;
  ASSERT_TRUE(stFindStandardsFiles(m.host.currentDocument()->database(), &found));
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(found[0].toUtf8(), (project / "std" / "office.dws").string());
  EXPECT_FALSE(stFindStandardsFiles(nullptr, &found));

  const fs::path package = m.dir.path() / "package";
  m.host.submit(OdString::fromUtf8("TRANSMIT " + package.string() + " "));
  const std::string& out = m.output();
  EXPECT_TRUE(fs::is_regular_file(package / "office.dws")) << out;
  EXPECT_EQ(std::distance(fs::directory_iterator(package), fs::directory_iterator()), 2);
  EXPECT_NE(out.find("standards file " + gone.string() + " is missing"), std::string::npos) << out;
  EXPECT_NE(out.find("standards file " + twin.string() + " has the name of another file"),
            std::string::npos)
      << out;
  // The package names its own copy; what it could not carry keeps the full path it had.
  EXPECT_EQ(storedList(package / "plan.dxf"),
            (std::vector<std::string>{"office.dws", gone.string(), twin.string()}));
  // The open drawing, and its file, still name what they named.
  EXPECT_EQ(storedList(plan),
            (std::vector<std::string>{"std/office.dws", gone.string(), twin.string()}));
}

}  // namespace
