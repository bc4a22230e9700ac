// Replacing a record moves every reference to it and leaves nothing naming it once it is
// purged: the header's current layer and text style, an insert's attribute, a polyline's
// vertices and SEQENDs, an entity whose layer stands outside its common subclass, an arc
// dimension's style, a multileader's and a multileader style's text style, an XRECORD and
// extended data naming a layer by handle, a proxy entity's object ids. A record that is the
// container of another object, and whose standard record the drawing has already, is left as
// it is and its error stays unfixed, saying why, and is reported again.

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
    plugintest::addLayer(*office, L"Frame-Old", 1);
    plugintest::addDimStyle(*office, L"Dims-Old", 1.0, 1);
    plugintest::addTextStyle(*office, L"Notes-Old", L"txt.shx", 0.0, 1.0);
    plugintest::addTextStyle(*office, L"Label-Old", L"txt.shx", 0.0, 1.0);
    office_ = plugintest::saveAndReload(*office, dir_.path() / "office.dws");

    OdDbDatabasePtr plan = OdDbDatabase::createEmpty();
    const std::string walls = plugintest::addLayer(*plan, L"Walls_Old", 3).getHandle().ascii();
    const std::string frame = plugintest::addLayer(*plan, L"Frame_Old", 3).getHandle().ascii();
    // The standard's Frame-Old is in the drawing already: Frame_Old is replaced by it, not
    // renamed in place.
    plugintest::addLayer(*plan, L"Frame-Old", 1);
    plugintest::addDimStyle(*plan, L"dims_old", 2.0, 3);
    const std::string notes =
        plugintest::addTextStyle(*plan, L"notes_old", L"txt.shx", 0.0, 1.0).getHandle().ascii();
    const std::string label =
        plugintest::addTextStyle(*plan, L"label_old", L"txt.shx", 0.0, 1.0).getHandle().ascii();
    plan->setHeaderVariable(L"$CLAYER", OdResBuf::newRb(8, L"Walls_Old").get());
    plan->setHeaderVariable(L"$TEXTSTYLE", OdResBuf::newRb(7, L"notes_old").get());
    plan->setHeaderVariable(L"$DIMTXSTY", OdResBuf::newRb(7, L"notes_old").get());
    const std::string ms = plan->getModelSpaceId().getHandle().ascii();
    const std::string blockTable = plan->getBlockTableId().getHandle().ascii();
    const std::string root = plan->getNamedObjectsDictionaryId().getHandle().ascii();

    // A block "Tag", an insert of it with an attribute, a polyline with two vertices, all on
    // the old layer; an arc dimension, a multileader, a proxy entity (its layer before its
    // common subclass), a line with extended data, each referring to an old record; a
    // multileader style and an XRECORD referring by handle (and by name); an XRECORD Frame_Old is a
    // reactor of, and a line on Frame_Old. Handles from F001 up, above those the drawing has.
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
                     entity + "0\nARC_DIMENSION\n5\nF009\n330\n" + ms +
                     "\n100\nAcDbEntity\n8\n0\n100\nAcDbDimension\n10\n0.0\n20\n0.0\n30\n0.0\n"
                     "11\n1.0\n21\n1.0\n31\n0.0\n70\n5\n3\ndims_old\n100\nAcDbArcDimension\n"
                     "13\n1.0\n23\n0.0\n33\n0.0\n14\n0.0\n24\n1.0\n34\n0.0\n15\n0.0\n25\n0.0\n"
                     "35\n0.0\n70\n0\n40\n0.0\n41\n1.5707963\n"
                     "0\nMULTILEADER\n5\nF00A\n330\n" +
                     ms + entity + "100\nAcDbMLeader\n270\n2\n340\nF008\n343\n" + notes +
                     "\n0\nACAD_PROXY_ENTITY\n5\nF00B\n330\n" + ms +
                     "\n8\nWalls_Old\n100\nAcDbEntity\n100\nAcDbProxyEntity\n90\n498\n91\n500\n"
                     "92\n0\n93\n0\n340\n" +
                     notes +
                     "\n94\n0\n"
                     "0\nLINE\n5\nF00C\n330\n" +
                     ms +
                     "\n100\nAcDbEntity\n8\n0\n100\nAcDbLine\n10\n0.0\n20\n0.0\n30\n0.0\n11\n1.0\n"
                     "21\n0.0\n31\n0.0\n1001\nACAD\n1005\n" +
                     walls + "\n0\nLINE\n5\nF00F\n330\n" + ms +
                     "\n100\nAcDbEntity\n8\nFrame_Old\n100\nAcDbLine\n10\n0.0\n20\n0.0\n30\n0.0\n"
                     "11\n1.0\n21\n0.0\n31\n0.0\n");
    insertBefore(text, "SECTION\n  2\nOBJECTS", "ENDSEC",
                 "0\nMLEADERSTYLE\n5\nF008\n330\n" + root +
                     "\n100\nAcDbMLeaderStyle\n179\n2\n342\n" + label +
                     "\n0\nXRECORD\n5\nF00D\n330\n" + root + "\n100\nAcDbXrecord\n280\n1\n330\n" +
                     walls + "\n8\nWalls_Old\n0\nXRECORD\n5\nF00E\n102\n{ACAD_REACTORS\n330\n" +
                     frame + "\n102\n}\n330\n" + root + "\n100\nAcDbXrecord\n280\n1\n1\nkept\n");
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
      descriptions_[r.record] = r.error->description().toUtf8();
    }
    return flags;
  }

  testsupport::TempDir dir_;
  OdDbDatabasePtr office_;
  OdDbDatabasePtr drawing_;
  std::filesystem::path planFile_;
  std::map<std::string, std::string> descriptions_;  // of the last errors fixAll saw
};

