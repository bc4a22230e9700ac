// The four plug-ins over every real drawing of the shared corpus, checked against the
// example office standards: applying each recommended fix leaves nothing a second check could
// recommend, and the fixed drawing saves and reads back.

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

}  // namespace
