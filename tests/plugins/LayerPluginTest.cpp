// The layer plug-in on a drawing and two standards files built here and read back from disk:
// what it reports, what each fix changes in the saved drawing, what ezdxf reads afterwards.

#include "OdDbBlockTable.h"
#include "PluginsTestSupport.h"
#include "StErrorFlags.h"
#include "StIgnoreMarks.h"

namespace {

using plugintest::Reported;

class LayerPluginTest : public ::testing::Test {
 protected:
  void SetUp() override {
    plugin_ = plugintest::createPlugin(L"StDWSLayerPlugin");
    ASSERT_FALSE(plugin_.isNull());

    OdDbDatabasePtr office = OdDbDatabase::createEmpty();
    plugintest::addLinetype(*office, L"DASHED", L"Dashed __ __", {0.5, -0.25});
    plugintest::addLayer(*office, L"Walls", 1, OdDb::kLnWt035, L"DASHED");
    plugintest::addLayer(*office, L"Doors", 3);
    plugintest::addLayer(*office, L"Hatch-Fill", 8);
    office_ = plugintest::saveAndReload(*office, dir_.path() / "office.dws");

    OdDbDatabasePtr site = OdDbDatabase::createEmpty();
    plugintest::addLayer(*site, L"Walls", 5);
    plugintest::addLayer(*site, L"Survey", 4);
    site_ = plugintest::saveAndReload(*site, dir_.path() / "site.dws");

    OdDbDatabasePtr plan = OdDbDatabase::createEmpty();
    plugintest::addLayer(*plan, L"Walls", 2, OdDb::kLnWt025);  // properties differ
    plugintest::addLayer(*plan, L"Doors", 3);                  // as the office's
    plugintest::addLayer(*plan, L"Survey", 4);                 // as the site's
    plugintest::addLayer(*plan, L"hatch_fill", 6);             // near a standard name
    plugintest::addLayer(*plan, L"Notes", 7);                  // nowhere
    plugintest::addLayer(*plan, L"Base|Grid", 9);  // from an external reference: skipped
    plugintest::addLayer(*plan, L"Defpoints", 7);  // every drawing's, though no standard's
    plugintest::addText(*plan, L"Walls", L"wall");
    plugintest::addText(*plan, L"hatch_fill", L"fill 1");
    plugintest::addText(*plan, L"hatch_fill", L"fill 2");
    plugintest::addText(*plan, L"Notes", L"note");
    // An entity of another block than model space on a non-standard layer.
    plugintest::addText(*plan, L"Notes", L"on paper", plan->getPaperSpaceId());
    planFile_ = dir_.path() / "plan.dxf";
    drawing_ = plugintest::saveAndReload(*plan, planFile_);
  }

  std::vector<Reported> check() {
    return plugintest::check(*plugin_, drawing_.get(), {office_.get(), site_.get()});
  }
  std::vector<Reported> checkAndFind(const std::string& record) {
    reported_ = check();
    for (Reported& r : reported_)
      if (r.record == record) return {r};
    ADD_FAILURE() << "no error for " << record;
    return {};
  }
  // Saves the drawing under a new name and returns what changed since `before`.
  std::vector<std::string> saveAndCompare(const std::filesystem::path& before, const char* name) {
    const auto after = dir_.path() / name;
    drawing_->writeFile(after);
    return plugintest::changedObjects(before, after);
  }

