// `stcheck check`, `standards`, `plugins` and `settings` run as a user runs them, on the
// example project written by make_examples into a temporary folder, with the module and the
// standard plug-ins loaded from the build and a configuration file of the test's own.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "OdDbDatabase.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbSymbolTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdResBuf.h"
#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::ProcessResult;
using testsupport::readBytes;
using testsupport::runCommand;
using testsupport::shellQuote;

// Copies `from` to `to` with the first record of `table` retyped "<table>X", a record that
// does not belong in the table; gives the line of its group code (0 when there is none).
int copyWithForeignRecord(const fs::path& from, const fs::path& to, const std::string& table) {
  std::string bytes = readBytes(from);
  // Code lines may be padded ("  0"); a type follows only a group-0 line in a sound file.
  const std::size_t at = bytes.find("0\n" + table + "\n", bytes.find("2\n" + table + "\n"));
  if (at == std::string::npos) return 0;
  bytes.insert(at + 2 + table.size(), "X");
  std::ofstream(to, std::ios::binary) << bytes;
  return static_cast<int>(std::count(bytes.begin(), bytes.begin() + at, '\n')) + 1;
}

// Writes an otherwise empty drawing that holds layers of the given names.
void writeWithLayers(const fs::path& to, const std::vector<OdString>& names) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
  for (const OdString& name : names) {
    OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(name);
    layers->add(layer.get());
  }
  layers.release();
  db->writeFile(to);
}

// Opens the record `name` of the symbol table `table` for write (throws when there is none).
template <class Record>
OdSmartPtr<Record> openRecord(const OdDbObjectId& table, const OdString& name) {
  OdDbSymbolTablePtr records = table.safeOpenObject();
  OdSmartPtr<Record> record = records->getAt(name).safeOpenObject(OdDb::kForWrite);
  return record;
}

// A project folder with the example drawings and a configuration of its own.
class Project {
 public:
  Project() {
    auto made = testsupport::makeExamples(dir());
    EXPECT_EQ(made.exitCode, 0) << made.output;
  }
  const fs::path& dir() const { return temp_.path(); }
  fs::path file(const std::string& name) const { return dir() / name; }

  // Runs stcheck from the project folder, naming the configuration as a user does (relative
  // to that folder); stopped after `timeoutSeconds` when given, with `tmp` as the temporary
  // folder when given.
  ProcessResult stcheck(const std::vector<std::string>& args, int timeoutSeconds = 0,
                        const fs::path& tmp = {}) const {
    std::string line = "cd " + shellQuote(dir().string()) + " && STAUDIT_CONFIG=config.json " +
                       (tmp.empty() ? "" : "TMPDIR=" + shellQuote(tmp.string()) + " ") +
                       (timeoutSeconds ? "timeout " + std::to_string(timeoutSeconds) + " " : "") +
                       shellQuote(std::string(STAUDIT_BIN_DIR) + "/stcheck");
    for (const auto& a : args) line += " " + shellQuote(a);
    return runCommand(line);
  }

  // Expects the JSON report `name` to follow the report schema (when jsonschema is there).
  void expectValidReport(const std::string& name) const {
    auto schema = python(
        "import json,sys,jsonschema\n"
        "jsonschema.Draft202012Validator(json.load(open(sys.argv[1]))).validate("
        "json.load(open(sys.argv[2])))\n",
        {std::string(STAUDIT_SOURCE_DIR) + "/docs/report.schema.json", file(name).string()});
    if (schema.output.find("No module named 'jsonschema'") == std::string::npos) {
      EXPECT_EQ(schema.exitCode, 0) << name << ": " << schema.output;
    }
  }

  // Runs a Python snippet over files, with sys.argv[1:] the arguments.
  static ProcessResult python(const std::string& script, const std::vector<std::string>& args) {
    std::string line = std::string(STAUDIT_PYTHON) + " -c " + shellQuote(script);
    for (const auto& a : args) line += " " + shellQuote(a);
    return runCommand(line);
  }

 private:
  testsupport::TempDir temp_;
};

