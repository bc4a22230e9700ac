// `stcheck convert` run as a user runs it, over every drawing of the corpus.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::runStcheck;

std::string readBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

bool isBad(const fs::path& path) {
  return path.filename().string().rfind("bad_", 0) == 0;
}

TEST(StcheckConvert, EveryDrawingComesOutByteForByteOrWithOneError) {
  auto files = testsupport::corpusDrawings();
  if (files.empty()) GTEST_SKIP() << "the shared corpus is absent (" STAUDIT_CORPUS_DIR ")";
  testsupport::TempDir temp;
  int converted = 0;
  for (const auto& path : files) {
    const std::string name = path.filename().string();
    SCOPED_TRACE(name);
    const fs::path out = temp.path() / name;
    auto result = runStcheck({"convert", path.string(), out.string()});
    if (result.exitCode == 0) {
      EXPECT_TRUE(readBytes(out) == readBytes(path)) << "output differs";
      ++converted;
      continue;
    }
    // Only broken drawings and the one pre-R12 file that is not tag pairs may fail.
    EXPECT_TRUE(isBad(path) || name == "preR12_r1.4_libredwg_entities.dxf") << result.output;
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output.rfind("stcheck: " + path.string() + ": ", 0), 0u) << result.output;
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
    EXPECT_FALSE(fs::exists(out));
  }
  EXPECT_GT(converted, 100);
}

TEST(StcheckConvert, BetweenAsciiAndBinary) {
  auto dir = testsupport::corpusDir();
  if (dir.empty()) GTEST_SKIP() << "the shared corpus is absent";
  testsupport::TempDir temp;
  const fs::path ascii = dir / "r2000_godxf_supported_entities.dxf";
  const fs::path bin = temp.path() / "bin.dxf";
  const fs::path back = temp.path() / "back.dxf";
  const fs::path again = temp.path() / "again.dxf";
  ASSERT_EQ(runStcheck({"convert", ascii.string(), bin.string(), "--binary"}).exitCode, 0);
  EXPECT_EQ(readBytes(bin).rfind(std::string("AutoCAD Binary DXF\r\n\x1a\0", 22), 0), 0u);
  ASSERT_EQ(runStcheck({"convert", bin.string(), back.string(), "--ascii"}).exitCode, 0);
  ASSERT_EQ(runStcheck({"convert", back.string(), again.string()}).exitCode, 0);
  EXPECT_TRUE(readBytes(back) == readBytes(again));
  EXPECT_LT(readBytes(bin).size(), readBytes(back).size());
}

TEST(StcheckConvert, UsageAndFileErrors) {
  testsupport::TempDir temp;
  auto missing = runStcheck(
      {"convert", (temp.path() / "none.dxf").string(), (temp.path() / "o.dxf").string()});
  EXPECT_EQ(missing.exitCode, 2);
  EXPECT_EQ(
      missing.output.rfind("stcheck: " + (temp.path() / "none.dxf").string() + ": no such file", 0),
      0u)
      << missing.output;
  auto both = runStcheck({"convert", "a.dxf", "b.dxf", "--binary", "--ascii"});
  EXPECT_EQ(both.exitCode, 2);
  auto noOutput = runStcheck({"convert", "a.dxf"});
  EXPECT_EQ(noOutput.exitCode, 2);
  EXPECT_NE(noOutput.output.find("OUT"), std::string::npos) << noOutput.output;

  std::ofstream(temp.path() / "in.dxf") << "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
  auto unwritable = runStcheck({"convert", (temp.path() / "in.dxf").string(),
                                (temp.path() / "no" / "such" / "folder.dxf").string()});
  EXPECT_EQ(unwritable.exitCode, 2);
  EXPECT_NE(unwritable.output.find("folder.dxf"), std::string::npos) << unwritable.output;
}

}  // namespace
