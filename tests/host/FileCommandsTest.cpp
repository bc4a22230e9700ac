// The host's file commands over real drawings: they do their work with no module loaded, and
// with a module that exports the silent check they run it first, for their own bit only.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "HostSilentCheck.h"
#include "HostTestSupport.h"
#include "OdDbDictionary.h"
#include "OdDbXrecord.h"

namespace {

namespace fs = std::filesystem;
using hosttest::count;
using hosttest::QuietHost;

// A new drawing that names `standards` as its standards files, written to `file`.
fs::path writeAssociatedDrawing(const fs::path& file, const std::vector<fs::path>& standards) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbDictionaryPtr nod = db->getNamedObjectsDictionaryId().safeOpenObject(OdDb::kForWrite);
  OdDbDictionaryPtr list = OdDbDictionary::createObject();
  nod->setAt(L"AcStStandard", list.get());
  for (std::size_t i = 0; i < standards.size(); ++i) {
    OdDbXrecordPtr record = OdDbXrecord::createObject();
    OdResBufPtr path = OdResBuf::newRb(1, OdString::fromUtf8(standards[i].string()));
    record->setFromRbChain(path.get());
    list->setAt(OdString::format(L"%d", int(i)), record.get());
  }
  list.release();
  nod.release();
  db->writeFile(file);
  return file;
}

TEST(HostFileCommands, WorkWithoutAnyModuleToAsk) {
  QuietHost q;
  EXPECT_FALSE(q.host.runCommand(L"SAVE").value);
  EXPECT_NE(q.host.output().find("SAVE: no document is open"), std::string::npos);

  fs::path drawing = hosttest::writeDrawing(q.dir.path() / "plan.dxf");
  HostDocument* doc = q.host.openDrawing(drawing);
  fs::remove(drawing);  // SAVE must write it again
  EXPECT_TRUE(q.host.runCommand(L"SAVE").value) << q.host.output();
  EXPECT_TRUE(fs::is_regular_file(drawing));

  fs::path copy = q.dir.path() / "copy.dxf";
  q.host.submit(OdString::fromUtf8("SAVEAS " + copy.string() + " "));
  EXPECT_TRUE(fs::is_regular_file(copy));
  EXPECT_EQ(doc->title(), OdString(L"copy.dxf")) << "the document takes the new name";
  EXPECT_FALSE(hostRunSilentCheck(kHostCheckSave)) << "no module answers";

  EXPECT_FALSE(q.host.runCommand(L"PLOT").value);
  EXPECT_FALSE(q.host.runCommand(L"IMPORT").value);
  const std::string& out = q.host.output();
  EXPECT_NE(out.find("PLOT: this host has no plotter"), std::string::npos) << out;
  EXPECT_NE(out.find("IMPORT: this host imports no other file formats"), std::string::npos);
  EXPECT_EQ(out.find("check"), std::string::npos) << out;
}

TEST(HostFileCommands, AskTheModuleWithTheirOwnBitBeforeWorking) {
  QuietHost q;
  q.host.loadModule(L"HostTestModule");
  fs::path drawing = hosttest::writeDrawing(q.dir.path() / "plan.dxf");
  q.host.openDrawing(drawing);

  q.host.submit(L"HOSTTESTALLOW 0x12 ");  // save and plot
  fs::path copy = q.dir.path() / "other.dxf";
  q.host.submit(OdString::fromUtf8("SAVEAS " + copy.string() + " SAVE PLOT IMPORT "));
  const std::string& out = q.host.output();
  // SAVEAS (0x20) and IMPORT (0x04) are not in the set; SAVE and PLOT check the drawing, SAVE
  // before it writes (the check still sees the name SAVEAS gave).
  EXPECT_EQ(count(out, "test check of"), 2u) << out;
  const auto checked = out.find("Command: SAVE\ntest check of " + copy.string());
  EXPECT_NE(checked, std::string::npos) << out;
  EXPECT_LT(out.find("test check of", out.find("Command: PLOT")),
            out.find("PLOT: this host has no plotter"))
      << out;

  // A check that fails is reported, and the command still does its work.
  fs::remove(copy);
  q.host.submit(L"HOSTTESTALLOW 0x102 SAVE ");
  EXPECT_NE(out.find("standards check failed: the test check fails on purpose"), std::string::npos)
      << out;
  EXPECT_TRUE(fs::is_regular_file(copy));
}

TEST(HostFileCommands, TransmitPacksTheDrawingWithTheStandardsItNames) {
  QuietHost q;
  q.host.loadModule(L"HostTestModule");
  fs::path office = hosttest::writeDrawing(q.dir.path() / "office.dws");
  fs::create_directories(q.dir.path() / "elsewhere");
  fs::path twin = hosttest::writeDrawing(q.dir.path() / "elsewhere" / "office.dws");
  fs::path gone = q.dir.path() / "gone.dws";
  fs::path drawing = writeAssociatedDrawing(q.dir.path() / "plan.dxf", {office, gone, twin});
  q.host.openDrawing(drawing);

  q.host.submit(L"HOSTTESTALLOW 0x08 ");
  fs::path package = q.dir.path() / "out" / "package";
  q.host.submit(OdString::fromUtf8("TRANSMIT " + package.string() + " "));
  const std::string& out = q.host.output();
  EXPECT_NE(out.find("test check of"), std::string::npos) << out;
  EXPECT_TRUE(fs::is_regular_file(package / "plan.dxf"));
  EXPECT_TRUE(fs::is_regular_file(package / "office.dws"));
  EXPECT_EQ(std::distance(fs::directory_iterator(package), fs::directory_iterator()), 2);
  EXPECT_NE(out.find("standards file " + gone.string() + " is missing"), std::string::npos) << out;
  EXPECT_NE(out.find("standards file " + twin.string() + " has the name of another file"),
            std::string::npos)
      << out;
  // The packed drawing still names its standards, and the drawing stays the open one.
  OdDbDatabasePtr packed = OdDbDatabase::readFile(package / "plan.dxf");
  OdDbDictionaryPtr nod = packed->getNamedObjectsDictionaryId().safeOpenObject();
  EXPECT_TRUE(nod->has(L"AcStStandard"));
  EXPECT_EQ(q.host.currentDocument()->fileName(), OdString::fromUtf8(drawing.string()));
}

}  // namespace
