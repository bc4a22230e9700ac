// How stcheck finds and reads the standards files of a drawing, run as a user runs it: every
// real drawing against a copy of itself, drawings that cannot hold a list of standards,
// standards files that are not drawings or not even regular files, and lists of relative
// paths found from the drawing's folder and the host's support folders wherever stcheck is
// started.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::ProcessResult;
using testsupport::readBytes;
using testsupport::runCommand;
using testsupport::runStcheckIn;
using testsupport::shellQuote;

TEST(StcheckStandardsFiles, EveryCorpusDrawingMeetsACopyOfItself) {
  if (testsupport::corpusDir().empty()) GTEST_SKIP() << "no corpus at " << STAUDIT_CORPUS_DIR;
  testsupport::TempDir temp;
  const fs::path config = temp.path() / "config.json";
  int checked = 0;
  for (const fs::path& drawing : testsupport::corpusDrawings()) {
    // Drawings broken on purpose are the reader's tests; every other one must be read.
    const std::string name = drawing.filename().string();
    if (runStcheckIn(temp.path(), config, {"info", drawing.string()}).exitCode != 0) {
      EXPECT_TRUE(name.rfind("bad_", 0) == 0 || name.rfind("preR12_r1.4", 0) == 0) << name;
      continue;
    }
    const fs::path standard = temp.path() / (drawing.stem().string() + ".dws");
    fs::copy_file(drawing, standard, fs::copy_options::overwrite_existing);
    auto run = runStcheckIn(temp.path(), config,
                            {"check", drawing.string(), "--standard", standard.string()});
    EXPECT_EQ(run.exitCode, 0) << drawing.filename() << "\n" << run.output;
    ++checked;
  }
  EXPECT_GT(checked, 100);
}

