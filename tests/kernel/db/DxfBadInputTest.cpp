// Broken input gives one clean error that says what and where; a failed save leaves the
// old file as it was.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readBytes;

const std::string kSentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

// A binary file with 2-byte group codes made of (code, value bytes) pieces.
std::string binary(std::initializer_list<std::pair<int, std::string>> tags) {
  std::string out = kSentinel;
  for (const auto& [code, value] : tags) {
    out.push_back(static_cast<char>(code & 0xFF));
    out.push_back(static_cast<char>(code >> 8));
    out += value;
  }
  return out;
}

std::string str(const std::string& s) {
  return s + std::string(1, '\0');
}

void writeBytes(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

TEST(DxfBadInput, EachFaultGivesOneErrorWithItsPosition) {
  struct Case {
    const char* what;
    std::string bytes;
    const char* expected;  // in the message after the file name
  };
  const std::string head = "0\nSECTION\n2\nENTITIES\n";
  const Case cases[] = {
      {"empty file", "", "line 1: the file is empty"},
      {"truncated after a group code", head + "0\nLINE\n8\n",
       "line 7, group code 8: unexpected end of file"},
      {"non-numeric value of code 70", head + "0\nLAYER\n70\nabc\n0\nENDSEC\n0\nEOF\n",
       "line 8, group code 70: value 'abc' is not an integer"},
      {"16-bit value out of range", head + "0\nLAYER\n70\n99999\n0\nEOF\n",
       "line 8, group code 70: value 99999 is out of range"},
      {"bad real", head + "0\nLINE\n10\n1,5\n0\nEOF\n",
       "line 8, group code 10: value '1,5' is not a number"},
      {"bad hex chunk", head + "0\nX\n310\n0FZ1\n0\nEOF\n",
       "line 8, group code 310: value '0FZ1' is not hex"},
      {"garbage group code", head + "\x01\x02garbage\nx\n",
       "line 5: '\\x01\\x02garbage' is not a group code"},
      {"unknown group code", head + "0\nLINE\n85\n1\n0\nEOF\n",
       "line 7, group code 85: unknown group code"},
      {"huge group code", head + "123456789\n1\n", "line 5: '123456789' is not a group code"},
      {"missing EOF", head + "0\nENDSEC\n",
       "line 7: unexpected end of file: the file has no 0/EOF"},
      {"damaged sentinel", "AutoCAD Binary DXF\n\x1a\0\0\0SECTION\0",
       "byte offset 0: the binary DXF sentinel is damaged"},
      {"binary chunk longer than the file",
       binary({{0, str("SECTION")}, {2, str("OBJECTS")}, {310, std::string("\xC8\x01\x02", 3)}}),
       "byte offset 42, group code 310: binary chunk of 200 bytes runs past the end of file"},
      {"unterminated binary string", binary({{0, str("SECTION")}, {2, "ENTI"}}),
       "byte offset 32, group code 2: unexpected end of file inside a string value"},
      {"truncated binary double", binary({{0, str("LINE")}, {10, "\x01\x02"}}),
       "byte offset 29, group code 10: unexpected end of file inside a value"},
      {"unknown binary group code", binary({{0, str("LINE")}, {85, "xx"}}),
       "byte offset 29, group code 85: unknown group code"},
      {"binary without EOF",
       binary({{0, str("SECTION")}, {2, str("ENTITIES")}, {0, str("ENDSEC")}}),
       "byte offset 52: unexpected end of file: the file has no 0/EOF"},
      // Well-formed tags, but a table holding a record that is not of its type.
      {"foreign record in a table",
       "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n0\nLAYER\n2\n0\n0\nLAYERX\n2\nA\n"
       "0\nENDTAB\n0\nENDSEC\n0\nEOF\n",
       "line 13, group code 0: a record of type 'LAYERX' in the LAYER table, which holds only "
       "LAYER records"},
      {"binary record of another table",
       binary({{0, str("SECTION")},
               {2, str("TABLES")},
               {0, str("TABLE")},
               {2, str("LTYPE")},
               {0, str("LAYER")},
               {0, str("ENDTAB")},
               {0, str("ENDSEC")},
               {0, str("EOF")}}),
       "byte offset 57, group code 0: a record of type 'LAYER' in the LTYPE table"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    try {
      // Read as a drawing, so that faults found while indexing the tables count too.
      OdDbDatabase::readBuffer(c.bytes, "broken.dxf");
      ADD_FAILURE() << "loaded";
    } catch (const OdError& e) {
      EXPECT_EQ(e.code(), eBadDxfFile);
      EXPECT_EQ(std::string(e.what()).rfind(std::string("broken.dxf: ") + c.expected, 0), 0u)
          << e.what();
    }
  }
}

TEST(DxfBadInput, FilesThatAreNotDxfAreRefusedByKind) {
  testsupport::TempDir temp;
  writeBytes(temp.path() / "plan.dwg", std::string("AC1032\0\0\0\0\0\0\0", 13));
  try {
    DxfReader::readFile(temp.path() / "plan.dwg");
    ADD_FAILURE() << "a DWG file loaded";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eDwgNotSupported);
    EXPECT_NE(std::string(e.what()).find("DWG is not read yet"), std::string::npos) << e.what();
    EXPECT_NE(std::string(e.what()).find("save the drawing as DXF"), std::string::npos) << e.what();
  }
  try {
    DxfReader::readFile(temp.path() / "missing.dxf");
    ADD_FAILURE() << "a missing file loaded";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eFileNotFound);
    EXPECT_NE(std::string(e.what()).find("missing.dxf"), std::string::npos);
  }
  // Only regular files are read: a FIFO without a writer would otherwise block for ever.
  ASSERT_EQ(::mkfifo((temp.path() / "pipe.dxf").c_str(), 0600), 0);
  const std::pair<fs::path, std::string> others[] = {
      {temp.path(), " is a folder, not a drawing"},
      {temp.path() / "pipe.dxf", " is not a regular file (a FIFO), not a drawing"},
      {"/dev/zero", " is not a regular file (a character device), not a drawing"}};
  for (const auto& [path, says] : others) {
    try {
      DxfReader::readFile(path);
      ADD_FAILURE() << path << " loaded";
    } catch (const OdError& e) {
      EXPECT_EQ(e.what(), path.string() + says);
    }
  }
}

