// The layer plug-in on a drawing and two standards files built here and read back from disk:
// what it reports, what each fix changes in the saved drawing, what ezdxf reads afterwards.

#include <algorithm>
#include <random>

#include "OdDbBlockTable.h"
#include "PluginsTestSupport.h"
#include "StErrorFlags.h"
#include "StIgnoreMarks.h"
#include "StNameDistance.h"
#include "StRankedFixes.h"

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

  // A non-standard name has every standard layer as a fix, the closest names first: equal
  // ignoring case and separators, then by edit distance, ties by file and then name.
  EXPECT_EQ(reported[1].record, "hatch_fill");
  EXPECT_EQ(reported[1].tag, 2u);
  EXPECT_EQ(reported[1].fixes,
            (std::vector<std::string>{"Hatch-Fill@office.dws", "Walls@office.dws", "Walls@site.dws",
                                      "0@office.dws", "Doors@office.dws", "0@site.dws",
                                      "Survey@site.dws"}));
  EXPECT_EQ(reported[1].recommended, 0) << "differs from Hatch-Fill only in case and separator";

  EXPECT_EQ(reported[2].record, "Notes");
  EXPECT_EQ(reported[2].fixes,
            (std::vector<std::string>{"Doors@office.dws", "Walls@office.dws", "Walls@site.dws",
                                      "0@office.dws", "0@site.dws", "Survey@site.dws",
                                      "Hatch-Fill@office.dws"}));
  EXPECT_EQ(reported[2].recommended, -1) << "nothing close enough to recommend";
  EXPECT_TRUE(plugin_->getRecommendedFix(reported[2].error.get()).isNull());

  // The first few of the same list, made without the rest, for reports.
  auto* ranked = dynamic_cast<st::StRankedFixes*>(plugin_.get());
  ASSERT_NE(ranked, nullptr);
  for (const Reported& r : {reported[1], reported[2]}) {
    OdArray<st::StFixPtr> first;
    int recommended = -2;
    unsigned total = 0;
    ranked->getFirstFixes(r.error.get(), 3, first, recommended, total);
    EXPECT_EQ(total, 7u);
    ASSERT_EQ(first.size(), 3u);
    for (unsigned i = 0; i < first.size(); ++i)
      EXPECT_EQ(first[i]->name(), r.fixObjects[i]->name()) << r.record << " " << i;
    EXPECT_EQ(recommended, r.recommended);
  }

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

// Each fix changes only what it must in the saved drawing: a property fix only that layer (and
// brings its linetype), a replaced name the layer, renamed in place, and what named it.
TEST_F(LayerPluginTest, EachFixChangesOnlyItsLayerAndWhatUsesIt) {
  auto walls = checkAndFind("Walls");
  ASSERT_EQ(walls.size(), 1u);
  plugin_->fixError(walls[0].error.get(), walls[0].fixObjects[0].get());
  EXPECT_TRUE(walls[0].error->flags() & st::kStErrorFixed);
  EXPECT_EQ(saveAndCompare(planFile_, "walls.dxf"),
            (std::vector<std::string>{"+LTYPE DASHED", "LAYER Walls"}));

  auto fill = checkAndFind("hatch_fill");
  ASSERT_EQ(fill.size(), 1u);
  EXPECT_EQ(reported_.size(), 2u) << "Walls is no longer reported";
  st::StFixPtr recommended = plugin_->getRecommendedFix(fill[0].error.get());
  ASSERT_FALSE(recommended.isNull());
  EXPECT_EQ(recommended->name(), L"Hatch-Fill");
  plugin_->fixError(fill[0].error.get(), recommended.get());
  EXPECT_TRUE(fill[0].error->flags() & st::kStErrorFixed);
  // The layer keeps its handle, so it shows as changed, not as added and removed.
  std::vector<std::string> others;
  int texts = 0;
  for (const std::string& changed : saveAndCompare(dir_.path() / "walls.dxf", "fill.dxf"))
    changed.rfind("TEXT #", 0) == 0 ? ++texts : (others.push_back(changed), 0);
  EXPECT_EQ(texts, 2);
  EXPECT_EQ(others, (std::vector<std::string>{"LAYER Hatch-Fill"}));

  // Notes goes to Doors by the user's choice, from paper space too.
  auto notes = checkAndFind("Notes");
  ASSERT_EQ(notes.size(), 1u);
  plugin_->fixError(notes[0].error.get(), notes[0].fixObjects[0].get());
  EXPECT_TRUE(notes[0].error->flags() & st::kStErrorFixed);
  EXPECT_TRUE(check().empty());

  drawing_->writeFile(dir_.path() / "fixed.dxf");
  // (The xref layer stays: the plug-in leaves it alone. Defpoints is left out of the list.)
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "walls = doc.layers.get('Walls')\n"
      "print(walls.color, walls.dxf.linetype, walls.dxf.lineweight)\n"
      "print(sorted(l.dxf.name for l in doc.layers if l.dxf.name != 'Defpoints'))\n"
      "print(sorted(set(e.dxf.layer for b in doc.blocks for e in b)))\n",
      dir_.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "1 DASHED 35\n['0', 'Base|Grid', 'Doors', 'Hatch-Fill', 'Survey', 'Walls']\n"
            "['Doors', 'Hatch-Fill', 'Walls']\n");
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

// The word-at-a-time distance against the plain table, over names short and long (past the
// 64 characters of a word), ASCII and not, with repeated characters.
TEST(NameDistance, AgreesWithThePlainTable) {
  const auto table = [](const std::wstring& a, const std::wstring& b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
      for (std::size_t j = 1; j <= b.size(); ++j)
        d[i][j] = std::min(
            {d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
    return d[a.size()][b.size()];
  };
  std::mt19937 random(7);
  const std::wstring alphabet = L"ab-_\u00e9\u5c42";
  const auto name = [&](std::size_t longest) {
    std::wstring s(random() % (longest + 1), L' ');
    for (wchar_t& c : s) c = alphabet[random() % alphabet.size()];
    return s;
  };
  for (int round = 0; round < 400; ++round) {
    const std::wstring a = name(round % 4 == 0 ? 90 : 64);
    const st::StNameDistance distance(a);
    for (int k = 0; k < 5; ++k) {
      const std::wstring b = name(80);
      ASSERT_EQ(distance.to(b), table(a, b)) << round;
    }
  }
}

}  // namespace