TEST(StcheckStandardsFiles, OldDrawingsAreCheckedAgainstStandardsOfTheRunOnly) {
  if (testsupport::corpusDir().empty()) GTEST_SKIP() << "no corpus at " << STAUDIT_CORPUS_DIR;
  testsupport::TempDir temp;
  const fs::path config = temp.path() / "config.json";
  const fs::path r12 = temp.path() / "meter.dxf";
  testsupport::copyWorkingCopy(testsupport::corpusDir() / "r12_ezdxf_laser_meter_export.dxf", r12);
  const std::string original = readBytes(r12);
  fs::copy_file(fs::path(STAUDIT_SOURCE_DIR) / "examples/office-standards.dws",
                temp.path() / "office.dws");

  // It cannot keep a list (the corpus test checks it with the run's standards), and stcheck
  // says why and what to do instead.
  auto run = runStcheckIn(temp.path(), config, {"standards", "meter.dxf", "--add", "office.dws"});
  EXPECT_EQ(run.exitCode, 2) << run.output;
  EXPECT_NE(run.output.find("release 12 or older (AC1009)"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("--standard"), std::string::npos) << run.output;
  EXPECT_EQ(readBytes(r12), original);
  // Nor can a later drawing written without its objects section.
  testsupport::copyWorkingCopy(testsupport::corpusDir() / "r2000_cadviewer_minimal_line.dxf",
                               temp.path() / "line.dxf");
  run = runStcheckIn(temp.path(), config, {"standards", "line.dxf", "--add", "office.dws"});
  EXPECT_EQ(run.exitCode, 2) << run.output;
  EXPECT_NE(run.output.find("no named-object dictionary"), std::string::npos) << run.output;
}

TEST(StcheckStandardsFiles, ChangingTheListTouchesOnlyTheEntriesThatChangeAndAFixNone) {
  if (testsupport::corpusDir().empty()) GTEST_SKIP() << "no corpus at " << STAUDIT_CORPUS_DIR;
  testsupport::TempDir temp;
  const fs::path config = temp.path() / "config.json";
  // Its codes are padded unevenly, so any object written anew would show.
  const fs::path original = testsupport::corpusDir() / "r2004_dxfvuer_city_map_export.dxf";
  testsupport::copyWorkingCopy(original, temp.path() / "plan.dxf");
  for (const char* name : {"a.dws", "b.dws", "c.dws"})
    fs::copy_file(fs::path(STAUDIT_SOURCE_DIR) / "examples/office-standards.dws",
                  temp.path() / name);
  // The lines taken out and put in, as "-line|" and "+line|".
  auto diff = [&](const fs::path& before, const fs::path& after) {
    return runCommand(
               "diff --unchanged-line-format= --old-line-format='-%L' "
               "--new-line-format='+%L' " +
               shellQuote(before.string()) + " " + shellQuote(after.string()) + " | tr '\\n' '|'")
        .output;
  };

  auto run =
      runStcheckIn(temp.path(), config,
                   {"standards", "plan.dxf", "--add", "a.dws", "--add", "b.dws", "--add", "c.dws"});
  ASSERT_EQ(run.exitCode, 0) << run.output;
  const std::string added = diff(original, temp.path() / "plan.dxf");
  // The named-object dictionary gains its entry and keeps every other line as it was.
  EXPECT_EQ(added.substr(0, added.find("+  0|+DICTIONARY|")),
            "-166f|+1673|+  3|+AcStStandard|+350|+166F|");
  fs::copy_file(temp.path() / "plan.dxf", temp.path() / "three.dxf");

  // Removing the middle one rewrites entry 1 in place and takes entry 2 out: "b.dws" makes
  // way for "c.dws" in the record 1671, and the record 1672 goes.
  run = runStcheckIn(temp.path(), config, {"standards", "plan.dxf", "--remove", "b.dws"});
  ASSERT_EQ(run.exitCode, 0) << run.output;
  EXPECT_EQ(diff(temp.path() / "three.dxf", temp.path() / "plan.dxf"),
            "-  3|-2|-350|-1672|-330|-166F|-100|-AcDbXrecord|-280|-1|-  1|-b.dws|-  0|-XRECORD|"
            "-  5|-1672|");
  fs::copy_file(temp.path() / "plan.dxf", temp.path() / "two.dxf");
  run = runStcheckIn(temp.path(), config, {"standards", "plan.dxf", "--add", "c.dws"});
  EXPECT_EQ(readBytes(temp.path() / "plan.dxf"), readBytes(temp.path() / "two.dxf"));

  // A fix against the standards of the run leaves the drawing's own list byte for byte.
  run = runStcheckIn(temp.path(), config, {"check", "plan.dxf", "--standard", "a.dws", "--fix"});
  ASSERT_TRUE(fs::exists(temp.path() / "plan.bak")) << run.output;
  auto kept = runCommand(
      std::string(STAUDIT_PYTHON) + " -c " +
      shellQuote("import sys; sys.path.insert(0, sys.argv[1]); from derived_standards import *\n"
                 "a, b = Drawing(sys.argv[2]), Drawing(sys.argv[3])\n"
                 "print([h for h in ('C', '166F', '1670', '1671') if a.by_key[h] != b.by_key[h]],"
                 " '1672' in b.by_key)\n") +
      " " + shellQuote(std::string(STAUDIT_SOURCE_DIR) + "/tests/apps") + " " +
      shellQuote((temp.path() / "plan.bak").string()) + " " +
      shellQuote((temp.path() / "plan.dxf").string()));
  EXPECT_EQ(kept.output, "[] False\n");
}

TEST(StcheckStandardsFiles, AStandardsFileThatIsNoDrawingStopsTheCheckAsAMissingOneDoes) {
  testsupport::TempDir temp;
  const fs::path config = temp.path() / "config.json";
  const fs::path examples = fs::path(STAUDIT_SOURCE_DIR) / "examples";
  fs::copy_file(examples / "floor-plan.dxf", temp.path() / "plan.dxf");
  fs::copy_file(examples / "office-standards.dws", temp.path() / "office.dws");
  std::ofstream(temp.path() / "empty.dws").close();
  std::ofstream(temp.path() / "notes.dws") << "the office standard is in the binder\n";
  std::string cut = readBytes(examples / "office-standards.dws");
  std::ofstream(temp.path() / "cut.dws", std::ios::binary) << cut.substr(0, cut.size() / 2);

  for (const char* bad : {"empty.dws", "notes.dws", "cut.dws"}) {
    const std::string full = (temp.path() / bad).string();
    auto run = runStcheckIn(temp.path(), config,
                            {"check", "plan.dxf", "--standard", "office.dws", "--standard", bad,
                             "--format", "json", "-o", "r.json"});
    EXPECT_EQ(run.exitCode, 2) << bad << ": " << run.output;
    auto report = testsupport::runCommand(
        std::string(STAUDIT_PYTHON) +
        " -c 'import json,sys; d=json.load(open(sys.argv[1]))[\"drawings\"][0];"
        " print(d[\"error\"]); print(len(d[\"problems\"]))' " +
        shellQuote((temp.path() / "r.json").string()));
    EXPECT_NE(report.output.find("cannot read standards file " + full + ": "), std::string::npos)
        << report.output;
    EXPECT_NE(report.output.find("\n0\n"), std::string::npos) << report.output;

    run = runStcheckIn(temp.path(), config, {"standards", "plan.dxf", "--add", bad});
    EXPECT_EQ(run.exitCode, 2) << run.output;
    EXPECT_NE(run.output.find(std::string(bad) + " is not a standards drawing"), std::string::npos)
        << run.output;
  }
  // What is not a regular file is said to be what it is, in one line, and never read: a FIFO
  // would block (the time limit fails the test instead), /dev/zero never end.
  fs::create_directory(temp.path() / "standards");
  ASSERT_EQ(::mkfifo((temp.path() / "pipe.dws").c_str(), 0600), 0);
  const std::pair<std::string, std::string> others[] = {
      {"standards", "is a folder, not a standards drawing"},
      {"pipe.dws", "is not a regular file (a FIFO), not a standards drawing"},
      {"/dev/zero", "is not a regular file (a character device), not a standards drawing"},
      {"gone.dws", "not found"}};
  for (const auto& [other, says] : others) {
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"check", "plan.dxf", "--standard", other},
          std::vector<std::string>{"standards", "plan.dxf", "--add", other}}) {
      auto run = runStcheckIn(temp.path(), config, args, 60);
      EXPECT_EQ(run.exitCode, 2) << run.output;
      EXPECT_EQ(run.output, "stcheck: standards file " + other + " " + says + "\n");
    }
  }
  EXPECT_EQ(readBytes(temp.path() / "plan.dxf"), readBytes(examples / "floor-plan.dxf"));
}