  testsupport::TempDir dir_;
  st::StDWSPluginPtr plugin_;
  OdDbDatabasePtr office_;
  OdDbDatabasePtr site_;
  OdDbDatabasePtr drawing_;
  std::filesystem::path planFile_;
  std::vector<Reported> reported_;
};

TEST_F(LayerPluginTest, ReportsExactlyTheDifferencesWithTheirFixesAndRecommendations) {
  auto reported = check();
  ASSERT_EQ(reported.size(), 3u);

  EXPECT_EQ(reported[0].record, "Walls");
  EXPECT_EQ(reported[0].tag, 1u);
  EXPECT_EQ(reported[0].flags, st::kStErrorFixable);
  EXPECT_EQ(reported[0].fixes, (std::vector<std::string>{"Walls@office.dws", "Walls@site.dws"}));
  EXPECT_EQ(reported[0].recommended, 0) << "the first file's fix, no preferred file being set";

  EXPECT_EQ(reported[1].record, "hatch_fill");
  EXPECT_EQ(reported[1].tag, 2u);
  const std::vector<std::string> everyStandardLayer{
      "0@office.dws", "Walls@office.dws", "Doors@office.dws", "Hatch-Fill@office.dws",
      "0@site.dws",   "Walls@site.dws",   "Survey@site.dws"};
  EXPECT_EQ(reported[1].fixes, everyStandardLayer);
  EXPECT_EQ(reported[1].recommended, 3) << "differs from Hatch-Fill only in case and separator";

  EXPECT_EQ(reported[2].record, "Notes");
  EXPECT_EQ(reported[2].fixes, everyStandardLayer);
  EXPECT_EQ(reported[2].recommended, -1) << "nothing close enough to recommend";
  EXPECT_TRUE(plugin_->getRecommendedFix(reported[2].error.get()).isNull());

  // The preview of the Walls fix from the office: only what differs, with the current values.
  OdArray<OdString> names;
  OdArray<OdVariant> current;
  plugin_->getPropertyDiffs(reported[0].error.get(), reported[0].fixObjects[0].get(), names,
                            current, {});
  ASSERT_EQ(names.size(), 3u);
  st::StPropertyFormatterPtr format = plugin_->propertyFormatter();
  ASSERT_FALSE(format.isNull());
  std::vector<std::string> rows;
  for (unsigned i = 0; i < names.size(); ++i) {
    OdVariant standard;
    ASSERT_TRUE(reported[0].fixObjects[0]->propertyValue(names[i], standard));
    rows.push_back((names[i] + L": " + format->format(names[i], current[i]) + L" -> " +
                    format->format(names[i], standard))
                       .toUtf8());
  }
  EXPECT_EQ(rows,
            (std::vector<std::string>{"Color: yellow -> red", "Linetype: Continuous -> DASHED",
                                      "Lineweight: 0.25 -> 0.35"}));
  EXPECT_EQ(reported[0].error->reason(), L"Layer") << "the caption of the replacements";
}

TEST_F(LayerPluginTest, FixingPropertiesChangesOnlyThatLayerAndBringsItsLinetype) {
  auto walls = checkAndFind("Walls");
  ASSERT_EQ(walls.size(), 1u);
  plugin_->fixError(walls[0].error.get(), walls[0].fixObjects[0].get());
  EXPECT_TRUE(walls[0].error->flags() & st::kStErrorFixed);
  EXPECT_EQ(saveAndCompare(planFile_, "fixed.dxf"),
            (std::vector<std::string>{"+LTYPE DASHED", "LAYER Walls"}));
  for (const Reported& r : check()) EXPECT_NE(r.record, "Walls");

  auto result = plugintest::ezdxf(
      "layer = ezdxf.readfile(path).layers.get('Walls')\n"
      "print(layer.color, layer.dxf.linetype, layer.dxf.lineweight)\n",
      dir_.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output, "1 DASHED 35\n");
}

TEST_F(LayerPluginTest, ReplacingANameMovesEveryEntityAndPurgesTheOldLayer) {
  auto fill = checkAndFind("hatch_fill");
  ASSERT_EQ(fill.size(), 1u);
  st::StFixPtr recommended = plugin_->getRecommendedFix(fill[0].error.get());
  ASSERT_FALSE(recommended.isNull());
  EXPECT_EQ(recommended->name(), L"Hatch-Fill");
  plugin_->fixError(fill[0].error.get(), recommended.get());
  EXPECT_TRUE(fill[0].error->flags() & st::kStErrorFixed);
  // The new layer, the old one gone, and the two texts that were on it: nothing else.
  std::vector<std::string> others;
  int texts = 0;
  for (const std::string& changed : saveAndCompare(planFile_, "fill.dxf"))
    changed.rfind("TEXT #", 0) == 0 ? ++texts : (others.push_back(changed), 0);
  EXPECT_EQ(texts, 2);
  EXPECT_EQ(others, (std::vector<std::string>{"+LAYER Hatch-Fill", "-LAYER hatch_fill"}));

  // Notes goes to Doors by the user's choice, from paper space too.
  auto notes = checkAndFind("Notes");
  ASSERT_EQ(notes.size(), 1u);
  plugin_->fixError(notes[0].error.get(), notes[0].fixObjects[2].get());
  EXPECT_TRUE(notes[0].error->flags() & st::kStErrorFixed);
  EXPECT_EQ(check().size(), 1u) << "only Walls is left";

  drawing_->writeFile(dir_.path() / "fixed.dxf");
  // (The xref layer stays: the plug-in leaves it alone. Defpoints is left out of the list.)
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "layers = sorted(l.dxf.name for l in doc.layers if l.dxf.name != 'Defpoints')\n"
      "used = sorted(set(e.dxf.layer for b in doc.blocks for e in b))\n"
      "print(layers)\nprint(used)\n",
      dir_.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "['0', 'Base|Grid', 'Doors', 'Hatch-Fill', 'Survey', 'Walls']\n['Doors', 'Hatch-Fill', "
            "'Walls']\n");
}

