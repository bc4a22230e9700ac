// The report writers over one run with every kind of outcome: each format is read back by an
// independent reader (Python's JSON Schema validator and XML parser, headless Chromium for the
// HTML page) and must say the same thing as the run.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "CheckReport.h"
#include "HtmlReport.h"
#include "JsonReport.h"
#include "JunitReport.h"
#include "SarifReport.h"
#include "TestSupport.h"
#include "TextReport.h"

namespace {

using namespace stcheck;
using testsupport::runCommand;
using testsupport::shellQuote;

// Two drawings read and checked, one that could not be read.
CheckReport sampleRun() {
  CheckReport run;
  run.toolVersion = "1.2.3";

  DrawingReport plan;
  plan.path = "plans/floor <1> & \"annex\".dxf";
  plan.standards = {"office.dws", "site.dws"};
  plan.plugins = {{"StDWSLayerPlugin", "Layers"}, {"StDWSLinetypePlugin", "Linetypes"}};
  plan.counts = {3, 1, 0, 1};
  ReportProblem colour{"StDWSLayerPlugin",
                       "Layers",
                       "2A",
                       "WALLS",
                       "Non-standard properties",
                       "Layer WALLS differs from the standard",
                       "",
                       false,
                       "",
                       "",
                       {},
                       {},
                       0,
                       ""};
  colour.properties = {{"Color", "3", "1"}, {"Lineweight", "0.25 mm", "0.50 mm"}};
  colour.fixes = {{"WALLS", "office.dws", true}, {"WALLS", "site.dws", false}};
  colour.moreFixes = 3;  // candidates a report leaves out
  ReportProblem fixed = colour;
  fixed.moreFixes = 0;
  fixed.handle = "2B";
  fixed.objectName = "DOORS";
  fixed.fixed = true;
  fixed.fixedWith = "A-DOOR";
  fixed.renamedTo = "A-DOOR";
  ReportProblem ignored = colour;
  ignored.handle = "2C";
  ignored.objectName = "bad\x01name";
  ignored.ignoredBy = "alice";
  plan.problems = {colour, fixed, ignored};
  plan.backup = "plans/floor.dxf.bak";

  DrawingReport clean;
  clean.path = "plans/site.dxf";
  clean.standards = {"office.dws"};
  clean.plugins = plan.plugins;

  DrawingReport broken;
  broken.path = "plans/broken.dxf";
  broken.error = "bad DXF at line 7, group code 70";

  run.drawings = {plan, clean, broken};
  return run;
}

// Runs a Python snippet with the given arguments (sys.argv[1:]).
testsupport::ProcessResult runPython(const std::string& script,
                                     const std::vector<std::string>& args = {}) {
  std::string line = std::string(STAUDIT_PYTHON) + " -c " + shellQuote(script);
  for (const std::string& a : args) line += " " + shellQuote(a);
  return runCommand(line);
}

bool python(const std::string& module) {
  return runPython("import " + module).exitCode == 0;
}

std::filesystem::path writeFile(const testsupport::TempDir& dir, const std::string& name,
                                const std::string& text) {
  std::filesystem::path path = dir.path() / name;
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

TEST(ReportModel, ExitCodeSaysWorstOutcome) {
  CheckReport run = sampleRun();
  EXPECT_EQ(run.exitCode(), 2);
  run.drawings.pop_back();
  run.drawings[1].notFixed = "it is read-only";  // checked, but --fix could not write it
  EXPECT_EQ(run.exitCode(), 2);
  run.drawings[1].notFixed.clear();
  EXPECT_EQ(run.exitCode(), 1);
  EXPECT_EQ(run.drawings[0].remaining(), 1u);
  run.drawings[0].problems[0].ignoredBy = "bob";
  EXPECT_EQ(run.exitCode(), 0);
}

TEST(JsonReportFormat, ReadsBackWhatItWrote) {
  CheckReport run = sampleRun();
  run.drawings[1].notFixed = "it is read-only";
  CheckReport back = JsonReport::read(JsonReport::write(run));
  ASSERT_EQ(back.drawings.size(), 3u);
  EXPECT_EQ(back.toolVersion, "1.2.3");
  EXPECT_EQ(JsonReport::write(back), JsonReport::write(run));
  EXPECT_EQ(back.drawings[0].problems[2].ignoredBy, "alice");
  EXPECT_EQ(back.drawings[0].problems[0].moreFixes, 3u);
  EXPECT_EQ(back.drawings[2].error, run.drawings[2].error);
  EXPECT_EQ(back.drawings[1].notFixed, "it is read-only");
}

TEST(JsonReportFormat, RefusesOtherDocumentsNamingTheField) {
  EXPECT_THROW(JsonReport::read("not json"), std::runtime_error);
  try {
    JsonReport::read(R"({"schemaVersion": 99, "drawings": []})");
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("schemaVersion"), std::string::npos);
  }
  try {
    JsonReport::read(
        R"({"schemaVersion": 1, "drawings": [{"path": "a", "counts": {"found": "x"}}]})");
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find("found"), std::string::npos) << e.what();
  }
}

