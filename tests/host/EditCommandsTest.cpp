// The edit commands typed as a user or a script types them, on real drawings, with what they
// saved read back by an independent DXF reader.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HostTestSupport.h"
#include "OdDbEntity.h"

namespace {

namespace fs = std::filesystem;
using hosttest::count;
using hosttest::QuietHost;

std::string layerOf(const OdDbObjectId& id) {
  return OdDbEntityPtr(id.safeOpenObject(OdDb::kForRead, true))->layer().toUtf8();
}

TEST(HostLayerCommand, EveryFormEditsTheDrawingAndTheSavedFileShowsIt) {
  QuietHost q;
  const fs::path plan = hosttest::writePlan(q.dir.path() / "plan.dxf");
  HostDocument* doc = q.host.openDrawing(plan);
  OdDbLayerTablePtr layers = doc->database()->getLayerTableId().safeOpenObject();
  const std::string wallsHandle = layers->getAt(L"Walls").getHandle().ascii();
  layers.release();
  // An unused layer with an extension dictionary: deleting it takes the dictionary along.
  std::string spareDictHandle;
  {
    OdDbObjectPtr spare =
        testsupport::addLayer(*doc->database(), L"Spare", 7).safeOpenObject(OdDb::kForWrite);
    spare->createExtensionDictionary();
    spareDictHandle = spare->extensionDictionary().getHandle().ascii();
  }

  // Options and names in any case; the words a form leaves out are taken as the answers to
  // its prompts, as a script gives them.
  q.host.submit(
      L"-LAYER NEW Doors\n-LAYER color 3 doors\n-LAYER Ltype dashed Doors\n-LAYER OFF Doors\n"
      L"-LAYER\nnew\nStairs\n-LAYER F Stairs\n-LAYER SET stairs\n-LAYER T Stairs\n"
      L"-LAYER ON Stairs\n-LAYER NEW \"Ground floor\"\n-LAYER LW .35 \"ground FLOOR\"\n"
      L"-LAYER SET \"Ground floor\"\n-LAYER DELETE \"Ground floor\"\n-LAYER LWEIGHT default Doors\n"
      L"-LAYER D spare\n"
      L"-LAYER SET Walls\n-LAYER RENAME walls Partitions\n");
  const std::string& out = q.host.output();
  for (const char* line :
       {"Layer Doors created\n", "Layer Doors now has colour 3\n",
        "Layer Doors now has linetype DASHED\n", "Layer Doors turned off\n",
        "Name of the new layer: Stairs\nLayer Stairs created\n", "Layer Stairs frozen\n",
        "-LAYER: layer Stairs is frozen and cannot be made current\n", "Layer Stairs thawed\n",
        "Layer Stairs turned on\n", "Layer Ground floor created\n",
        "Layer Ground floor now has lineweight 0.35\n", "Layer Ground floor is current\n",
        "-LAYER: layer Ground floor cannot be deleted: it is the current layer\n",
        "Layer Doors now has lineweight Default\n", "Layer Spare deleted\n",
        "Layer Walls is current\n",
        "Layer Walls renamed to Partitions; 3 reference(s) follow it\n"})
    EXPECT_EQ(count(out, line), 1u) << line << "\n" << out;
  EXPECT_EQ(count(out, "-LAYER: "), 2u) << out;
  EXPECT_TRUE(doc->isModified());

  q.host.submit(L"SAVE\n");
  EXPECT_FALSE(doc->isModified()) << q.host.output();
  const auto read = testsupport::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "for l in sorted(doc.layers, key=lambda l: l.dxf.name):\n"
      "    print(l.dxf.name, l.dxf.handle, l.color, l.dxf.linetype, l.is_off(), l.is_frozen(),\n"
      "          l.dxf.lineweight)\n"
      "print(doc.header['$CLAYER'])\n"
      "print(' '.join(e.dxf.layer for e in doc.modelspace()))\n"
      "print('dictionary', doc.entitydb.get('" +
          spareDictHandle + "'))\n",
      plan);
  ASSERT_EQ(read.exitCode, 0) << read.output;
  EXPECT_NE(read.output.find("Doors "), std::string::npos) << read.output;
  EXPECT_NE(read.output.find(" 3 DASHED True False -3\n"), std::string::npos) << read.output;
  EXPECT_NE(read.output.find("Ground floor "), std::string::npos) << read.output;
  EXPECT_NE(read.output.find(" 7 Continuous False False 35\n"), std::string::npos) << read.output;
  EXPECT_EQ(read.output.find("Spare"), std::string::npos) << "deleted\n" << read.output;
  EXPECT_NE(read.output.find("Partitions " + wallsHandle + " 1 Continuous False False -3\n"),
            std::string::npos)
      << "the record keeps its handle\n"
      << read.output;
  EXPECT_NE(read.output.find(" 7 Continuous False False -3\nPartitions\nPartitions Partitions 0\n"),
            std::string::npos)
      << "Stairs, then $CLAYER and the texts follow the rename\n"
      << read.output;
  EXPECT_EQ(read.output.find("Walls"), std::string::npos) << read.output;
  EXPECT_NE(read.output.find("dictionary None\n"), std::string::npos) << read.output;
}

