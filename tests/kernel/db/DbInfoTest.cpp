// `stcheck info --format json` against ezdxf's reading of every corpus drawing, and the new
// empty drawing as ezdxf sees it.

#include <gtest/gtest.h>

#include <sstream>

#include "DbTestSupport.h"

namespace {

TEST(DbInfo, AgreesWithEzdxfOnEveryCorpusDrawing) {
  auto files = testsupport::corpusDrawings();
  if (files.empty()) GTEST_SKIP() << "the shared corpus is absent";
  const std::string oracle = std::string(STAUDIT_SOURCE_DIR) + "/tests/kernel/db/DbInfoOracle.py";
  std::string command = std::string(STAUDIT_PYTHON) + " " + testsupport::shellQuote(oracle) + " " +
                        testsupport::shellQuote(std::string(STAUDIT_BIN_DIR) + "/stcheck");
  for (const auto& file : files) command += " " + testsupport::shellQuote(file.string());
  auto result = testsupport::runCommand(command);
  ASSERT_EQ(result.exitCode, 0) << result.output;

  int compared = 0;
  std::istringstream lines(result.output);
  for (std::string line; std::getline(lines, line);) {
    std::size_t tab1 = line.find('\t'), tab2 = line.find('\t', tab1 + 1);
    ASSERT_NE(tab2, std::string::npos) << line;
    const std::string name =
        std::filesystem::path(line.substr(tab1 + 1, tab2 - tab1 - 1)).filename();
    const std::string status = line.substr(0, tab1);
    SCOPED_TRACE(name);
    // Broken files, and the oldest drawings ezdxf is stricter about, may be refused; a
    // drawing both read must give the same answers.
    const bool mayFail = name.rfind("bad_", 0) == 0 || name.rfind("preR12_", 0) == 0;
    if (status == "0") {
      ++compared;
    } else if (status == "1" || !mayFail) {
      ADD_FAILURE() << line;
    } else if (status == "2") {
      EXPECT_NE(line.find("ezdxf rejects"), std::string::npos) << line;
    }
  }
  EXPECT_GT(compared, 100);
}

TEST(DbInfo, ANewDrawingHasTheStandardRecordsAndEzdxfReadsItWithoutComplaint) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  EXPECT_EQ(db->versionString(), OdString(L"AC1032"));
  for (OdDbObjectId id :
       {db->getLayerZeroId(), db->getLinetypeByLayerId(), db->getLinetypeByBlockId(),
        db->getLinetypeContinuousId(), db->getModelSpaceId(), db->getPaperSpaceId(),
        db->getNamedObjectsDictionaryId()})
    EXPECT_FALSE(id.isNull());
  testsupport::TempDir dir;
  db->writeFile(dir.path() / "new.dxf");
  auto info = testsupport::runStcheck({"info", (dir.path() / "new.dxf").string()});
  EXPECT_EQ(info.exitCode, 0) << info.output;
  EXPECT_NE(info.output.find("*Model_Space"), std::string::npos) << info.output;
  auto result = dbtest::ezdxf(
      "import logging\n"
      "logging.basicConfig(level=logging.WARNING, format='LOG %(message)s')\n"
      "doc = ezdxf.readfile(path)\n"
      "a = doc.audit()\n"
      "print('errors', len(a.errors), 'fixes', len(a.fixes), doc.layouts.names())\n",
      dir.path() / "new.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_NE(result.output.find("errors 0 fixes 0 ['Layout1', 'Model']"), std::string::npos)
      << result.output;
  EXPECT_EQ(result.output.find("LOG"), std::string::npos) << result.output;

  auto missing = testsupport::runStcheck({"info", (dir.path() / "absent.dxf").string()});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_NE(missing.output.find("absent.dxf"), std::string::npos) << missing.output;
}

}  // namespace