// Every prefix of a real file, and the file with each byte replaced, either loads or fails
// with one OdError: never a crash, a hang or another exception.
TEST(DxfBadInput, TruncatedAndCorruptedCopiesOfRealFilesFailCleanly) {
  auto dir = testsupport::corpusDir();
  if (dir.empty()) GTEST_SKIP() << "the shared corpus is absent";
  for (const char* name :
       {"r2000_cadviewer_minimal_line.dxf", "bin_r12_ixmilia_diamond_entities_only.dxf",
        "bin_r2000_ezdxf_small.dxf"}) {
    SCOPED_TRACE(name);
    const std::string bytes = readBytes(dir / name);
    int failures = 0;
    for (std::size_t cut = 0; cut < bytes.size(); cut += 1 + cut / 64) {
      try {
        auto doc = DxfReader::readBuffer(bytes.substr(0, cut), name);
        EXPECT_EQ(DxfWriter(*doc).toBytes(), bytes.substr(0, cut));
      } catch (const OdError& e) {
        ++failures;
        EXPECT_EQ(e.code(), eBadDxfFile) << e.what();
      }
    }
    EXPECT_GT(failures, 0);
    for (std::size_t at = 0; at < bytes.size(); at += 1 + at / 32) {
      for (char replacement : {'\0', '\n', '\xFF', '7'}) {
        std::string corrupted = bytes;
        corrupted[at] = replacement;
        try {
          auto doc = DxfReader::readBuffer(corrupted, name);
          EXPECT_EQ(DxfWriter(*doc).toBytes(), corrupted);
        } catch (const OdError& e) {
          EXPECT_TRUE(e.code() == eBadDxfFile || e.code() == eDwgNotSupported) << e.what();
        }
      }
    }
  }
}

TEST(DxfBadInput, AFailedSaveLeavesTheOldFileAndNoTemporaryFile) {
  testsupport::TempDir temp;
  const fs::path target = temp.path() / "drawing.dxf";
  const std::string old = "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
  writeBytes(target, old);
  ::chmod(target.c_str(), 0640);

  // A string holding a NUL (as caret notation) cannot go into a binary file: the save fails
  // half way through writing.
  auto doc = DxfReader::readBuffer(old, "drawing.dxf");
  DxfSection* entities = doc->findSection("ENTITIES");
  entities->insertObject(0, {doc->makeRaw(0, "TEXT"), doc->makeRaw(1, "nul ^@ inside")});
  try {
    DxfWriter(*doc, DxfFormat::kBinary).save(target);
    ADD_FAILURE() << "saved";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eBadDxfFile);
    EXPECT_NE(std::string(e.what()).find("group code 1"), std::string::npos) << e.what();
  }
  // A folder in the way of the rename.
  fs::create_directory(temp.path() / "taken.dxf");
  fs::create_directory(temp.path() / "taken.dxf" / "inside");
  try {
    DxfWriter(*doc).save(temp.path() / "taken.dxf");
    ADD_FAILURE() << "saved over a folder";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eFileWriteError);
    EXPECT_NE(std::string(e.what()).find("taken.dxf"), std::string::npos) << e.what();
  }
  EXPECT_EQ(readBytes(target), old);
  std::vector<std::string> left;
  for (const auto& entry : fs::directory_iterator(temp.path()))
    left.push_back(entry.path().filename());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (std::vector<std::string>{"drawing.dxf", "taken.dxf"}));

  // A save that works keeps the permissions of the file it replaces.
  DxfWriter(*doc).save(target);
  struct stat info {};
  ASSERT_EQ(::stat(target.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
  EXPECT_NE(readBytes(target).find("nul ^@ inside"), std::string::npos);
}

}  // namespace