TEST(JsonReportFormat, MatchesItsPublishedSchema) {
  if (!python("jsonschema")) GTEST_SKIP() << "python3-jsonschema is not installed";
  testsupport::TempDir dir;
  auto report = writeFile(dir, "report.json", JsonReport::write(sampleRun()));
  std::string schema = std::string(STAUDIT_SOURCE_DIR) + "/docs/report.schema.json";
  std::string script =
      "import json,sys,jsonschema\n"
      "s=json.load(open(sys.argv[1]));d=json.load(open(sys.argv[2]))\n"
      "jsonschema.Draft202012Validator.check_schema(s)\n"
      "jsonschema.Draft202012Validator(s).validate(d)\n"
      "print(len(d['drawings']), d['drawings'][0]['remaining'])\n";
  auto result = runPython(script, {schema, report.string()});
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output, "3 1\n");
}

TEST(JunitReportFormat, ParsesWithCountsThatAddUp) {
  testsupport::TempDir dir;
  auto file = writeFile(dir, "junit.xml", JunitReport::write(sampleRun()));
  std::string script =
      "import sys,xml.etree.ElementTree as E\n"
      "r=E.parse(sys.argv[1]).getroot()\n"
      "print(r.tag,r.get('tests'),r.get('failures'),r.get('errors'),r.get('skipped'))\n"
      "for s in r: print(s.get('name'),len(s),s.get('failures'))\n"
      "print(r[0][1].get('name'))\n"
      "print(r[0][2].get('name'))\n";
  auto result = runPython(script, {file.string()});
  ASSERT_EQ(result.exitCode, 0) << result.output;
  // plan: three problems and a linetype plug-in with none; site: two clean plug-ins; broken:
  // one error.
  EXPECT_EQ(result.output,
            "testsuites 7 1 1 1\n"
            "plans/floor <1> & \"annex\".dxf 4 1\n"
            "plans/site.dxf 2 0\n"
            "plans/broken.dxf 1 0\n"
            "DOORS -> A-DOOR [2B]: Non-standard properties\n"
            "bad\xEF\xBF\xBDname [2C]: Non-standard properties\n");
}

TEST(SarifReportFormat, ParsesAsOneRunWithRulesAndResults) {
  testsupport::TempDir dir;
  auto file = writeFile(dir, "report.sarif", SarifReport::write(sampleRun()));
  std::string script =
      "import json,sys\n"
      "d=json.load(open(sys.argv[1]));run=d['runs'][0]\n"
      "print(d['version'],[r['id'] for r in run['tool']['driver']['rules']])\n"
      "for r in run['results']:\n"
      "  print(r['ruleId'],r['kind'],r['level'],'suppressions' in r,"
      "r['locations'][0]['logicalLocations'][0]['name'])\n"
      "print(run['invocations'][0]['executionSuccessful'])\n";
  auto result = runPython(script, {file.string()});
  ASSERT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output,
            "2.1.0 ['StDWSLayerPlugin', 'StDWSLinetypePlugin']\n"
            "StDWSLayerPlugin fail error False WALLS\n"
            "StDWSLayerPlugin pass none False DOORS\n"
            "StDWSLayerPlugin fail error True bad\x01name\n"
            "False\n");
}

