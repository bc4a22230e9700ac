// The host's file commands and the closing question over real drawing files: a save never
// overwrites a file someone else changed without asking, a failed save keeps the old file and
// the changes, and a changed drawing is not closed without a question.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "HostFrontend.h"
#include "HostPaths.h"
#include "HostTestSupport.h"

namespace {

namespace fs = std::filesystem;
using hosttest::count;
using hosttest::QuietHost;
using testsupport::readBytes;

std::string quoted(const fs::path& path) {
  return "\"" + path.string() + "\"";
}

bool hasLayer(const fs::path& file, const wchar_t* name) {
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  return OdDbLayerTablePtr(db->getLayerTableId().safeOpenObject())->has(name);
}

TEST(HostFileCommands, SaveReplacesAFileChangedOnDiskOnlyWhenTheUserAgrees) {
  QuietHost q;
  const fs::path plan = hosttest::writePlan(q.dir.path() / "plan.dxf");
  HostDocument* doc = q.host.openDrawing(plan);
  q.host.submit(L"-LAYER NEW Mine\n");
  // Another program writes the file meanwhile.
  OdDbDatabasePtr theirs = OdDbDatabase::createEmpty();
  testsupport::addLayer(*theirs, L"Theirs", 2);
  theirs->writeFile(plan);
  const std::string theirBytes = readBytes(plan);

  q.host.submit(L"SAVE\n");
  EXPECT_NE(q.host.output().find("message box \"Save\" (warning):\n"
                                 "  plan.dxf was changed on disk since it was opened.\n"
                                 "  Replace it with this drawing?\n  answer: no (default)\n"
                                 "SAVE: plan.dxf was left as it is on disk"),
            std::string::npos)
      << q.host.output();
  EXPECT_EQ(readBytes(plan), theirBytes);
  EXPECT_TRUE(doc->isModified());

  q.host.submit(L"ANSWER yes\nSAVE\n");
  EXPECT_TRUE(hasLayer(plan, L"Mine")) << q.host.output();
  EXPECT_FALSE(hasLayer(plan, L"Theirs"));
  EXPECT_FALSE(doc->isModified());
  // The file is as this save left it: the next one asks nothing.
  q.host.submit(L"-LAYER NEW Again\nSAVE\n");
  EXPECT_TRUE(hasLayer(plan, L"Again"));
  EXPECT_EQ(count(q.host.output(), "message box"), 2u) << q.host.output();
}

TEST(HostFileCommands, AFailedSaveKeepsTheOldFileAndTheChangesAndSaveAsChoosesTheForm) {
  QuietHost q;
  const fs::path plan = hosttest::writePlan(q.dir.path() / "plan.dxf");
  HostDocument* doc = q.host.openDrawing(plan);
  q.host.submit(L"-LAYER NEW Mine\n");
  fs::permissions(plan, fs::perms::owner_read | fs::perms::group_read);
  const std::string before = readBytes(plan);

  q.host.submit(
      OdString::fromUtf8("SAVE\nSAVEAS " + quoted(q.dir.path() / "gone" / "x.dxf") + "\n"));
  const std::string& out = q.host.output();
  EXPECT_NE(out.find("SAVE: cannot save plan.dxf: "), std::string::npos) << out;
  EXPECT_NE(out.find("read-only"), std::string::npos) << out;
  EXPECT_NE(out.find("SAVEAS: cannot save plan.dxf: "), std::string::npos) << out;
  EXPECT_EQ(readBytes(plan), before);
  EXPECT_EQ(q.host.currentDocument(), doc);
  EXPECT_EQ(doc->title(), OdString(L"plan.dxf"));
  EXPECT_TRUE(doc->isModified());

  // The drawing's own form, then each form by name (an option word before the name).
  const fs::path same = q.dir.path() / "same.dxf";
  const fs::path binary = q.dir.path() / "binary.dxf";
  const fs::path ascii = q.dir.path() / "ascii.dxf";
  q.host.submit(OdString::fromUtf8("SAVEAS " + quoted(same) + "\nSAVEAS binary " + quoted(binary) +
                                   "\nSAVEAS ASCII " + quoted(ascii) + "\n"));
  EXPECT_EQ(readBytes(same).rfind("AutoCAD Binary DXF", 0), std::string::npos);
  EXPECT_EQ(readBytes(binary).rfind("AutoCAD Binary DXF", 0), 0u) << q.host.output();
  EXPECT_EQ(readBytes(ascii).rfind("AutoCAD Binary DXF", 0), std::string::npos);
  EXPECT_EQ(doc->title(), OdString(L"ascii.dxf"));
  EXPECT_FALSE(doc->isModified());
  const auto read = testsupport::ezdxf("print('Mine' in ezdxf.readfile(path).layers)\n", binary);
  EXPECT_EQ(read.output, "True\n") << read.output;
}

// A front that plots as a desktop front would, writing what it was given.
class PlottingFront : public HeadlessFront {
 public:
  PlottingFront() : HeadlessFront(nullptr) {}
  bool plotToPdf(OdDbDatabase& db, const OdString& path, OdString& error) override {
    if (db.countEntities() == 0) {
      error = L"the drawing is empty";
      return false;
    }
    std::ofstream(HostPaths::toPath(path)) << "%PDF-1.4\n";
    return true;
  }
};

TEST(HostFileCommands, PlotGoesThroughTheFront) {
  {
    QuietHost q;
    q.host.openDrawing(hosttest::writePlan(q.dir.path() / "plan.dxf"));
    q.host.submit(OdString::fromUtf8("PLOT " + quoted(q.dir.path() / "plan.pdf") + "\n"));
    EXPECT_EQ(count(q.host.output(), "PLOT: cannot plot: this host has no plotter\n"), 1u)
        << q.host.output();
    EXPECT_FALSE(fs::exists(q.dir.path() / "plan.pdf"));
  }
  testsupport::TempDir dir;
  PlottingFront front;
  HostApplication app(front, {dir.path() / "config.json"});
  app.documents().openDocument(
      OdString::fromUtf8(hosttest::writePlan(dir.path() / "plan.dxf").string()));
  const fs::path pdf = dir.path() / "plan.pdf";
  app.sendCommand(OdString::fromUtf8("PLOT " + quoted(pdf) + "\nNEW\nPLOT empty.pdf\n"));
  EXPECT_EQ(count(front.output(), "PLOT: wrote " + pdf.string() + "\n"), 1u) << front.output();
  EXPECT_EQ(count(front.output(), "PLOT: cannot plot: the drawing is empty\n"), 1u);
  EXPECT_TRUE(fs::exists(pdf));
}

TEST(HostCloseQuestion, ChangedDrawingsAreSavedDroppedOrKeptAsAnswered) {
  QuietHost q;
  const fs::path a = hosttest::writePlan(q.dir.path() / "a.dxf");
  HostDocument* doc = q.host.openDrawing(a);
  q.host.submit(L"-LAYER NEW Mine\nANSWER cancel\nCLOSE\n");
  EXPECT_NE(q.host.output().find("message box \"Close\" (question):\n"
                                 "  Save changes to a.dxf?\n  answer: cancel (scripted)\n"
                                 "a.dxf was kept open\n"),
            std::string::npos)
      << q.host.output();
  EXPECT_EQ(q.host.currentDocument(), doc);
  EXPECT_TRUE(doc->isModified());

  q.host.submit(L"ANSWER no\nCLOSE\n");
  EXPECT_EQ(q.host.currentDocument(), nullptr);
  EXPECT_FALSE(hasLayer(a, L"Mine")) << "the changes were dropped";

  // Yes saves; then an unchanged drawing closes without a question.
  q.host.openDrawing(a);
  q.host.submit(L"-LAYER NEW Mine\nANSWER yes\nCLOSE\n");
  EXPECT_EQ(q.host.currentDocument(), nullptr) << q.host.output();
  EXPECT_TRUE(hasLayer(a, L"Mine"));
  q.host.openDrawing(a);
  q.host.submit(L"CLOSE\n");
  EXPECT_EQ(q.host.currentDocument(), nullptr);
  EXPECT_EQ(count(q.host.output(), "message box"), 3u) << q.host.output();

  // A new drawing is named when it is saved; a cancelled name saves nothing. Yes is the
  // default answer.
  const fs::path fresh = q.dir.path() / "fresh.dxf";
  q.host.submit(L"NEW\n-LAYER NEW Fresh\nSAVE\n");
  ASSERT_NE(q.host.currentDocument(), nullptr);
  EXPECT_TRUE(q.host.currentDocument()->isUntitled());
  q.host.submit(OdString::fromUtf8("CLOSE " + quoted(fresh) + "\n"));
  EXPECT_EQ(q.host.currentDocument(), nullptr) << q.host.output();
  EXPECT_TRUE(hasLayer(fresh, L"Fresh"));

  // A failed save keeps the drawing open.
  doc = q.host.openDrawing(a);
  q.host.submit(L"-LAYER NEW Locked\n");
  fs::permissions(a, fs::perms::owner_read);
  q.host.submit(L"CLOSE\n");
  EXPECT_EQ(q.host.currentDocument(), doc);
  EXPECT_TRUE(doc->isModified());
  EXPECT_NE(q.host.output().find("CLOSE: cannot save a.dxf: "), std::string::npos);
}

}  // namespace