TEST(HostLayerCommand, ARelease12DrawingKeepsNoLineweights) {
  const fs::path drawing = testsupport::corpusDir() / "r12_ezdxf_ascii_greek_umlaut_layer.dxf";
  if (testsupport::corpusDir().empty() || !fs::exists(drawing))
    GTEST_SKIP() << "the corpus drawing " << drawing << " is absent";
  QuietHost q;
  testsupport::copyWorkingCopy(drawing, q.dir.path() / "r12.dxf");
  HostDocument* doc = q.host.openDrawing(q.dir.path() / "r12.dxf");
  q.host.submit(L"-LAYER LWEIGHT 0.25 0\n");
  EXPECT_EQ(count(q.host.output(), "-LAYER: the drawing's format AC1009 keeps no lineweights\n"),
            1u)
      << q.host.output();
  EXPECT_FALSE(doc->isModified());
}

TEST(HostLayerCommand, BadInputSaysWhatInOneLineAndChangesNothing) {
  QuietHost q;
  // The plan, and layers no delete may take: Defpoints, one of an external reference, and
  // Furniture whose only user is a text in paper space.
  const fs::path plan = hosttest::writePlan(q.dir.path() / "plan.dxf");
  {
    OdDbDatabasePtr db = OdDbDatabase::readFile(plan);
    testsupport::addLayer(*db, L"Defpoints", 7);
    testsupport::addLayer(*db, L"Site|Walls", 7);
    testsupport::addLayer(*db, L"Furniture", 7);
    testsupport::addText(*db, L"Furniture", L"chair", db->getPaperSpaceId());
    db->writeFile(plan);
  }
  HostDocument* doc = q.host.openDrawing(plan);
  const std::string before = doc->database()->writeBuffer();
  struct Bad {
    const wchar_t* words;
    const char* says;
  };
  for (const Bad& bad : std::vector<Bad>{
           {L"FOO", "unknown option \"FOO\"; give New, Color"},
           {L"O", "unknown option \"O\""},
           {L"NEW walls", "a layer named Walls exists already"},
           {L"NEW a<b", "\"a<b\" is not a valid layer name: it contains '<'"},
           {L"NEW a`b", "it contains '`'"},
           {L"COLOR 256 Walls", "colour \"256\" is not a colour index from 1 to 255"},
           {L"COLOR 3x Walls", "colour \"3x\" is not"},
           {L"COLOR 3 Nope", "the drawing has no layer Nope"},
           {L"LTYPE NOPE Walls", "the drawing has no linetype NOPE"},
           {L"LTYPE bylayer Walls", "a layer cannot have the linetype bylayer"},
           {L"RENAME 0 Zero", "layer 0 cannot be renamed"},
           {L"RENAME Walls 0", "a layer named 0 exists already"},
           {L"RENAME Walls a|b", "\"a|b\" is not a valid layer name: it contains '|'"},
           {L"SET Nope", "the drawing has no layer Nope"},
           {L"FREEZE 0", "layer 0 is current and cannot be frozen"},
           {L"L 0.25 Walls", "unknown option \"L\""},
           {L"LWEIGHT 0.33 Walls", "lineweight \"0.33\" is not one of 0.00, 0.05 ... 2.11 mm"},
           {L"LWEIGHT 2.11mm Walls", "lineweight \"2.11mm\" is not"},
           {L"LWEIGHT 0.25 Nope", "the drawing has no layer Nope"},
           {L"DELETE 0", "layer 0 cannot be deleted: it is layer 0\n"},
           {L"DELETE Nope", "the drawing has no layer Nope"},
           {L"DELETE walls",
            "layer Walls cannot be deleted: 2 objects use it, the first an AcDbText (handle "},
           {L"DELETE Defpoints", "layer Defpoints cannot be deleted: it is Defpoints"},
           {L"DELETE site|walls",
            "layer Site|Walls cannot be deleted: it belongs to an external reference\n"},
           {L"DELETE Furniture", "layer Furniture cannot be deleted: an AcDbText (handle "},
           {L"DELETE Furniture", ") in *Paper_Space uses it\n"},
       }) {
    const std::size_t mark = q.host.output().size();
    q.host.app().commandLine().feed(OdString(bad.words) + L"\n");
    const HostCommandResult result = q.host.runCommand(L"-LAYER");
    const std::string said = q.host.output().substr(mark);
    EXPECT_EQ(result.outcome, HostCommandOutcome::kCompleted) << said;
    EXPECT_FALSE(result.value) << said;
    EXPECT_EQ(count(said, "-LAYER: "), 1u) << said;
    EXPECT_NE(said.find(bad.says), std::string::npos) << said;
  }
  EXPECT_FALSE(doc->isModified());
  EXPECT_EQ(doc->database()->writeBuffer(), before);
}

