// Text of real drawings: the code pages they declare, and their record names decoded the
// way an independent DXF reader (ezdxf, run as an oracle) decodes them.

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "OdCodePageNames.h"
#include "OdString.h"
#include "TestSupport.h"

namespace {

// What these tests need of an ASCII DXF file, read as raw bytes: the header's version and
// code page, and the names of its symbol-table records.
struct DrawingText {
  std::string version;
  std::string codePage;
  std::vector<std::string> names;  // raw bytes, as in the file
};

std::string trimmed(std::string s) {
  while (!s.empty() && (s.back() == '\r' || s.back() == ' ')) s.pop_back();
  std::size_t first = s.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : s.substr(first);
}

// Returns false for binary files, which hold no lines to scan.
bool scanDrawing(const std::filesystem::path& path, DrawingText& out) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream buffer;
  buffer << in.rdbuf();
  const std::string bytes = buffer.str();
  if (bytes.rfind("AutoCAD Binary DXF", 0) == 0) return false;
  std::vector<std::string> lines;
  std::istringstream stream(bytes);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  static const std::set<std::string> recordTypes = {"LAYER", "LTYPE", "STYLE", "DIMSTYLE",
                                                    "BLOCK_RECORD"};
  std::string entity, variable;
  bool named = false;
  for (std::size_t i = 0; i + 1 < lines.size(); i += 2) {
    const std::string code = trimmed(lines[i]);
    const std::string& value = lines[i + 1];
    if (code == "0") {
      entity = trimmed(value);
      variable.clear();  // header variables end where the next structure begins
      named = false;
    } else if (code == "9") {
      variable = trimmed(value);
    } else if (code == "1" && variable == "$ACADVER") {
      out.version = trimmed(value);
    } else if (code == "3" && variable == "$DWGCODEPAGE" && out.codePage.empty()) {
      out.codePage = trimmed(value);
    } else if (code == "2" && !named && recordTypes.count(entity)) {
      out.names.push_back(value);
      named = true;
    }
  }
  return true;
}

bool hasNonAscii(const std::string& s) {
  for (char c : s)
    if (static_cast<unsigned char>(c) >= 0x80) return true;
  return false;
}

// Files before R2007 (AC1021) store text in their code page; later ones in UTF-8.
bool usesCodePage(const std::string& version) {
  return version.size() == 6 && version.rfind("AC10", 0) == 0 && version < "AC1021";
}

// The decoding a reader of the file would choose, with windows-1252 as the fallback.
OdString decodeName(const DrawingText& drawing, const std::string& raw) {
  if (!usesCodePage(drawing.version)) return OdString::fromUtf8(raw);
  std::string icu = odDxfCodePageToIcu(drawing.codePage);
  return OdString::fromCodePage(raw, icu.empty() ? "windows-1252" : icu.c_str());
}

std::map<std::filesystem::path, DrawingText> scanCorpus() {
  std::map<std::filesystem::path, DrawingText> drawings;
  for (const auto& path : testsupport::corpusDrawings()) {
    if (path.filename().string().rfind("bad_", 0) == 0) continue;  // broken on purpose
    DrawingText text;
    if (scanDrawing(path, text)) drawings[path] = text;
  }
  return drawings;
}

TEST(CodePageCorpus, DeclaredCodePagesAreKnownAndNamesRoundTrip) {
  if (testsupport::corpusDir().empty())
    GTEST_SKIP() << "corpus folder absent: " << STAUDIT_CORPUS_DIR;
  auto drawings = scanCorpus();
  ASSERT_FALSE(drawings.empty());
  int declared = 0, nonAsciiNames = 0;
  for (const auto& [path, drawing] : drawings) {
    SCOPED_TRACE(path.filename().string());
    if (!drawing.codePage.empty() && drawing.codePage != "UNDEFINED") {
      ++declared;
      EXPECT_NE(odDxfCodePageToIcu(drawing.codePage), "") << drawing.codePage;
    }
    if (!usesCodePage(drawing.version)) continue;
    // A name decoded from the file's code page encodes back to the very same bytes, so a
    // record renamed by nobody is written back unchanged.
    std::string icu = odDxfCodePageToIcu(drawing.codePage);
    if (icu.empty()) icu = "windows-1252";
    for (const std::string& raw : drawing.names) {
      if (!hasNonAscii(raw)) continue;
      ++nonAsciiNames;
      OdString name = OdString::fromCodePage(raw, icu.c_str());
      EXPECT_EQ(name.find(L'\uFFFD'), -1) << raw;
      bool lossless = false;
      EXPECT_EQ(name.toCodePage(icu.c_str(), &lossless), raw);
      EXPECT_TRUE(lossless) << raw;
    }
  }
  EXPECT_GT(declared, 50);
  EXPECT_GT(nonAsciiNames, 20);
}

std::string hexOf(const std::string& bytes) {
  static const char* digits = "0123456789abcdef";
  std::string hex;
  for (unsigned char c : bytes) {
    hex += digits[c >> 4];
    hex += digits[c & 15];
  }
  return hex;
}

TEST(CodePageCorpus, NamesDecodeAsAnIndependentReaderDecodesThem) {
  if (testsupport::corpusDir().empty())
    GTEST_SKIP() << "corpus folder absent: " << STAUDIT_CORPUS_DIR;
  // Only files with names outside ASCII say anything about decoding.
  std::map<std::string, std::set<std::string>> ours;  // file name -> names as UTF-8
  std::string arguments;
  for (const auto& [path, drawing] : scanCorpus()) {
    for (const std::string& raw : drawing.names) {
      if (!hasNonAscii(raw) || raw.find('\\') != std::string::npos) continue;  // escapes aside
      ours[path.filename().string()].insert(decodeName(drawing, raw).toUtf8());
    }
    if (ours.count(path.filename().string()))
      arguments += " " + testsupport::shellQuote(path.string());
  }
  ASSERT_FALSE(ours.empty());

  // The oracle prints "file<TAB>hex of the UTF-8 name" for every record of the same tables.
  const std::string script =
      "import sys, ezdxf, os\n"
      "for f in sys.argv[1:]:\n"
      "    d = ezdxf.readfile(f)\n"
      "    for t in (d.layers, d.linetypes, d.styles, d.dimstyles, d.block_records):\n"
      "        for r in t:\n"
      "            print(os.path.basename(f) + '\\t' + r.dxf.name.encode('utf-8').hex())\n";
  auto result = testsupport::runCommand(std::string(STAUDIT_PYTHON) + " -c " +
                                        testsupport::shellQuote(script) + arguments);
  if (result.exitCode != 0 && result.output.find("No module named") != std::string::npos)
    GTEST_SKIP() << "ezdxf is not installed: " << result.output;
  ASSERT_EQ(result.exitCode, 0) << result.output;
  std::set<std::string> theirs;  // "file<TAB>hex"
  std::istringstream lines(result.output);
  for (std::string line; std::getline(lines, line);) theirs.insert(line);

  int compared = 0;
  for (const auto& [file, names] : ours) {
    for (const std::string& name : names) {
      EXPECT_TRUE(theirs.count(file + "\t" + hexOf(name))) << file << ": " << name;
      ++compared;
    }
  }
  EXPECT_GT(compared, 100);
}

}  // namespace