TEST_F(LayerPluginTest, ChecksOnlyTheObjectsItIsGivenWhenNotTheWholeDrawing) {
  OdDbLayerTablePtr layers = drawing_->getLayerTableId().safeOpenObject();
  OdDbBlockTableRecordPtr space = drawing_->getModelSpaceId().safeOpenObject();
  const OdDbObjectId text = space->newIterator()->objectId();
  // As the manager checks one edited object: the layer, then something of another kind.
  for (const auto& [objects, expected] :
       std::vector<std::pair<OdDbObjectIdArray, std::vector<std::string>>>{
           {{layers->getAt(L"Walls"), layers->getAt(L"Doors")}, {"Walls"}},
           {{text}, {}},
           {{layers->getAt(L"Base|Grid")}, {}}}) {
    plugin_->setupForAudit(drawing_.get(), L"plan.dxf", {L"office.dws"}, {office_.get()});
    plugin_->setObjects(objects, false);
    plugin_->start(nullptr);
    std::vector<std::string> seen;
    for (plugin_->next(); !plugin_->done(); plugin_->next()) {
      OdDbSymbolTableRecordPtr record = plugin_->getError()->objectId().safeOpenObject();
      seen.push_back(record->getName().toUtf8());
    }
    EXPECT_EQ(seen, expected);
  }
}

TEST_F(LayerPluginTest, AnIgnoredLayerIsFlaggedUntilItsMarkIsRemoved) {
  OdDbLayerTablePtr layers = drawing_->getLayerTableId().safeOpenObject();
  const OdDbObjectId notes = layers->getAt(L"Notes");
  ASSERT_TRUE(st::writeObjectIgnoredMark(notes, L"alice"));
  auto marked = checkAndFind("Notes");
  ASSERT_EQ(marked.size(), 1u);
  EXPECT_EQ(marked[0].flags, st::kStErrorFixable | st::kStErrorIgnored);
  for (const Reported& r : reported_)
    if (r.record != "Notes") {
      EXPECT_FALSE(r.flags & st::kStErrorIgnored) << r.record;
    }

  st::eraseObjectIgnoredMark(notes);
  auto unmarked = checkAndFind("Notes");
  ASSERT_EQ(unmarked.size(), 1u);
  EXPECT_EQ(unmarked[0].flags, st::kStErrorFixable);
}

}  // namespace
