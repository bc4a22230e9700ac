// Replacing a record must leave nothing naming it once it is purged: the header's current
// layer and text style, an insert's attribute, a polyline's vertices and SEQENDs; and a
// record that an object of a type the kernel has no class for names by handle is kept.

#include "PluginsTestSupport.h"
#include "StErrorFlags.h"

namespace {

// Inserts `lines` into an ASCII drawing before the group-0 line `end` ("ENDTAB", "ENDSEC")
// that first follows the text `after`.
void insertBefore(std::string& text, const std::string& after, const std::string& end,
                  const std::string& lines) {
  const size_t from = text.find(after);
  ASSERT_NE(from, std::string::npos) << after;
  const size_t closing = text.find("\n" + end, from);
  ASSERT_NE(closing, std::string::npos) << end;
  const size_t line = text.rfind('\n', closing - 1) + 1;
  text.insert(line, lines);
}

class PurgeSafetyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    OdDbDatabasePtr office = OdDbDatabase::createEmpty();
    plugintest::addLayer(*office, L"Walls-Old", 1);
    plugintest::addTextStyle(*office, L"Notes-Old", L"txt.shx", 0.0, 1.0);
    plugintest::addTextStyle(*office, L"Label-Old", L"txt.shx", 0.0, 1.0);
    office_ = plugintest::saveAndReload(*office, dir_.path() / "office.dws");

    OdDbDatabasePtr plan = OdDbDatabase::createEmpty();
    plugintest::addLayer(*plan, L"Walls_Old", 3);
    plugintest::addTextStyle(*plan, L"notes_old", L"txt.shx", 0.0, 1.0);
    const std::string label =
        plugintest::addTextStyle(*plan, L"label_old", L"txt.shx", 0.0, 1.0).getHandle().ascii();
    plan->setHeaderVariable(L"$CLAYER", OdResBuf::newRb(8, L"Walls_Old").get());
    plan->setHeaderVariable(L"$TEXTSTYLE", OdResBuf::newRb(7, L"notes_old").get());
    plan->setHeaderVariable(L"$DIMTXSTY", OdResBuf::newRb(7, L"notes_old").get());
    const std::string ms = plan->getModelSpaceId().getHandle().ascii();
    const std::string blockTable = plan->getBlockTableId().getHandle().ascii();
    const std::string root = plan->getNamedObjectsDictionaryId().getHandle().ascii();

    // A block "Tag", an insert of it with an attribute, a polyline with two vertices, all on
    // the old layer, and a multileader style (no class of the kernel) naming label_old by
    // handle. Handles from F001 up, above those the drawing has.
    std::string text = plan->writeBuffer(false);
    insertBefore(text, "BLOCK_RECORD", "ENDTAB",
                 "0\nBLOCK_RECORD\n5\nF010\n330\n" + blockTable +
                     "\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\nTag\n");
    insertBefore(text, "SECTION\n  2\nBLOCKS", "ENDSEC",
                 "0\nBLOCK\n5\nF011\n330\nF010\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\n"
                 "Tag\n70\n0\n10\n0.0\n20\n0.0\n30\n0.0\n3\nTag\n1\n\n"
                 "0\nENDBLK\n5\nF012\n330\nF010\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n");
    const std::string entity = "\n100\nAcDbEntity\n8\nWalls_Old\n";
    insertBefore(text, "SECTION\n  2\nENTITIES", "ENDSEC",
                 "0\nINSERT\n5\nF001\n330\n" + ms + entity +
                     "100\nAcDbBlockReference\n66\n1\n2\nTag\n10\n0.0\n20\n0.0\n30\n0.0\n"
                     "0\nATTRIB\n5\nF002\n330\nF001" +
                     entity +
                     "100\nAcDbText\n10\n0.0\n20\n0.0\n30\n0.0\n40\n1.0\n1\nA-1\n7\nnotes_old\n"
                     "100\nAcDbAttribute\n2\nNUMBER\n70\n0\n"
                     "0\nSEQEND\n5\nF003\n330\nF001" +
                     entity + "0\nPOLYLINE\n5\nF004\n330\n" + ms + entity +
                     "100\nAcDb2dPolyline\n66\n1\n10\n0.0\n20\n0.0\n30\n0.0\n70\n0\n"
                     "0\nVERTEX\n5\nF005\n330\nF004" +
                     entity +
                     "100\nAcDbVertex\n100\nAcDb2dVertex\n10\n0.0\n20\n0.0\n30\n0.0\n70\n0\n"
                     "0\nVERTEX\n5\nF006\n330\nF004" +
                     entity +
                     "100\nAcDbVertex\n100\nAcDb2dVertex\n10\n5.0\n20\n0.0\n30\n0.0\n70\n0\n"
                     "0\nSEQEND\n5\nF007\n330\nF004" +
                     entity);
    insertBefore(text, "SECTION\n  2\nOBJECTS", "ENDSEC",
                 "0\nMLEADERSTYLE\n5\nF008\n330\n" + root +
                     "\n100\nAcDbMLeaderStyle\n179\n2\n342\n" + label + "\n");
    // The value of $HANDSEED is the second line after its name.
    const size_t name = text.find("$HANDSEED\n");
    ASSERT_NE(name, std::string::npos);
    const size_t value = text.find('\n', text.find('\n', name) + 1) + 1;
    text.replace(value, text.find('\n', value) - value, "F100");
    planFile_ = dir_.path() / "plan.dxf";
    std::ofstream(planFile_, std::ios::binary) << text;
    drawing_ = OdDbDatabase::readFile(planFile_);
  }

  // Checks with `className` and applies every recommended fix; the errors' flags by record.
  std::map<std::string, std::uint32_t> fixAll(const wchar_t* className) {
    st::StDWSPluginPtr plugin = plugintest::createPlugin(className);
    std::map<std::string, std::uint32_t> flags;
    for (const plugintest::Reported& r :
         plugintest::check(*plugin, drawing_.get(), {office_.get()})) {
      st::StFixPtr fix = plugin->getRecommendedFix(r.error.get());
      if (!fix.isNull()) plugin->fixError(r.error.get(), fix.get());
      flags[r.record] = r.error->flags();
    }
    return flags;
  }

  testsupport::TempDir dir_;
  OdDbDatabasePtr office_;
  OdDbDatabasePtr drawing_;
  std::filesystem::path planFile_;
};

