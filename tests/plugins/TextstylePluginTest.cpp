// The text style plug-in: a font that differs, a name near a standard one, and a style used
// by texts and a dimension style that is replaced by a standard style.

#include "PluginsTestSupport.h"
#include "StErrorFlags.h"

namespace {

class TextstylePluginTest : public ::testing::Test {
 protected:
  void SetUp() override {
    plugin_ = plugintest::createPlugin(L"StDWSTextstylePlugin");
    ASSERT_FALSE(plugin_.isNull());

    OdDbDatabasePtr office = OdDbDatabase::createEmpty();
    plugintest::addTextStyle(*office, L"Notes", L"romans.shx", 0.0, 0.8);
    plugintest::addTextStyle(*office, L"Titles", L"arial.ttf", 5.0, 1.0);
    office_ = plugintest::saveAndReload(*office, dir_.path() / "office.dws");

    OdDbDatabasePtr plan = OdDbDatabase::createEmpty();
    plugintest::addTextStyle(*plan, L"Notes", L"txt.shx", 0.0, 1.0);
    plugintest::addTextStyle(*plan, L"Title_S", L"arial.ttf", 5.0, 1.0);
    plugintest::addTextStyle(*plan, L"Old", L"txt.shx", 2.5, 1.0);
    plugintest::addDimStyle(*plan, L"Dims", 1.0, 2, L"Old");
    OdDbTextStyleTablePtr styles = plan->getTextStyleTableId().safeOpenObject();
    for (const wchar_t* contents : {L"one", L"two"}) {
      OdDbTextPtr text = plugintest::addText(*plan, L"0", contents).safeOpenObject(OdDb::kForWrite);
      text->setTextStyle(styles->getAt(L"Old"));
    }
    styles.release();
    planFile_ = dir_.path() / "plan.dxf";
    drawing_ = plugintest::saveAndReload(*plan, planFile_);
  }

  testsupport::TempDir dir_;
  st::StDWSPluginPtr plugin_;
  OdDbDatabasePtr office_;
  OdDbDatabasePtr drawing_;
  std::filesystem::path planFile_;
};

TEST_F(TextstylePluginTest, ReportsFontsAndNamesAndFixesEachKindExactly) {
  auto reported = plugintest::check(*plugin_, drawing_.get(), {office_.get()});
  ASSERT_EQ(reported.size(), 3u) << "Standard is as the standard's";
  EXPECT_EQ(reported[0].record, "Notes");
  EXPECT_EQ(reported[0].tag, 1u);
  EXPECT_EQ(reported[1].record, "Title_S");
  EXPECT_EQ(reported[1].fixes, (std::vector<std::string>{"Titles@office.dws", "Notes@office.dws",
                                                         "Standard@office.dws"}));
  EXPECT_EQ(reported[1].recommended, 0);
  EXPECT_EQ(reported[2].record, "Old");
  EXPECT_EQ(reported[2].recommended, -1);

  OdArray<OdString> names;
  OdArray<OdVariant> current;
  plugin_->getPropertyDiffs(reported[0].error.get(), reported[0].fixObjects[0].get(), names,
                            current, {});
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(names[0], L"Font");
  EXPECT_EQ(names[1], L"Width factor");

  plugin_->fixError(reported[0].error.get(), reported[0].fixObjects[0].get());
  drawing_->writeFile(dir_.path() / "notes.dxf");
  EXPECT_EQ(plugintest::changedObjects(planFile_, dir_.path() / "notes.dxf"),
            std::vector<std::string>{"STYLE Notes"});

  // Old by Notes: both texts and the dimension style follow, Old goes.
  ASSERT_EQ(reported[2].fixes[0], "Notes@office.dws") << "the closest name";
  plugin_->fixError(reported[2].error.get(), reported[2].fixObjects[0].get());
  EXPECT_TRUE(reported[2].error->flags() & st::kStErrorFixed);
  drawing_->writeFile(dir_.path() / "old.dxf");
  auto changed = plugintest::changedObjects(dir_.path() / "notes.dxf", dir_.path() / "old.dxf");
  ASSERT_EQ(changed.size(), 4u);
  EXPECT_EQ(std::vector<std::string>(changed.begin(), changed.begin() + 2),
            (std::vector<std::string>{"-STYLE Old", "DIMSTYLE Dims"}));
  EXPECT_EQ(changed[2].rfind("TEXT #", 0), 0u);
  EXPECT_EQ(changed[3].rfind("TEXT #", 0), 0u);

  plugin_->fixError(reported[1].error.get(),
                    plugin_->getRecommendedFix(reported[1].error.get()).get());
  EXPECT_TRUE(plugintest::check(*plugin_, drawing_.get(), {office_.get()}).empty());

  drawing_->writeFile(dir_.path() / "fixed.dxf");
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "print(sorted(s.dxf.name for s in doc.styles))\n"
      "notes = doc.styles.get('Notes')\n"
      "print(notes.dxf.font, notes.dxf.width, doc.dimstyles.get('Dims').dxf.dimtxsty)\n"
      "print(sorted(e.dxf.style for e in doc.modelspace()))\n",
      dir_.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "['Notes', 'Standard', 'Titles']\nromans.shx 0.8 Notes\n['Notes', 'Notes']\n");
}

}  // namespace
