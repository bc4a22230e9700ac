// The dimension style plug-in: variables that differ, with the text style the standard's
// style names copied in, and a style used by a dimension, a leader and a tolerance that is
// replaced by a standard style.

#include "PluginsTestSupport.h"
#include "StErrorFlags.h"

namespace {

class DimstylePluginTest : public ::testing::Test {
 protected:
  void SetUp() override {
    plugin_ = plugintest::createPlugin(L"StDWSDimstylePlugin");
    ASSERT_FALSE(plugin_.isNull());

    OdDbDatabasePtr office = OdDbDatabase::createEmpty();
    plugintest::addTextStyle(*office, L"Notes", L"romans.shx", 0.0, 0.8);
    plugintest::addDimStyle(*office, L"Arch", 48.0, 1, L"Notes");
    office_ = plugintest::saveAndReload(*office, dir_.path() / "office.dws");

    OdDbDatabasePtr plan = OdDbDatabase::createEmpty();
    plugintest::addDimStyle(*plan, L"Arch", 96.0, 2);
    plugintest::addDimStyle(*plan, L"ISO-25", 1.0, 2);
    planFile_ = dir_.path() / "plan.dxf";
    drawing_ =
        plugintest::withEntities(*plan,
                                 "0\nDIMENSION\n5\nFFF01\n330\n{ms}\n100\nAcDbEntity\n8\n0\n"
                                 "100\nAcDbDimension\n10\n0\n20\n0\n30\n0\n11\n5\n21\n1\n31\n"
                                 "0\n70\n1\n3\nISO-25\n100\nAcDbAlignedDimension\n13\n0\n23\n"
                                 "0\n33\n0\n14\n10\n24\n0\n34\n0\n"
                                 "0\nLEADER\n5\nFFF02\n330\n{ms}\n100\nAcDbEntity\n8\n0\n"
                                 "100\nAcDbLeader\n3\nISO-25\n71\n1\n72\n0\n73\n3\n74\n1\n75\n"
                                 "0\n40\n0\n41\n0\n76\n2\n10\n0\n20\n0\n30\n0\n10\n10\n20\n10\n"
                                 "30\n0\n"
                                 "0\nTOLERANCE\n5\nFFF03\n330\n{ms}\n100\nAcDbEntity\n8\n0\n"
                                 "100\nAcDbFcf\n3\nISO-25\n10\n0\n20\n0\n30\n0\n1\nX\n11\n1\n"
                                 "21\n0\n31\n0\n",
                                 planFile_);
  }

  testsupport::TempDir dir_;
  st::StDWSPluginPtr plugin_;
  OdDbDatabasePtr office_;
  OdDbDatabasePtr drawing_;
  std::filesystem::path planFile_;
};

TEST_F(DimstylePluginTest, ReportsVariablesAndNamesAndFixesEachKindExactly) {
  auto reported = plugintest::check(*plugin_, drawing_.get(), {office_.get()});
  ASSERT_EQ(reported.size(), 2u) << "Standard is as the standard's";
  EXPECT_EQ(reported[0].record, "Arch");
  EXPECT_EQ(reported[0].tag, 1u);
  EXPECT_EQ(reported[1].record, "ISO-25");
  EXPECT_EQ(reported[1].fixes,
            (std::vector<std::string>{"Arch@office.dws", "Standard@office.dws"}));
  EXPECT_EQ(reported[1].recommended, -1);

  // Variables by name, with the text style the standard names though the drawing stores none.
  OdArray<OdString> names;
  OdArray<OdVariant> current;
  plugin_->getPropertyDiffs(reported[0].error.get(), reported[0].fixObjects[0].get(), names,
                            current, {});
  st::StPropertyFormatterPtr format = plugin_->propertyFormatter();
  std::vector<std::string> rows;
  for (unsigned i = 0; i < names.size(); ++i) {
    OdVariant standard;
    reported[0].fixObjects[0]->propertyValue(names[i], standard);
    rows.push_back((names[i] + L": " + format->format(names[i], current[i]) + L" -> " +
                    format->format(names[i], standard))
                       .toUtf8());
  }
  EXPECT_EQ(rows,
            (std::vector<std::string>{"DIMSCALE: 96.0000 -> 48.0000", "DIMCLRD: yellow -> red",
                                      "DIMTXSTY: Standard -> Notes"}));

  plugin_->fixError(reported[0].error.get(), reported[0].fixObjects[0].get());
  EXPECT_TRUE(reported[0].error->flags() & st::kStErrorFixed);
  drawing_->writeFile(dir_.path() / "arch.dxf");
  EXPECT_EQ(plugintest::changedObjects(planFile_, dir_.path() / "arch.dxf"),
            (std::vector<std::string>{"+STYLE Notes", "DIMSTYLE Arch"}));

  plugin_->fixError(reported[1].error.get(), reported[1].fixObjects[0].get());
  EXPECT_TRUE(reported[1].error->flags() & st::kStErrorFixed);
  drawing_->writeFile(dir_.path() / "fixed.dxf");
  EXPECT_EQ(plugintest::changedObjects(dir_.path() / "arch.dxf", dir_.path() / "fixed.dxf"),
            (std::vector<std::string>{"-DIMSTYLE ISO-25", "DIMENSION #FFF01", "LEADER #FFF02",
                                      "TOLERANCE #FFF03"}));
  EXPECT_TRUE(plugintest::check(*plugin_, drawing_.get(), {office_.get()}).empty());

  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "print(sorted(s.dxf.name for s in doc.dimstyles))\n"
      "arch = doc.dimstyles.get('Arch')\n"
      "print(arch.dxf.dimscale, arch.dxf.dimclrd, arch.dxf.dimtxsty)\n"
      "print([(e.dxftype(), e.dxf.dimstyle) for e in doc.modelspace()])\n",
      dir_.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "['Arch', 'Standard']\n48.0 1 Notes\n"
            "[('DIMENSION', 'Arch'), ('LEADER', 'Arch'), ('TOLERANCE', 'Arch')]\n");
}

}  // namespace