TEST(HtmlReportFormat, SummaryReadsBackInABrowser) {
  const char* chromium = "/usr/bin/chromium";
  if (!std::filesystem::exists(chromium)) GTEST_SKIP() << "chromium is not installed";
  testsupport::TempDir dir;
  auto page = writeFile(dir, "report.html", HtmlReport::write(sampleRun()));
  std::string line = std::string(chromium) +
                     " --headless --no-sandbox --disable-gpu --no-first-run"
                     " --disable-background-networking --disable-component-update --disable-sync"
                     " --user-data-dir=" +
                     shellQuote((dir.path() / "profile").string()) + " --dump-dom " +
                     shellQuote("file://" + page.string()) + " 2>/dev/null";
  auto result = runCommand(line);
  ASSERT_EQ(result.exitCode, 0) << result.output;
  const std::string& dom = result.output;
  // The browser built the document from the page: the summary's totals and every drawing.
  EXPECT_NE(dom.find("data-drawings=\"3\""), std::string::npos) << dom.substr(0, 2000);
  EXPECT_NE(dom.find("data-remaining=\"1\""), std::string::npos);
  EXPECT_NE(dom.find("data-failed=\"1\""), std::string::npos);
  EXPECT_NE(dom.find("plans/floor &lt;1&gt; &amp; \"annex\".dxf"), std::string::npos);
  EXPECT_NE(dom.find("ignored by alice"), std::string::npos);
  EXPECT_NE(dom.find("DOORS -&gt; A-DOOR"), std::string::npos) << "the renamed layer";
}

TEST(TextReportFormat, GroupsByDrawingAndColoursOnlyWhenAsked) {
  std::string plain = TextReport::write(sampleRun(), false);
  EXPECT_EQ(plain.find("\x1b["), std::string::npos);
  EXPECT_NE(plain.find("  Layers (StDWSLayerPlugin)\n"), std::string::npos) << plain;
  EXPECT_NE(plain.find("Color: 3 -> 1"), std::string::npos);
  EXPECT_NE(plain.find("fix: WALLS (office.dws) recommended\n      fix: WALLS (site.dws)\n"
                       "      ... and 3 more\n"),
            std::string::npos);
  EXPECT_NE(plain.find("ignored by alice"), std::string::npos);
  EXPECT_NE(plain.find("fixed  DOORS -> A-DOOR [2B]"), std::string::npos) << plain;
  EXPECT_NE(plain.find("not checked: bad DXF at line 7"), std::string::npos);
  EXPECT_NE(plain.find("3 drawings checked: 1 meet the standards, 1 problem remains, 1 drawing "
                       "not read\n"),
            std::string::npos)
      << plain;
  EXPECT_NE(TextReport::write(sampleRun(), true).find("\x1b[31;1mproblem\x1b[0m"),
            std::string::npos);

  // Control characters of every range, and bytes that are no UTF-8, never reach the
  // terminal; other text, in any script, does as it is.
  CheckReport odd = sampleRun();
  odd.drawings[0].problems[0].objectName =
      "\x1b[31mred\x7f \xc2\x9b"
      "1m \x9b \xc3 caf\xc3\xa9 \xe6\xbc\xa2";
  odd.drawings[2].error = "line one\nline two";
  plain = TextReport::write(odd, true);
  EXPECT_NE(plain.find("\\x1b[31mred\\x7f \\x9b1m \\x9b \\xc3 caf\xc3\xa9 \xe6\xbc\xa2"),
            std::string::npos)
      << plain;
  EXPECT_NE(plain.find("bad\\x01name"), std::string::npos) << plain;
  EXPECT_NE(plain.find("line one\\x0aline two"), std::string::npos) << plain;
}

}  // namespace