TEST(HostEditCommands, SelectAllThenChangeLayerMovesTheLiveSelectedEntities) {
  QuietHost q;
  q.host.submit(L"ZOOM E\nNEW\nZOOM extents\n");
  EXPECT_EQ(count(q.host.output(), "ZOOM: no document is open\n"), 1u) << q.host.output();
  EXPECT_EQ(count(q.host.output(), "NEW: Drawing1.dxf\n"), 1u) << q.host.output();
  EXPECT_EQ(count(q.host.output(), "ZOOM: this host has no drawing view\n"), 1u);
  ASSERT_TRUE(q.host.currentDocument()->isUntitled());
  EXPECT_FALSE(q.host.currentDocument()->isModified());

  HostDocument* doc = q.host.openDrawing(hosttest::writePlan(q.dir.path() / "plan.dxf"));
  q.host.submit(L"CHANGE LAYER Walls\nSELECT ALL\nCHANGE COLOR\n");
  EXPECT_EQ(count(q.host.output(), "CHANGE: nothing is selected\n"), 1u) << q.host.output();
  EXPECT_EQ(count(q.host.output(), "SELECT: 3 entities selected\n"), 1u) << q.host.output();
  EXPECT_EQ(count(q.host.output(), "CHANGE: unknown property \"COLOR\"; give Layer\n"), 1u);
  const OdDbObjectIdArray selected = doc->selection();
  ASSERT_EQ(selected.size(), 3u);
  OdDbObjectPtr(selected[0].safeOpenObject(OdDb::kForWrite))->erase();

  q.host.submit(L"change layer walls\n");
  EXPECT_EQ(count(q.host.output(), "CHANGE: 1 entity moved to layer Walls\n"), 1u)
      << "the erased text is skipped, the one on Walls already stays\n"
      << q.host.output();
  EXPECT_EQ(layerOf(selected[0]), "Walls");
  EXPECT_EQ(layerOf(selected[2]), "Walls");
  q.host.submit(L"CHANGE LAYER 0\n");
  EXPECT_EQ(count(q.host.output(), "CHANGE: 2 entities moved to layer 0\n"), 1u);
  EXPECT_EQ(layerOf(selected[0]), "Walls") << "erased";
  EXPECT_TRUE(doc->isModified());

  q.host.submit(L"SELECT none\nSELECT SOME\n");
  EXPECT_TRUE(doc->selection().empty());
  EXPECT_EQ(count(q.host.output(), "SELECT: nothing is selected\n"), 1u);
  EXPECT_EQ(count(q.host.output(), "SELECT: unknown option \"SOME\"; give All or None\n"), 1u);
}

}  // namespace