TEST_F(PurgeSafetyTest, AReplacementMovesHeaderAndSubEntitiesAndKeepsARecordNamedByHandle) {
  auto layers = fixAll(L"StDWSLayerPlugin");
  EXPECT_TRUE(layers["Walls_Old"] & st::kStErrorFixed);
  auto styles = fixAll(L"StDWSTextstylePlugin");
  EXPECT_TRUE(styles["notes_old"] & st::kStErrorFixed);
  EXPECT_TRUE(styles["label_old"] & st::kStErrorFixed) << "kept, yet the fix succeeds";

  OdDbLayerTablePtr layerTable = drawing_->getLayerTableId().safeOpenObject();
  EXPECT_TRUE(layerTable->getAt(L"Walls_Old").isNull());
  OdDbTextStyleTablePtr styleTable = drawing_->getTextStyleTableId().safeOpenObject();
  EXPECT_TRUE(styleTable->getAt(L"notes_old").isNull());
  EXPECT_FALSE(styleTable->getAt(L"label_old").isNull());
  layerTable.release();
  styleTable.release();

  const auto fixed = dir_.path() / "fixed.dxf";
  plugintest::saveAndReload(*drawing_, fixed);
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "h = doc.header\n"
      "print(h['$CLAYER'], h['$TEXTSTYLE'], h['$DIMTXSTY'])\n"
      "print(sorted(l.dxf.name for l in doc.layers if l.dxf.name != 'Defpoints'))\n"
      "print(sorted(s.dxf.name for s in doc.styles))\n"
      "msp = doc.modelspace()\n"
      "insert = msp.query('INSERT')[0]\n"
      "print([(a.dxf.layer, a.dxf.style) for a in insert.attribs], insert.seqend.dxf.layer)\n"
      "line = msp.query('POLYLINE')[0]\n"
      "print([v.dxf.layer for v in line.vertices], line.seqend.dxf.layer)\n"
      "print(doc.entitydb[doc.objects.query('MLEADERSTYLE')[0].dxf.text_style_handle].dxf.name)\n",
      fixed);
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "Walls-Old Notes-Old Notes-Old\n"
            "['0', 'Walls-Old']\n"
            "['Label-Old', 'Notes-Old', 'Standard', 'label_old']\n"
            "[('Walls-Old', 'Notes-Old')] Walls-Old\n"
            "['Walls-Old', 'Walls-Old'] Walls-Old\n"
            "label_old\n");
}

}  // namespace
