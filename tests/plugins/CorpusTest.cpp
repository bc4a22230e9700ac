// The four plug-ins over real drawings of every release (that each conforms to a copy of
// itself is checked through stcheck, in the apps tests): against the example office standards, no
// difference is one of a value left out, applying each recommended fix leaves nothing a second
// check could recommend, and the fixed drawing saves and reads back; drawings and standards written
// by ezdxf as R12, R2000 and R2018 with the same records conform to each other whatever the
// releases, a changed colour is still found, and its fix writes nothing R12 cannot hold.

#include <fstream>
#include <sstream>

#include "PluginsTestSupport.h"
#include "StErrorFlags.h"

namespace {

const wchar_t* const kPlugins[] = {L"StDWSDimstylePlugin", L"StDWSLayerPlugin",
                                   L"StDWSLinetypePlugin", L"StDWSTextstylePlugin"};

// Walks every error of every plug-in; with `fix`, applies each recommended fix. The titles of
// the errors that had a recommended fix.
std::vector<std::string> recommendedFixes(OdDbDatabase* drawing, OdDbDatabase* standard, bool fix) {
  std::vector<std::string> found;
  for (const wchar_t* className : kPlugins) {
    st::StDWSPluginPtr plugin = plugintest::createPlugin(className);
    plugin->initialize(nullptr);
    plugin->setupForAudit(drawing, drawing->getFilename(), {L"office-standards.dws"}, {standard});
    plugin->setObjects({}, true);
    plugin->start(nullptr);
    for (plugin->next(); !plugin->done(); plugin->next()) {
      st::StErrorPtr error = plugin->getError();
      st::StFixPtr recommended = plugin->getRecommendedFix(error.get());
      if (recommended.isNull()) continue;
      // A value a record leaves out compares as its default, and one a release cannot hold
      // is not compared: no difference shows a value as missing.
      OdArray<OdString> names;
      OdArray<OdVariant> current;
      plugin->getPropertyDiffs(error.get(), recommended.get(), names, current, {});
      for (unsigned i = 0; i < names.size(); ++i) {
        OdVariant standardValue;
        recommended->propertyValue(names[i], standardValue);
        EXPECT_FALSE(current[i].isVoid() || standardValue.isVoid())
            << names[i].toUtf8() << " of " << error->name().toUtf8() << " in "
            << drawing->getFilename().toUtf8();
      }
      found.push_back(error->name().toUtf8());
      if (!fix) continue;
      plugin->fixError(error.get(), recommended.get());
      EXPECT_TRUE(error->flags() & st::kStErrorFixed)
          << error->name().toUtf8() << " in " << drawing->getFilename().toUtf8();
    }
  }
  return found;
}

TEST(PluginsOnTheCorpus, RecommendedFixesLeaveNothingToRecommend) {
  const auto drawings = testsupport::corpusDrawings();
  if (drawings.empty()) GTEST_SKIP() << "the shared corpus is absent: " << STAUDIT_CORPUS_DIR;
  const auto standardFile =
      std::filesystem::path(STAUDIT_SOURCE_DIR) / "examples" / "office-standards.dws";
  OdDbDatabasePtr standard = OdDbDatabase::readFile(standardFile);
  testsupport::TempDir dir;
  int checked = 0;
  std::size_t fixed = 0;
  for (const auto& file : drawings) {
    OdDbDatabasePtr drawing;
    try {
      drawing = OdDbDatabase::readFile(file);
    } catch (const OdError&) {
      continue;  // a damaged file of the corpus: the kernel's tests cover its error
    }
    ++checked;
    fixed += recommendedFixes(drawing.get(), standard.get(), true).size();
    EXPECT_EQ(recommendedFixes(drawing.get(), standard.get(), false), std::vector<std::string>{})
        << file;
    OdDbDatabasePtr reread = plugintest::saveAndReload(*drawing, dir.path() / file.filename());
    EXPECT_EQ(recommendedFixes(reread.get(), standard.get(), false), std::vector<std::string>{})
        << file;
  }
  EXPECT_GT(checked, 100);
  EXPECT_GT(fixed, 100u) << "the corpus should give the fixes something to do";
}

// The errors every plug-in reports for `drawing` against `standards`, as "record: title".
std::vector<std::string> allErrors(OdDbDatabase* drawing,
                                   const std::vector<OdDbDatabase*>& standards) {
  std::vector<std::string> errors;
  for (const wchar_t* className : kPlugins) {
    st::StDWSPluginPtr plugin = plugintest::createPlugin(className);
    for (const plugintest::Reported& r : plugintest::check(*plugin, drawing, standards))
      errors.push_back(r.record + ": " + r.error->name().toUtf8());
  }
  return errors;
}

// An R13 drawing whose dimension style STANDARD stores almost no variables, against a
// standard whose Standard stores others at their defaults: only its two layers of names no
// standard has are reported. The style's handle is its group 105 (its empty group 5 is DIMBLK).
TEST(PluginsOnTheCorpus, VariablesLeftOutCompareAsTheirDefaults) {
  const auto corpus = testsupport::corpusDir();
  if (corpus.empty()) GTEST_SKIP() << "the shared corpus is absent: " << STAUDIT_CORPUS_DIR;
  OdDbDatabasePtr drawing = OdDbDatabase::readFile(corpus / "r13_ezdxf_small_dos932.dxf");
  OdDbDatabasePtr standard = OdDbDatabase::readFile(std::filesystem::path(STAUDIT_SOURCE_DIR) /
                                                    "examples" / "office-standards.dws");
  OdDbSymbolTablePtr styles = drawing->getDimStyleTableId().safeOpenObject();
  EXPECT_EQ(styles->getAt(L"STANDARD").getHandle().ascii(), "6F");
  EXPECT_EQ(
      allErrors(drawing.get(), {standard.get()}),
      (std::vector<std::string>{"3USMM_PKG: The layer \"3USMM_PKG\" has a non-standard name",
                                "FOOT_PRINT: The layer \"FOOT_PRINT\" has a non-standard name"}));
}

// How many entities of a saved ASCII drawing name `layer` by group 8, wherever it stands.
int entitiesOn(const std::filesystem::path& file, const std::string& layer) {
  std::istringstream lines(testsupport::readBytes(file));
  std::string code, value;
  int count = 0;
  while (std::getline(lines, code) && std::getline(lines, value)) {
    if (!value.empty() && value.back() == '\r') value.pop_back();
    count += code.find_first_not_of(' ') != std::string::npos &&
             code.substr(code.find_first_not_of(' ')) == "8" && value == layer;
  }
  return count;
}

// Writers that put an entity's layer outside its common subclass (or name it where the common
// subclass has no marker): replacing the layer by a standard one of a near name moves every
// entity, and the old layer goes only then.
TEST(PluginsOnTheCorpus, AReplacedLayerTakesEveryEntityWhereverItsWriterPutTheLayer) {
  const auto corpus = testsupport::corpusDir();
  if (corpus.empty()) GTEST_SKIP() << "the shared corpus is absent: " << STAUDIT_CORPUS_DIR;
  testsupport::TempDir dir;
  const std::pair<const char*, std::string> cases[] = {
      {"r2000_godxf_supported_entities.dxf", "boxes"},
      {"r2000_qcad_din6771_a3_Uescape_layers.dxf", "RAHMEN_DOPPELT"}};
  for (const auto& [name, layer] : cases) {
    // The standard is the drawing with the layer named as the standard would name it.
    std::string text = testsupport::readBytes(corpus / name);
    const std::string standardName = layer.substr(0, 3) + "-" + layer.substr(3);
    for (size_t at = 0; (at = text.find("\n" + layer + "\n", at)) != std::string::npos;)
      text.replace(at + 1, layer.size(), standardName);
    const auto standardFile = dir.path() / (std::string(name) + ".dws");
    std::ofstream(standardFile, std::ios::binary) << text;
    OdDbDatabasePtr standard = OdDbDatabase::readFile(standardFile);
    OdDbDatabasePtr drawing = OdDbDatabase::readFile(corpus / name);
    const int before = entitiesOn(corpus / name, layer);
    EXPECT_GT(before, 30) << name;

    st::StDWSPluginPtr plugin = plugintest::createPlugin(L"StDWSLayerPlugin");
    for (const plugintest::Reported& r :
         plugintest::check(*plugin, drawing.get(), {standard.get()})) {
      st::StFixPtr fix = plugin->getRecommendedFix(r.error.get());
      ASSERT_FALSE(fix.isNull()) << r.record;
      plugin->fixError(r.error.get(), fix.get());
      EXPECT_TRUE(r.error->flags() & st::kStErrorFixed) << r.record;
    }
    const auto fixed = dir.path() / name;
    OdDbDatabasePtr reread = plugintest::saveAndReload(*drawing, fixed);
    EXPECT_EQ(entitiesOn(fixed, layer), 0) << name;
    EXPECT_EQ(entitiesOn(fixed, standardName), before) << name;
    EXPECT_TRUE(plugintest::check(*plugin, reread.get(), {standard.get()}).empty()) << name;
  }
  // ezdxf finds every entity of the first drawing on a layer the file holds.
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "names = {l.dxf.name.lower() for l in doc.layers}\n"
      "print([e.dxf.handle for e in doc.entitydb.values()\n"
      "       if e.dxf.hasattr('layer') and e.dxf.layer.lower() not in names])\n",
      dir.path() / cases[0].first);
  EXPECT_EQ(result.output, "[]\n");
}