TEST(StcheckStandardsFiles, RelativePathsAreFoundFromTheDrawingThenTheSupportFolders) {
  testsupport::TempDir temp;
  const fs::path config = temp.path() / "config.json";
  const fs::path examples = fs::path(STAUDIT_SOURCE_DIR) / "examples";
  fs::create_directories(temp.path() / "project/std");
  fs::create_directories(temp.path() / "office");
  fs::create_directories(temp.path() / "elsewhere");
  fs::copy_file(examples / "floor-plan.dxf", temp.path() / "project/plan.dxf");
  fs::copy_file(examples / "office-standards.dws", temp.path() / "project/std/office.dws");
  fs::copy_file(examples / "site-standards.dws", temp.path() / "office/site.dws");

  auto run = runStcheckIn(temp.path() / "project", config,
                          {"standards", "plan.dxf", "--clear", "--add", "std/office.dws"});
  ASSERT_EQ(run.exitCode, 0) << run.output;
  // Started from another folder, the check finds the file beside the drawing.
  run = runStcheckIn(temp.path() / "elsewhere", config,
                     {"check", "../project/plan.dxf", "--format", "json", "-o", "r.json"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_NE(readBytes(temp.path() / "elsewhere/r.json")
                .find("\"" + (temp.path() / "project/std/office.dws").string() + "\""),
            std::string::npos);

  // A file named only by its name, not beside the drawing, is looked for in the support
  // folders; until they name its folder it is missing where the drawing is.
  std::ofstream(config) << R"({"format": 1, "root": {"keys": {"General": {"keys": {},
      "values": {"SupportPath": {"string": "/nonexistent ; )"
                        << (temp.path() / "office").string()
                        << R"("}}}, "cmddata": {"keys": {}, "values": {}}}, "values": {}}})";
  const fs::path unset = temp.path() / "unset.json";
  // Stored by its bare name, as a drawing made in another office names it.
  fs::copy_file(temp.path() / "office/site.dws", temp.path() / "project/site.dws");
  run =
      runStcheckIn(temp.path() / "project", unset, {"standards", "plan.dxf", "--add", "site.dws"});
  ASSERT_EQ(run.exitCode, 0) << run.output;
  fs::remove(temp.path() / "project/site.dws");

  // Missing, it is reported with every place it was looked for.
  const std::string beside = (temp.path() / "project/site.dws").string();
  run = runStcheckIn(temp.path() / "elsewhere", unset, {"check", "../project/plan.dxf"});
  EXPECT_EQ(run.exitCode, 2) << run.output;
  EXPECT_NE(run.output.find("not found: site.dws (looked for " + beside + ")"), std::string::npos)
      << run.output;
  fs::rename(temp.path() / "office/site.dws", temp.path() / "site.dws");
  run = runStcheckIn(temp.path() / "elsewhere", config, {"check", "../project/plan.dxf"});
  EXPECT_NE(run.output.find("(looked for " + beside + ", /nonexistent/site.dws, " +
                            (temp.path() / "office/site.dws").string() + ")"),
            std::string::npos)
      << run.output;
  fs::rename(temp.path() / "site.dws", temp.path() / "office/site.dws");
  run = runStcheckIn(temp.path() / "elsewhere", config, {"check", "../project/plan.dxf"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_EQ(run.output.find("not found"), std::string::npos) << run.output;
}

}  // namespace