TEST_F(PurgeSafetyTest, AReplacementMovesEveryReferenceAndAContainerKeepsItsRecordUnfixed) {
  auto layers = fixAll(L"StDWSLayerPlugin");
  EXPECT_TRUE(layers["Walls_Old"] & st::kStErrorFixed);
  EXPECT_FALSE(layers["Frame_Old"] & st::kStErrorFixed) << "the XRECORD F00E keeps it";
  EXPECT_NE(descriptions_["Frame_Old"].find(
                "It cannot be replaced automatically: the XRECORD F00E belongs to it."),
            std::string::npos)
      << descriptions_["Frame_Old"];
  auto styles = fixAll(L"StDWSTextstylePlugin");
  EXPECT_TRUE(styles["notes_old"] & st::kStErrorFixed);
  EXPECT_TRUE(styles["label_old"] & st::kStErrorFixed);
  EXPECT_TRUE(fixAll(L"StDWSDimstylePlugin")["dims_old"] & st::kStErrorFixed);
  // A second check finds only what was not fixed.
  EXPECT_EQ(fixAll(L"StDWSLayerPlugin").size(), 1u);
  EXPECT_EQ(fixAll(L"StDWSTextstylePlugin").size(), 0u);
  EXPECT_EQ(fixAll(L"StDWSDimstylePlugin").size(), 0u);

  const auto fixed = dir_.path() / "fixed.dxf";
  plugintest::saveAndReload(*drawing_, fixed);
  // ezdxf reads the file, and its own tag reader walks every tag: each pointer must name an
  // object the file holds, each layer, linetype, text style and dimension style name of an
  // entity a record the file holds.
  auto result = plugintest::ezdxf(
      "import io\n"
      "from ezdxf.lldxf.tagger import ascii_tags_loader\n"
      "doc = ezdxf.readfile(path)\n"
      "tables = {8: doc.layers, 6: doc.linetypes, 7: doc.styles, 3: doc.dimstyles}\n"
      "known = {c: {r.dxf.name.lower() for r in t} | {'bylayer', 'byblock'} for c, t in "
      "tables.items()}\n"
      "dims = {'DIMENSION', 'ARC_DIMENSION', 'LEADER', 'TOLERANCE'}\n"
      "section = kind = None; xdata = False; dangling = []\n"
      "for t in ascii_tags_loader(io.StringIO(open(path).read())):\n"
      "  c, v = t.code, str(t.value).strip()\n"
      "  if c == 0: kind = v; xdata = False; continue\n"
      "  if c == 2 and kind == 'SECTION': section = v\n"
      "  if c == 1001: xdata = True\n"
      "  ptr = 320 <= c <= 369 or 390 <= c <= 399 or c in (480, 481, 1005)\n"
      "  if ptr and v != '0' and v.upper() not in doc.entitydb: dangling.append((kind, c, v))\n"
      "  named = c in (6, 7, 8) or (c == 3 and kind in dims)\n"
      "  if section in ('ENTITIES', 'BLOCKS') and named and not xdata and v.lower() not in "
      "known[c]:\n"
      "    dangling.append((kind, c, v))\n"
      "print(dangling)\n"
      "h = doc.header\n"
      "print(h['$CLAYER'], h['$TEXTSTYLE'], h['$DIMTXSTY'])\n"
      "print(sorted(l.dxf.name for l in doc.layers if l.dxf.name != 'Defpoints'))\n"
      "print(sorted(s.dxf.name for s in doc.styles), sorted(d.dxf.name for d in doc.dimstyles))\n"
      "name = lambda h: doc.entitydb[h].dxf.name\n"
      "msp = doc.modelspace()\n"
      "insert = msp.query('INSERT')[0]\n"
      "print([(a.dxf.layer, a.dxf.style) for a in insert.attribs], insert.seqend.dxf.layer)\n"
      "line = msp.query('POLYLINE')[0]\n"
      "print([v.dxf.layer for v in line.vertices], line.seqend.dxf.layer)\n"
      "print(name(doc.objects.query('MLEADERSTYLE')[0].dxf.text_style_handle))\n"
      "e = doc.entitydb\n"
      "print(e['F009'].dxf.dimstyle, e['F00A'].dxf.layer, e['F00B'].dxf.layer, "
      "e['F00F'].dxf.layer)\n"
      "print(name(e['F00C'].get_xdata('ACAD')[0].value), name(e['F00D'].tags[0].value),\n"
      "      e['F00D'].tags[1].value,\n"
      "      name(e['F00A'].dxf.text_style_handle))\n",
      fixed);
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "[]\n"
            "Walls-Old Notes-Old Notes-Old\n"
            "['0', 'Frame-Old', 'Frame_Old', 'Walls-Old']\n"
            "['Label-Old', 'Notes-Old', 'Standard'] ['Dims-Old', 'Standard']\n"
            "[('Walls-Old', 'Notes-Old')] Walls-Old\n"
            "['Walls-Old', 'Walls-Old'] Walls-Old\n"
            "Label-Old\n"
            "Dims-Old Walls-Old Walls-Old Frame_Old\n"
            "Walls-Old Walls-Old Walls-Old Notes-Old\n");
}

}  // namespace