// A drawing written by ezdxf as `version` with a few layers (one with a linetype of a
// pattern), a text style with a font and a dimension style with variables of its own, one
// of them (DIMLWD) of R2000 on; `changed` gives the layer "Walls" another colour and the
// dimension style another DIMSCALE.
std::filesystem::path ezdxfDrawing(const std::filesystem::path& dir, const std::string& version,
                                   bool changed) {
  const auto file = dir / (version + (changed ? "-changed.dxf" : ".dxf"));
  auto result =
      plugintest::ezdxf("doc = ezdxf.new('" + version + "')\n" +
                            "doc.linetypes.add('Center2', pattern=[1.5, 1.0, -0.25, 0.0, -0.25],\n"
                            "                  description='Center __ . __')\n"
                            "doc.layers.add('Walls', color=" +
                            (changed ? "2" : "1") + ", linetype='Center2')\n" +
                            "doc.layers.add('Doors', color=3)\n"
                            "doc.layers.add('Notes', color=5)\n"
                            "doc.styles.add('Notes', font='romans.shx').dxf.width = 0.8\n"
                            "arch = doc.dimstyles.add('Arch')\n"
                            "arch.dxf.dimscale = " +
                            (changed ? "96" : "48") + "\n" +
                            "arch.dxf.dimtxt = 0.125\n"
                            "arch.dxf.dimclrd = 2\n"
                            "arch.dxf.dimtad = 1\n"
                            "arch.dxf.dimexe = 0.1\n"
                            "arch.dxf.dimlwd = 35\n"
                            "doc.saveas(path)\n",
                        file);
  EXPECT_EQ(result.exitCode, 0) << result.output;
  return file;
}

