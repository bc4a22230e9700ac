// The linetype plug-in: a pattern that differs, a name near a standard one, and a linetype
// used by a layer and an entity that is replaced by one the drawing lacks.

#include "PluginsTestSupport.h"
#include "StErrorFlags.h"

namespace {

class LinetypePluginTest : public ::testing::Test {
 protected:
  void SetUp() override {
    plugin_ = plugintest::createPlugin(L"StDWSLinetypePlugin");
    ASSERT_FALSE(plugin_.isNull());

    OdDbDatabasePtr office = OdDbDatabase::createEmpty();
    plugintest::addLinetype(*office, L"DASHED", L"Dashed __ __", {0.5, -0.25});
    plugintest::addLinetype(*office, L"HIDDEN", L"Hidden _ _", {0.25, -0.125});
    plugintest::addLinetype(*office, L"CENTER", L"Center ____ _", {1.25, -0.25, 0.25, -0.25});
    office_ = plugintest::saveAndReload(*office, dir_.path() / "office.dws");

    OdDbDatabasePtr plan = OdDbDatabase::createEmpty();
    plugintest::addLinetype(*plan, L"DASHED", L"Dashed __ __", {0.6, -0.2});
    plugintest::addLinetype(*plan, L"Hid-den", L"Hidden _ _", {0.25, -0.125});
    plugintest::addLinetype(*plan, L"Phantom", L"Phantom ___ _ _", {1.25, -0.25, 0.25, -0.25});
    plugintest::addLayer(*plan, L"Axes", 1, OdDb::kLnWtByLnDefault, L"Phantom");
    const OdDbObjectId text = plugintest::addText(*plan, L"0", L"axis");
    {
      OdDbEntityPtr entity = text.safeOpenObject(OdDb::kForWrite);
      OdDbLinetypeTablePtr linetypes = plan->getLinetypeTableId().safeOpenObject();
      entity->setLinetype(linetypes->getAt(L"Phantom"));
    }
    planFile_ = dir_.path() / "plan.dxf";
    drawing_ = plugintest::saveAndReload(*plan, planFile_);
  }

  std::vector<plugintest::Reported> check() {
    return plugintest::check(*plugin_, drawing_.get(), {office_.get()});
  }

  testsupport::TempDir dir_;
  st::StDWSPluginPtr plugin_;
  OdDbDatabasePtr office_;
  OdDbDatabasePtr drawing_;
  std::filesystem::path planFile_;
};

TEST_F(LinetypePluginTest, ReportsPatternAndNamesAndFixesEachKindExactly) {
  auto reported = check();
  ASSERT_EQ(reported.size(), 3u) << "ByLayer, ByBlock and Continuous are never reported";
  EXPECT_EQ(reported[0].record, "DASHED");
  EXPECT_EQ(reported[0].tag, 1u);
  EXPECT_EQ(reported[0].fixes, std::vector<std::string>{"DASHED@office.dws"});
  EXPECT_EQ(reported[1].record, "Hid-den");
  EXPECT_EQ(reported[1].tag, 2u);
  EXPECT_EQ(reported[1].fixes,
            (std::vector<std::string>{"HIDDEN@office.dws", "CENTER@office.dws", "DASHED@office.dws",
                                      "Continuous@office.dws"}));
  EXPECT_EQ(reported[1].recommended, 0);
  EXPECT_EQ(reported[2].record, "Phantom");
  EXPECT_EQ(reported[2].recommended, -1);

  OdArray<OdString> names;
  OdArray<OdVariant> current;
  plugin_->getPropertyDiffs(reported[0].error.get(), reported[0].fixObjects[0].get(), names,
                            current, {});
  ASSERT_EQ(names.size(), 1u);
  EXPECT_EQ(names[0], L"Pattern");
  EXPECT_EQ(current[0].getString(), L"0.6, -0.2");

  // The pattern: only that linetype changes.
  plugin_->fixError(reported[0].error.get(), reported[0].fixObjects[0].get());
  EXPECT_TRUE(reported[0].error->flags() & st::kStErrorFixed);
  drawing_->writeFile(dir_.path() / "dashed.dxf");
  EXPECT_EQ(plugintest::changedObjects(planFile_, dir_.path() / "dashed.dxf"),
            std::vector<std::string>{"LTYPE DASHED"});

  // Phantom by CENTER, which the drawing lacks: Phantom becomes CENTER in place, with the
  // standard's pattern, and the layer and the text that named it name CENTER.
  ASSERT_EQ(reported[2].fixes[0], "CENTER@office.dws") << "the closest name";
  plugin_->fixError(reported[2].error.get(), reported[2].fixObjects[0].get());
  EXPECT_TRUE(reported[2].error->flags() & st::kStErrorFixed);
  drawing_->writeFile(dir_.path() / "center.dxf");
  auto changed = plugintest::changedObjects(dir_.path() / "dashed.dxf", dir_.path() / "center.dxf");
  ASSERT_EQ(changed.size(), 3u);
  EXPECT_EQ(std::vector<std::string>(changed.begin(), changed.begin() + 2),
            (std::vector<std::string>{"LAYER Axes", "LTYPE CENTER"}));
  EXPECT_EQ(changed[2].rfind("TEXT #", 0), 0u) << changed[2];

  st::StFixPtr hidden = plugin_->getRecommendedFix(reported[1].error.get());
  ASSERT_FALSE(hidden.isNull());
  plugin_->fixError(reported[1].error.get(), hidden.get());
  EXPECT_TRUE(check().empty());

  drawing_->writeFile(dir_.path() / "fixed.dxf");
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "print(sorted(l.dxf.name for l in doc.linetypes))\n"
      "print(doc.layers.get('Axes').dxf.linetype, doc.modelspace()[0].dxf.linetype)\n"
      "print([t.value for t in doc.linetypes.get('DASHED').pattern_tags.tags if t.code == 49])\n",
      dir_.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "['ByBlock', 'ByLayer', 'CENTER', 'Continuous', 'DASHED', 'HIDDEN']\n"
            "CENTER CENTER\n[0.5, -0.25]\n");
}

}  // namespace
