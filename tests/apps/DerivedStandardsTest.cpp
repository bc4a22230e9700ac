// Standards derived from the real drawings: ezdxf writes each corpus drawing's standard with
// other colours, linetypes, lineweights, fonts, width factors and dimension variables and with
// near-miss names in every table; stcheck fixes a copy of the drawing as a user runs it; then
// ezdxf and the kernel check that nothing refers to a record that is gone, that every fixed
// property and name is the standard's, that every object the fix had no need to change is
// byte for byte the same, that a second check reports none of the fixed problems and that the
// backup is the original (tests/apps/derived_standards.py says how).
//
// By default one drawing of each release, format and code page is run (the smallest); set
// STAUDIT_DERIVED_ALL=1 to run every drawing of the corpus.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readBytes;
using testsupport::runCommand;
using testsupport::runStcheckIn;
using testsupport::shellQuote;

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

// The drawings to run: every one that is not broken on purpose, or the smallest of each
// release, format and code page of MANIFEST.tsv.
std::vector<std::string> drawingsToRun(const fs::path& corpus, bool all) {
  std::ifstream manifest(corpus / "MANIFEST.tsv");
  std::map<std::string, std::pair<long, std::string>> smallest;
  std::vector<std::string> every;
  std::string line;
  std::getline(manifest, line);  // the column names
  while (std::getline(manifest, line)) {
    std::vector<std::string> column;
    std::stringstream fields(line);
    for (std::string field; std::getline(fields, field, '\t');) column.push_back(field);
    if (column.size() < 8 || column[0].rfind("bad_", 0) == 0) continue;
    every.push_back(column[0]);
    const std::size_t page = column[7].find("codepage=");
    const std::string codepage =
        page == std::string::npos ? ""
                                  : lower(column[7].substr(page, column[7].find(';', page) - page));
    const std::string bucket = column[5] + " " + column[6] + " " + codepage;
    const long bytes = std::stol(column[4]);
    auto [at, added] = smallest.emplace(bucket, std::make_pair(bytes, column[0]));
    if (!added && bytes < at->second.first) at->second = {bytes, column[0]};
  }
  if (all) return every;
  std::vector<std::string> sample;
  for (const auto& [bucket, entry] : smallest) sample.push_back(entry.second);
  return sample;
}

// Derives, fixes and verifies one drawing; returns its faults (empty when there are none),
// or sets `skipped` to why the drawing cannot be run.
std::string fixAgainstDerivedStandard(const fs::path& original, const fs::path& folder,
                                      std::string& skipped) {
  const fs::path config = folder / "config.json";
  const fs::path drawing = folder / original.filename();
  testsupport::copyWorkingCopy(original, drawing);
  if (runStcheckIn(folder, config, {"info", drawing.string()}).exitCode != 0) {
    skipped = "the kernel refuses it";
    return "";
  }
  const std::string script = std::string(STAUDIT_SOURCE_DIR) + "/tests/apps/derived_standards.py";
  auto derive = runCommand(std::string(STAUDIT_PYTHON) + " " + shellQuote(script) + " derive " +
                           shellQuote(drawing.string()) + " " +
                           shellQuote((folder / "standard.dws").string()));
  if (derive.exitCode == 3) {
    skipped = derive.output.substr(0, derive.output.find('\n'));
    return "";
  }
  if (derive.exitCode != 0) return "deriving the standard failed: " + derive.output;

  std::string faults;
  for (const char* run : {"first", "second"}) {
    std::vector<std::string> args{
        "check",    drawing.string(), "--standard", "standard.dws",
        "--format", "json",           "-o",         std::string(run) + ".json"};
    if (std::string(run) == "first") args.push_back("--fix");
    auto check = runStcheckIn(folder, config, args);
    if (check.exitCode != 0 && check.exitCode != 1)
      faults += std::string(run) + " check exits " + std::to_string(check.exitCode) + ": " +
                check.output + "\n";
  }
  // Nothing to fix leaves the drawing as it was and keeps no backup.
  fs::path backup = fs::path(drawing).replace_extension(".bak");
  if (!fs::exists(backup)) {
    if (readBytes(drawing) != readBytes(original)) faults += "changed without a backup\n";
    backup = original;
  }
  auto verify = runCommand(std::string(STAUDIT_PYTHON) + " " + shellQuote(script) + " verify " +
                           shellQuote(original.string()) + " " + shellQuote(backup.string()) + " " +
                           shellQuote(drawing.string()) + " " +
                           shellQuote((folder / "standard.dws").string()) + " " +
                           shellQuote((folder / "first.json").string()) + " " +
                           shellQuote((folder / "second.json").string()));
  if (verify.output != "ok\n") faults += verify.output;
  return faults;
}

TEST(DerivedStandards, AFixChangesWhatTheStandardAsksAndLeavesEverythingElseByteForByte) {
  const fs::path corpus = testsupport::corpusDir();
  if (corpus.empty()) GTEST_SKIP() << "no corpus at " << STAUDIT_CORPUS_DIR;
  const char* all = std::getenv("STAUDIT_DERIVED_ALL");
  testsupport::TempDir temp;
  int run = 0;
  std::string skips;
  for (const std::string& name : drawingsToRun(corpus, all && std::string(all) == "1")) {
    const fs::path folder = temp.path() / name;
    fs::create_directories(folder);
    std::string skipped;
    const std::string faults = fixAgainstDerivedStandard(corpus / name, folder, skipped);
    if (!skipped.empty()) {
      skips += "  " + name + ": " + skipped + "\n";
      continue;
    }
    ++run;
    EXPECT_TRUE(faults.empty()) << name << ":\n" << faults;
  }
  std::cout << run << " drawings fixed against their derived standards; not run:\n" << skips;
  EXPECT_GT(run, 0);
}

}  // namespace