// The group codes a saved ASCII drawing uses.
std::set<int> groupCodes(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::set<int> codes;
  std::string code;
  std::string value;
  while (std::getline(in, code) && std::getline(in, value)) codes.insert(std::stoi(code));
  return codes;
}

// Applies the recommended fix of every error of every plug-in; the properties each fix
// changed, as "record: property".
std::vector<std::string> fixAll(OdDbDatabase* drawing, OdDbDatabase* standard) {
  std::vector<std::string> changed;
  for (const wchar_t* className : kPlugins) {
    st::StDWSPluginPtr plugin = plugintest::createPlugin(className);
    for (const plugintest::Reported& r : plugintest::check(*plugin, drawing, {standard})) {
      st::StFixPtr fix = plugin->getRecommendedFix(r.error.get());
      OdArray<OdString> names;
      OdArray<OdVariant> current;
      plugin->getPropertyDiffs(r.error.get(), fix.get(), names, current, {});
      for (const OdString& name : names) changed.push_back(r.record + ": " + name.toUtf8());
      plugin->fixError(r.error.get(), fix.get());
      EXPECT_TRUE(r.error->flags() & st::kStErrorFixed) << r.record;
    }
  }
  return changed;
}

TEST(PluginsAcrossReleases, SameRecordsConformWhateverTheReleasesAndDifferencesAreFixed) {
  testsupport::TempDir dir;
  const std::vector<std::string> versions{"R12", "R2000", "R2018"};
  std::map<std::string, OdDbDatabasePtr> standards;
  std::map<std::string, OdDbDatabasePtr> changed;
  for (const std::string& version : versions) {
    standards[version] = OdDbDatabase::readFile(ezdxfDrawing(dir.path(), version, false));
    changed[version] = OdDbDatabase::readFile(ezdxfDrawing(dir.path(), version, true));
  }
  const std::vector<std::string> differences{
      "Arch: The dimension style \"Arch\" has non-standard properties",
      "Walls: The layer \"Walls\" has non-standard properties"};
  for (const std::string& version : versions) {
    OdDbDatabasePtr same = OdDbDatabase::readFile(dir.path() / (version + ".dxf"));
    for (const std::string& standard : versions) {
      EXPECT_EQ(allErrors(same.get(), {standards[standard].get()}), std::vector<std::string>{})
          << version << " drawing, " << standard << " standard";
      EXPECT_EQ(allErrors(changed[version].get(), {standards[standard].get()}), differences)
          << version << " drawing, " << standard << " standard";
    }
  }

  // The R12 drawing fixed from the R2018 standard: the colour and the scale change, with no
  // group code the R12 file did not use before, and ezdxf reads the result. The same for the
  // drawing without its $ACADVER, which is read and written as a release-12 one.
  {
    std::ifstream in(dir.path() / "R12-changed.dxf");
    std::string text((std::istreambuf_iterator<char>(in)), {});
    const auto at = text.find("$ACADVER\n  1\nAC1009\n");
    ASSERT_NE(at, std::string::npos);
    text.erase(at - 4, std::string("  9\n$ACADVER\n  1\nAC1009\n").size());
    std::ofstream(dir.path() / "unversioned-changed.dxf") << text;
  }
  const std::vector<std::string> fixes{"Arch: DIMSCALE", "Walls: Color"};
  for (const std::string name : {"R12", "unversioned"}) {
    const auto original = dir.path() / (name + "-changed.dxf");
    OdDbDatabasePtr drawing = OdDbDatabase::readFile(original);
    EXPECT_EQ(fixAll(drawing.get(), standards["R2018"].get()), fixes) << name;
    const auto fixed = dir.path() / (name + "-fixed.dxf");
    OdDbDatabasePtr reread = plugintest::saveAndReload(*drawing, fixed);
    EXPECT_EQ(plugintest::changedObjects(original, fixed),
              (std::vector<std::string>{"DIMSTYLE Arch", "LAYER Walls"}));
    const std::set<int> before = groupCodes(original);
    for (int code : groupCodes(fixed)) EXPECT_TRUE(before.count(code)) << name << " " << code;
    EXPECT_EQ(allErrors(reread.get(), {standards["R2018"].get()}), std::vector<std::string>{});
    auto result = plugintest::ezdxf(
        "doc = ezdxf.readfile(path)\n"
        "walls = doc.layers.get('Walls')\n"
        "arch = doc.dimstyles.get('Arch')\n"
        "print(doc.dxfversion, walls.dxf.color, walls.dxf.linetype, arch.dxf.dimscale)\n",
        fixed);
    EXPECT_EQ(result.output, "AC1009 1 Center2 48.0\n") << name;
  }

  // The R2018 drawing fixed from the R12 standard keeps what R12 cannot store: it then
  // conforms to the R2018 standard too.
  EXPECT_EQ(fixAll(changed["R2018"].get(), standards["R12"].get()), fixes);
  EXPECT_EQ(allErrors(changed["R2018"].get(), {standards["R2018"].get()}),
            std::vector<std::string>{});
}

}  // namespace