// Problems of a JSON report as "plugin object fixed ignoredBy recommended-fix" lines, sorted.
const char* kSummarise =
    "import json,sys\n"
    "r=json.load(open(sys.argv[1]))\n"
    "for d in r['drawings']:\n"
    "  print('drawing', d['path'].split('/')[-1], d['counts']['found'], d['remaining'],"
    " d['error'] is not None)\n"
    "  rows=[]\n"
    "  for p in d['problems']:\n"
    "    rec=[f['name']+'@'+f['standardsFile'].split('/')[-1] for f in p['fixes'] if "
    "f['recommended']]\n"
    "    rows.append(' '.join([p['plugin'][5:-6], p['objectName'], 'fixed' if p['fixed'] else '-',"
    " p['ignoredBy'] or '-', rec[0] if rec else '-']))\n"
    "  print('\\n'.join(sorted(rows)))\n";

// The example plan in every format, each read by its own kind of reader: every kind of problem
// is reported with its recommended fix, and the counts agree across the formats.
TEST(StcheckCheck, ExampleReportsEveryKindOfProblemInEveryFormat) {
  Project project;
  for (const char* format : {"json", "junit", "sarif", "html"}) {
    auto run = project.stcheck(
        {"check", "floor-plan.dxf", "--format", format, "-o", std::string("report.") + format});
    EXPECT_EQ(run.exitCode, 1) << format << ": " << run.output;
  }
  auto summary = Project::python(kSummarise, {project.file("report.json").string()});
  ASSERT_EQ(summary.exitCode, 0) << summary.output;
  EXPECT_EQ(summary.output,
            "drawing floor-plan.dxf 10 9 False\n"
            "Dimstyle My-Dims - - -\n"
            "Dimstyle Office-Dim - - Office-Dim@office-standards.dws\n"
            "Layer A-ANNO-TEXT - - A-ANNO-TEXT@office-standards.dws\n"
            "Layer A-WALL - - A-WALL@office-standards.dws\n"
            "Layer Furniture - - -\n"
            "Linetype Dashdot2 - - -\n"
            "Linetype HIDDEN - - HIDDEN@office-standards.dws\n"
            "Textstyle Notes-Arial - - -\n"
            "Textstyle Office-Notes - - Office-Notes@office-standards.dws\n");
  project.expectValidReport("report.json");
  auto readers = Project::python(
      "import json,sys,xml.etree.ElementTree as E\n"
      "r=E.parse(sys.argv[1]).getroot();print(r.get('tests'),r.get('failures'))\n"
      "r=json.load(open(sys.argv[2]))['runs'][0]\n"
      "print(len(r['tool']['driver']['rules']),len(r['results']))\n",
      {project.file("report.junit").string(), project.file("report.sarif").string()});
  EXPECT_EQ(readers.output, "9 9\n4 9\n") << "junit tests/failures, sarif rules/results";
  if (fs::exists("/usr/bin/chromium")) {
    auto dom = runCommand(
        "/usr/bin/chromium --headless --no-sandbox --disable-gpu --no-first-run "
        "--disable-background-networking --disable-component-update --disable-sync "
        "--user-data-dir=" +
        shellQuote(project.file("profile").string()) + " --dump-dom " +
        shellQuote("file://" + project.file("report.html").string()) + " 2>/dev/null");
    EXPECT_NE(dom.output.find("data-remaining=\"9\""), std::string::npos);
  }

  // The ignored sketch layer appears only when asked for, with who ignored it, and does not
  // make the check fail.
  auto run = project.stcheck(
      {"check", "floor-plan.dxf", "--show-ignored", "--format", "json", "-o", "i.json"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  summary = Project::python(kSummarise, {project.file("i.json").string()});
  EXPECT_NE(summary.output.find("Layer Ébauche - alice -\n"), std::string::npos) << summary.output;

  // The text report names the values to change.
  run = project.stcheck({"check", "floor-plan.dxf"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.output.find("Color: red -> white"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("DIMTXT: 3.0000 -> 2.5000"), std::string::npos) << run.output;
  EXPECT_EQ(run.output.find("\x1b["), std::string::npos) << "colours on a pipe";
}

TEST(StcheckCheck, FixWritesTheDrawingKeepsTheOriginalAndASecondCheckPasses) {
  Project project;
  // A plan whose only problems have a confident fix: the standards drawing with two layers
  // and a text style changed.
  fs::path plan = project.file("plan.dxf");
  {
    OdDbDatabasePtr db = OdDbDatabase::readFile(project.file("office-standards.dws"));
    openRecord<OdDbLayerTableRecord>(db->getLayerTableId(), L"A-WALL")->setColorIndex(1);
    openRecord<OdDbLayerTableRecord>(db->getLayerTableId(), L"S-GRID")
        ->setLineWeight(OdDb::kLnWt050);
    openRecord<OdDbTextStyleTableRecord>(db->getTextStyleTableId(), L"Office-Notes")
        ->setXScale(1.25);
    db->writeFile(plan);
  }
  const std::string original = readBytes(plan);
  auto run = project.stcheck({"check", "plan.dxf", "--standard", "office-standards.dws"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  EXPECT_EQ(readBytes(plan), original) << "a check without --fix changed the drawing";

  run = project.stcheck({"check", "plan.dxf", "--standard", "office-standards.dws", "--fix",
                         "--format", "json", "-o", "fix.json"});
  EXPECT_EQ(run.exitCode, 0) << run.output;
  auto summary = Project::python(kSummarise, {project.file("fix.json").string()});
  EXPECT_EQ(summary.output,
            "drawing plan.dxf 3 0 False\n"
            "Layer A-WALL fixed - A-WALL@office-standards.dws\n"
            "Layer S-GRID fixed - S-GRID@office-standards.dws\n"
            "Textstyle Office-Notes fixed - Office-Notes@office-standards.dws\n");
  EXPECT_EQ(readBytes(project.file("plan.bak")), original);

  run = project.stcheck({"check", "plan.dxf", "--standard", "office-standards.dws"});
  EXPECT_EQ(run.exitCode, 0) << run.output;
  // The standards named for the run were not left in the drawing.
  run = project.stcheck({"check", "plan.dxf"});
  EXPECT_EQ(run.exitCode, 2) << run.output;
  EXPECT_NE(run.output.find("no standards files are associated"), std::string::npos);
  // An independent reader sees the standard's values.
  auto oracle = Project::python(
      "import sys,ezdxf\n"
      "d=ezdxf.readfile(sys.argv[1])\n"
      "print(d.layers.get('A-WALL').dxf.color, d.layers.get('S-GRID').dxf.lineweight,"
      " d.styles.get('Office-Notes').dxf.width)\n",
      {plan.string()});
  EXPECT_EQ(oracle.output, "7 13 0.8\n") << oracle.output;
}

// A layer that must stay (an object has it as its container): --fix leaves the drawing as it
// was and reports the problem unfixed, saying why, in every format.
TEST(StcheckCheck, AFixThatCannotReplaceARecordIsReportedUnfixedWithTheReason) {
  Project project;
  fs::path plan = project.file("kept.dxf");
  {
    OdDbDatabasePtr db = OdDbDatabase::readFile(project.file("office-standards.dws"));
    OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
    layer->setName(L"a_wall");
    const std::string handle = layers->add(layer.get()).getHandle().ascii();
    const std::string root = db->getNamedObjectsDictionaryId().getHandle().ascii();
    layer.release();
    layers.release();
    std::string text = db->writeBuffer(false);
    const size_t end = text.find("\nENDSEC", text.find("OBJECTS"));
    text.insert(text.rfind('\n', end - 1) + 1, "0\nXRECORD\n5\nFFF0\n102\n{ACAD_REACTORS\n330\n" +
                                                   handle + "\n102\n}\n330\n" + root +
                                                   "\n100\nAcDbXrecord\n280\n1\n");
    std::ofstream(plan, std::ios::binary) << text;
  }
  const std::string original = readBytes(plan);
  for (const std::string format : {"text", "json", "html", "junit", "sarif"}) {
    auto run = project.stcheck({"check", "kept.dxf", "--standard", "office-standards.dws", "--fix",
                                "--format", format, "-o", "kept." + format});
    EXPECT_EQ(run.exitCode, 1) << run.output;
    EXPECT_NE(readBytes(project.file("kept." + format))
                  .find("It cannot be replaced automatically: the XRECORD FFF0 belongs to it."),
              std::string::npos)
        << format;
  }
  EXPECT_EQ(readBytes(plan), original);
  EXPECT_FALSE(fs::exists(project.file("kept.bak")));
  EXPECT_EQ(Project::python(kSummarise, {project.file("kept.json").string()}).output,
            "drawing kept.dxf 1 1 False\n"
            "Layer a_wall - - -\n");
}

// A layer no standard has, against a standard of 31 layers: the reports list the 20 closest
// names, the recommended one first, and count the rest.
TEST(StcheckCheck, ACrowdedStandardListsTheClosestFixesAndCountsTheRest) {
  Project project;
  std::vector<OdString> names{L"Wall-Hatch-Old", L"Mall_Hatch", L"Wall-Patch", L"WALL-HATCH"};
  for (int i = 1; i <= 26; ++i) names.push_back(OdString::format(L"Z-Filler-%02d", i));
  writeWithLayers(project.file("crowded.dws"), names);
  writeWithLayers(project.file("crowded.dxf"), {L"Wall_Hatch"});
  auto run = project.stcheck(
      {"check", "crowded.dxf", "--standard", "crowded.dws", "--format", "json", "-o", "c.json"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  auto listed = Project::python(
      "import json,sys\n"
      "p=json.load(open(sys.argv[1]))['drawings'][0]['problems']\n"
      "print(len(p), len(p[0]['fixes']), p[0]['moreFixes'])\n"
      "print([f['name'] + ('*' if f['recommended'] else '') for f in p[0]['fixes'][:4]])\n",
      {project.file("c.json").string()});
  EXPECT_EQ(listed.output,
            "1 20 11\n['WALL-HATCH*', 'Mall_Hatch', 'Wall-Patch', 'Wall-Hatch-Old']\n")
      << listed.output;
  project.expectValidReport("c.json");
  run = project.stcheck({"check", "crowded.dxf", "--standard", "crowded.dws"});
  EXPECT_NE(run.output.find("      fix: WALL-HATCH (crowded.dws) recommended\n"
                            "      fix: Mall_Hatch (crowded.dws)\n"),
            std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("... and 26 more (see --format json)\n"), std::string::npos)
      << run.output;
}

TEST(StcheckCheck, AFolderWithCorruptDrawingsIsCheckedWholeAndEachFaultNamesItsPlace) {
  Project project;
  fs::create_directories(project.file("plans/level-1"));
  fs::copy_file(project.file("floor-plan.dxf"), project.file("plans/a.dxf"));
  fs::copy_file(project.file("floor-plan.dxf"), project.file("plans/level-1/b.DXF"));
  std::ofstream(project.file("plans/broken.dxf")) << "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\n";
  std::ofstream(project.file("plans/empty.dxf"));
  const int line = copyWithForeignRecord(project.file("floor-plan.dxf"),
                                         project.file("plans/foreign.dxf"), "LAYER");
  const std::string fault = "foreign.dxf: line " + std::to_string(line) +
                            ", group code 0: a record of type 'LAYERX' in the LAYER table";
  std::ofstream(project.file("plans/notes.txt")) << "not a drawing";
  // Reading a FIFO would wait for a writer for ever: the search passes it by.
  ASSERT_EQ(::mkfifo(project.file("plans/pipe.dxf").c_str(), 0600), 0);
  // The plans keep their association: the standards sit one folder up.
  for (const char* d : {"plans/a.dxf", "plans/level-1/b.DXF"}) {
    auto fix = project.stcheck({"standards", d, "--clear", "--add", "office-standards.dws", "--add",
                                "site-standards.dws"});
    ASSERT_EQ(fix.exitCode, 0) << fix.output;
  }
  auto one = project.stcheck({"check", "plans", "--format", "json", "-o", "one.json"}, 120);
  EXPECT_EQ(one.exitCode, 2) << one.output;
  auto two =
      project.stcheck({"check", "plans", "--jobs", "2", "--format", "json", "-o", "two.json"});
  EXPECT_EQ(two.exitCode, 2) << two.output;
  auto summary = Project::python(kSummarise, {project.file("one.json").string()});
  for (const char* drawing : {"a.dxf 10 9 False", "b.DXF 10 9 False", "broken.dxf 0 0 True",
                              "empty.dxf 0 0 True", "foreign.dxf 0 0 True"})
    EXPECT_NE(summary.output.find(std::string("drawing ") + drawing), std::string::npos)
        << summary.output;
  for (const char* passedBy : {"notes.txt", "pipe.dxf"})
    EXPECT_EQ(summary.output.find(passedBy), std::string::npos) << summary.output;
  EXPECT_EQ(readBytes(project.file("one.json")), readBytes(project.file("two.json")));

  // A record in a table of another type is refused with its place, by check and by info.
  auto check = project.stcheck({"check", "plans/foreign.dxf"});
  EXPECT_EQ(check.exitCode, 2) << check.output;
  EXPECT_NE(check.output.find("not checked: "), std::string::npos) << check.output;
  EXPECT_NE(check.output.find(fault), std::string::npos) << check.output;
  auto info = project.stcheck({"info", "plans/foreign.dxf"});
  EXPECT_EQ(info.exitCode, 2) << info.output;
  EXPECT_EQ(info.output, "stcheck: plans/" + fault + ", which holds only LAYER records\n");

  // Named, what is not a regular file is no drawing, and says what it is in one line.
  for (const auto& [path, kind] : {std::pair<std::string, std::string>{"plans/pipe.dxf", "a FIFO"},
                                   {"/dev/zero", "a character device"}}) {
    const std::string says = path + " is not a regular file (" + kind + "), not a drawing\n";
    check = project.stcheck({"check", path}, 60);
    EXPECT_EQ(check.exitCode, 2) << check.output;
    EXPECT_EQ(check.output.find(path + "\n  not checked: " + says.substr(path.size() + 1)), 0u)
        << check.output;
    info = project.stcheck({"info", path}, 60);
    EXPECT_EQ(info.exitCode, 2) << info.output;
    EXPECT_EQ(info.output, "stcheck: " + says);
  }
  info = project.stcheck({"info", "plans"}, 60);
  EXPECT_EQ(info.output, "stcheck: plans is a folder, not a drawing\n");
  info = project.stcheck({"info", "two\nlines\x1b[2J.dxf"});
  EXPECT_EQ(info.output, "stcheck: two\\x0alines\\x1b[2J.dxf: no such file\n");

  // Control characters in a drawing's names reach the terminal escaped, not obeyed.
  std::string bytes = readBytes(project.file("floor-plan.dxf"));
  for (std::size_t at = 0; (at = bytes.find("\nFurniture\n", at)) != std::string::npos;)
    bytes.replace(at, 11, "\nFurn\x1b[31miture\n");
  std::ofstream(project.file("escape.dxf"), std::ios::binary) << bytes;
  check = project.stcheck({"check", "escape.dxf"});
  EXPECT_EQ(check.exitCode, 1) << check.output;
  EXPECT_NE(check.output.find("Furn\\x1b[31miture"), std::string::npos) << check.output;
  EXPECT_EQ(check.output.find('\x1b'), std::string::npos) << check.output;

  // A count that is no number is not called out of range.
  for (const auto& [jobs, says] :
       {std::pair<std::string, std::string>{"abc", "--jobs: 'abc' is not a whole number"},
        {"2x", "--jobs: '2x' is not a whole number"},
        {"0", "--jobs: Value 0 not in range 1 to 256"}}) {
    check = project.stcheck({"check", "plans", "--jobs", jobs});
    EXPECT_EQ(check.exitCode, 2) << check.output;
    EXPECT_EQ(check.output.rfind(says + "\n", 0), 0u) << check.output;
  }
}

// Fixes of real drawings change what the standard asks and nothing else. The R14 drawing
// (dimension styles keep their handle in group 105) shown with no decimal places, against a
// standard in which its text style STANDARD is "Standard" with a width of 0.85 and its
// dimension style ISO-25 is called ISO_25: the width shows both values apart, the style keeps
// its spelling, and the replaced style is reported under its handle with its old and new
// names. The R2018 drawing against a standard with a larger DIMTXT for Arch_2.5, an arrow
// block of its own for Arch_3.5 and Arch_50 called Arch-50: the fixed and the copied styles
// keep or get their arrowheads, by name.
TEST(StcheckCheck, CorpusFixesChangeWhatTheStandardAsksAndKeepTheRest) {
  const fs::path corpus = testsupport::corpusDir();
  if (corpus.empty()) GTEST_SKIP() << "the shared corpus is absent: " << STAUDIT_CORPUS_DIR;
  testsupport::TempDir dir;
  auto stcheck = [&](const std::vector<std::string>& args) {
    return testsupport::runStcheckIn(dir.path(), dir.path() / "config.json", args);
  };
  {
    OdDbDatabasePtr standard = OdDbDatabase::readFile(corpus / "r14_ezdxf_small.dxf");
    OdDbTextStyleTableRecordPtr text =
        openRecord<OdDbTextStyleTableRecord>(standard->getTextStyleTableId(), L"STANDARD");
    text->setName(L"Standard");
    text->setXScale(0.85);
    text.release();
    openRecord<OdDbDimStyleTableRecord>(standard->getDimStyleTableId(), L"ISO-25")
        ->setName(L"ISO_25");
    standard->writeFile(dir.path() / "r14.dws");
    OdDbDatabasePtr drawing = OdDbDatabase::readFile(corpus / "r14_ezdxf_small.dxf");
    drawing->setHeaderVariable(L"$LUPREC", OdResBuf::newRb(70, 0).get());
    drawing->writeFile(dir.path() / "r14.dxf");
    fs::copy_file(dir.path() / "r14.dxf", dir.path() / "r14-json.dxf");
  }
  auto run = stcheck({"check", "r14.dxf", "--standard", "r14.dws", "--fix"});
  EXPECT_EQ(run.exitCode, 0) << run.output;
  EXPECT_NE(run.output.find("Width factor: 1 -> 0.85\n"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("ISO-25 -> ISO_25 [27]"), std::string::npos) << run.output;
  run = stcheck({"check", "r14-json.dxf", "--standard", "r14.dws", "--fix", "--format", "json",
                 "-o", "r14.json"});
  EXPECT_EQ(run.exitCode, 0) << run.output;
  auto rows = Project::python(
      "import json,sys\n"
      "for p in json.load(open(sys.argv[1]))['drawings'][0]['problems']:\n"
      "  print(p['objectName'], p['handle'], p.get('renamedTo'), p['fixed'])\n",
      {(dir.path() / "r14.json").string()});
  EXPECT_EQ(rows.output, "ISO-25 27 ISO_25 True\nSTANDARD 11 None True\n") << rows.output;
  auto oracle = Project::python(
      "import sys,ezdxf\n"
      "d=ezdxf.readfile(sys.argv[1])\n"
      "print([(s.dxf.name, s.dxf.width) for s in d.styles], sorted(s.dxf.name for s in "
      "d.dimstyles))\n",
      {(dir.path() / "r14.dxf").string()});
  EXPECT_EQ(oracle.output, "[('STANDARD', 0.85)] ['ISO_25', 'Standard']\n") << oracle.output;

  testsupport::copyWorkingCopy(corpus / "r2018_ezdxf_text_13dimstyles.dxf",
                               dir.path() / "arch.dxf");
  auto made = Project::python(
      "import sys,ezdxf\n"
      "d=ezdxf.readfile(sys.argv[1])\n"
      "d.dimstyles.get('Arch_2.5').dxf.dimtxt=3.5\n"
      "d.blocks.new('_Dot2').add_circle((0,0),0.5)\n"
      "d.dimstyles.get('Arch_3.5').set_arrows(blk='_Dot2')\n"
      "d.dimstyles.get('Arch_50').dxf.name='Arch-50'\n"
      "d.saveas(sys.argv[2])\n",
      {(dir.path() / "arch.dxf").string(), (dir.path() / "arch.dws").string()});
  ASSERT_EQ(made.exitCode, 0) << made.output;
  run = stcheck({"check", "arch.dxf", "--standard", "arch.dws", "--fix"});
  EXPECT_EQ(run.exitCode, 0) << run.output;
  EXPECT_NE(run.output.find("DIMBLK: _ArchTick -> _Dot2"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("Arch_50 -> Arch-50 [2CD]"), std::string::npos) << run.output;
  run = stcheck({"check", "arch.dxf", "--standard", "arch.dws"});
  EXPECT_EQ(run.exitCode, 0) << run.output;
  oracle = Project::python(
      "import sys,ezdxf\n"
      "d=ezdxf.readfile(sys.argv[1])\n"
      "for n in ('Arch_2.5','Arch_3.5','Arch-50'):\n"
      "  s=d.dimstyles.get(n)\n"
      "  print(n, s.dxf.dimtxt, s.dxf.dimblk)\n"
      "print([e.dxftype() for e in d.blocks.get('_Dot2')])\n",
      {(dir.path() / "arch.dxf").string()});
  EXPECT_EQ(oracle.output,
            "Arch_2.5 3.5 _ArchTick\nArch_3.5 2.5 _Dot2\nArch-50 2.5 _ArchTick\n['CIRCLE']\n")
      << oracle.output;
}

// What the commands change is what the next check sees. Listing never creates the
// configuration; a command line with one bad word changes nothing; the last word on a plug-in
// wins; no command makes a temporary configuration folder, and a corrupt configuration is
// named by the user's own path.
TEST(StcheckCommands, ConfigurationChangesAllOrNothingAndTheNextCheckSeesThem) {
  Project project;
  testsupport::TempDir tmp;
  const fs::path config = project.file("config.json");
  const std::string known =
      "(known: autoFixProperties, showIgnoredProblems, preferredFile, autoFixCommands)";
  for (const auto& args : std::vector<std::vector<std::string>>{{"settings"}, {"plugins"}}) {
    auto listed = project.stcheck(args, 0, tmp.path());
    EXPECT_EQ(listed.exitCode, 0) << listed.output;
    EXPECT_FALSE(fs::exists(config)) << args[0] << " created the configuration";
  }
  auto bad = project.stcheck({"settings", "autoFixProperties=TRUE", "bogus=1"}, 0, tmp.path());
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(bad.output, "stcheck: settings: unknown setting bogus " + known + "\n");
  EXPECT_FALSE(fs::exists(config));

  auto list = project.stcheck({"standards", "floor-plan.dxf"});
  EXPECT_EQ(list.exitCode, 0);
  EXPECT_EQ(list.output, "office-standards.dws\nsite-standards.dws\n");
  auto removed = project.stcheck({"standards", "floor-plan.dxf", "--remove", "site-standards.dws"});
  EXPECT_EQ(removed.output, "office-standards.dws\n");
  bad = project.stcheck({"standards", "floor-plan.dxf", "--remove", "nowhere.dws"});
  EXPECT_EQ(bad.exitCode, 2);
  // Without the site standard, its layer C-TOPO is no longer standard.
  auto run = project.stcheck({"check", "floor-plan.dxf"});
  EXPECT_NE(run.output.find("C-TOPO"), std::string::npos) << run.output;
  run = project.stcheck({"check", "floor-plan.dxf", "--standard", "nowhere.dws"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_NE(run.output.find("nowhere.dws not found"), std::string::npos);

  auto set = project.stcheck({"settings", "autoFixProperties=TRUE", "showIgnoredProblems=On",
                              "autoFixCommands=save,plot"});
  EXPECT_EQ(set.exitCode, 0) << set.output;
  EXPECT_NE(set.output.find("autoFixProperties=true\nshowIgnoredProblems=true\n"),
            std::string::npos)
      << set.output;
  EXPECT_NE(set.output.find("autoFixCommands=save,plot\n"), std::string::npos) << set.output;
  const std::string saved = readBytes(config);
  bad = project.stcheck({"settings", "autoFixProperties=No", "autoFixCommands=save,bogus"});
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(std::count(bad.output.begin(), bad.output.end(), '\n'), 1) << bad.output;
  EXPECT_EQ(readBytes(config), saved) << "a refused command line changes nothing";
  EXPECT_NE(project.stcheck({"settings", "autoFixProperties=No"})
                .output.find("autoFixProperties=false\n"),
            std::string::npos);

  // A class name in any case switches the registered plug-in, for this run and the next.
  const std::vector<std::pair<std::vector<std::string>, std::string>> switches = {
      {{"--enable", "StDWSLayerPlugin", "--disable", "stdwslayerplugin"}, "off"},
      {{"--disable", "StDWSLayerPlugin", "--enable", "stdwslayerplugin"}, "in use"},
  };
  for (const auto& [words, state] : switches) {
    std::vector<std::string> args{"plugins"};
    args.insert(args.end(), words.begin(), words.end());
    auto plugins = project.stcheck(args);
    EXPECT_EQ(plugins.exitCode, 0) << plugins.output;
    EXPECT_NE(plugins.output.find("StDWSLayerPlugin         " + state), std::string::npos)
        << plugins.output;
    EXPECT_EQ(project.stcheck({"plugins"}).output, plugins.output);
    EXPECT_EQ(readBytes(config).find("stdwslayerplugin"), std::string::npos);
    run = project.stcheck({"check", "floor-plan.dxf"});
    EXPECT_EQ(run.output.find("Layers") == std::string::npos, state == "off") << run.output;
    EXPECT_NE(run.output.find("Linetypes"), std::string::npos) << run.output;
  }
  const std::string plugins = readBytes(config);
  bad = project.stcheck({"plugins", "--disable", "StDWSLayerPlugin", "--enable", "NoSuch"});
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(readBytes(config), plugins);

  // A configuration that came with the project names a library by its path: that code is
  // not run, and the user is told so once, with the folders libraries load from.
  const std::string elsewhere = project.file("libElsewhere.so").string();
  fs::copy_file(fs::path(STAUDIT_BIN_DIR) / "libStStandardPlugins.so", elsewhere);
  auto added = Project::python(
      "import json,sys\n"
      "c=json.load(open(sys.argv[1]))\n"
      "k=c['root']['keys']['cmddata']['keys']['StandardsAudit']['keys']['Plugins']['keys']\n"
      "k['Elsewhere']={'keys':{'PathPlugin':{'keys':{},'values':{"
      "'PluginClassName':{'string':'PathPlugin'},'PluginInUse':{'int32':1}}}},"
      "'values':{'PluginDll':{'string':sys.argv[2]}}}\n"
      "json.dump(c,open(sys.argv[1],'w'))\n",
      {config.string(), elsewhere});
  ASSERT_EQ(added.exitCode, 0) << added.output;
  run = project.stcheck({"check", "floor-plan.dxf"});
  EXPECT_EQ(run.exitCode, 1) << run.output;
  const std::string refused =
      "Failed to load  plugin: " + elsewhere +
      ": not on the module search path: " + fs::canonical(STAUDIT_BIN_DIR).string() + "\n";
  EXPECT_EQ(run.output.find(refused), run.output.rfind(refused)) << run.output;
  EXPECT_NE(run.output.find(refused), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("Linetypes"), std::string::npos) << "the standard plug-ins still load";

  // Worker processes pass on what they warn of, once however many workers said it.
  fs::copy_file(project.file("floor-plan.dxf"), project.file("second.dxf"));
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"check", "floor-plan.dxf"},
           {"check", "--jobs", "2", "floor-plan.dxf", "second.dxf"},
           {"settings"}}) {
    if (args[0] == "check") std::ofstream(config, std::ios::trunc) << "{\"format\": 1,";
    run = project.stcheck(args, 0, tmp.path());
    if (args[0] == "check") {
      const std::string warning = "configuration file config.json is corrupt";
      const std::size_t first = run.output.find(warning);
      EXPECT_NE(first, std::string::npos) << run.output;
      EXPECT_EQ(run.output.find(warning, first + 1), std::string::npos) << run.output;
    }
    EXPECT_FALSE(fs::exists(config)) << "set aside, and not made again by " << args[0];
  }
  EXPECT_TRUE(fs::is_empty(tmp.path())) << "a temporary configuration was left behind";
}

// The committed examples are what the script writes, and the plan is a drawing ezdxf reads
// without a fault: a real plan's kinds of entities, on the layers and in the styles that carry
// the problems.
TEST(StcheckExamples, CommittedExamplesAreWhatTheScriptWritesAndThePlanIsARealDrawing) {
  Project project;
  for (const char* name : {"floor-plan.dxf", "office-standards.dws", "site-standards.dws"})
    EXPECT_EQ(readBytes(project.file(name)),
              readBytes(fs::path(STAUDIT_SOURCE_DIR) / "examples" / name))
        << name << " differs: run examples/make-examples.sh";
  auto plan = Project::python(
      "import sys, collections, ezdxf\n"
      "d = ezdxf.readfile(sys.argv[1]); a = d.audit(); m = d.modelspace()\n"
      "print('audit', len(a.errors), len(a.fixes))\n"
      "print(sorted(collections.Counter(e.dxftype() for e in m).items()))\n"
      "i = m.query('INSERT')\n"
      "print('attributes', sum(len(e.attribs) for e in i), 'arrays', sum(e.dxf.column_count > 1 "
      "for e in i), 'mirrored', sum(e.dxf.yscale < 0 for e in i))\n"
      "print('dimension blocks', sorted(len(d.blocks.get(e.dxf.geometry).query('LINE SOLID "
      "MTEXT')) for e in m.query('DIMENSION')))\n"
      "print(sorted({e.dxf.layer for e in m}), sorted({e.dxf.linetype for e in m} - {'BYLAYER'}))\n"
      "t = list(m.query('TEXT MTEXT')) + [a for e in i for a in e.attribs]\n"
      "print(sorted({e.dxf.style for e in t}), sorted({e.dxf.dimstyle for e in m.query('DIMENSION "
      "LEADER')}))\n",
      {project.file("floor-plan.dxf").string()});
  EXPECT_EQ(plan.output,
            "audit 0 0\n"
            "[('DIMENSION', 6), ('HATCH', 1), ('INSERT', 26), ('LEADER', 1), ('LINE', 2), "
            "('LWPOLYLINE', 28), ('MTEXT', 7), ('TEXT', 4)]\n"
            "attributes 5 arrays 3 mirrored 4\n"
            "dimension blocks [6, 6, 6, 6, 6, 6]\n"
            "['A-ANNO-TEXT', 'A-DOOR', 'A-WALL', 'C-ROAD', 'C-TOPO', 'Furniture', 'a-glaz', "
            "'Ébauche'] ['DASHED', 'HIDDEN']\n"
            "['Notes-Arial', 'Office-Notes', 'Office-Titles'] ['My-Dims', 'Office-Dim']\n");
}

}  // namespace
