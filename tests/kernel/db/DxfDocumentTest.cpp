// Changing, adding and reading objects, tags and header variables: changed objects are
// written in the file's own layout and everything else stays as it was.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

#include "../../../fuzz/DxfRoundTripCheck.h"
#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdError.h"
#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;

DxfObject* firstOfType(DxfSection* section, std::string_view type) {
  if (!section) return nullptr;
  for (DxfObject& object : section->objects())
    if (object.type() == type) return &object;
  return nullptr;
}

TEST(DxfDocument, AChangedObjectIsWrittenInTheFilesLayoutAndNothingElseMoves) {
  auto dir = testsupport::corpusDir();
  if (dir.empty()) GTEST_SKIP() << "the shared corpus is absent";
  // The city map starts with a comment and pads its codes: the padding is found past it.
  for (const char* name : {"r14_libredwg_example.dxf", "r2000_cadviewer_minimal_line.dxf",
                           "r2004_dxfvuer_city_map_export.dxf", "bin_r12_ezdxf_small.dxf",
                           "bin_r2000_ezdxf_small.dxf"}) {
    SCOPED_TRACE(name);
    auto doc = DxfReader::readFile(dir / name);
    const std::string original(doc->bytes());
    DxfObject* layer = firstOfType(doc->findSection("TABLES"), "LAYER");
    ASSERT_NE(layer, nullptr);
    const std::size_t begin = layer->sourceBegin();
    const std::size_t end = layer->sourceEnd();
    std::size_t color = layer->find(62);
    ASSERT_NE(color, DxfObject::npos);
    // The lines of the tags before the colour, however they are padded, stay as they were.
    const std::size_t colorValue = layer->tag(color).offset();
    const std::size_t kept =
        doc->format() == DxfFormat::kAscii ? original.rfind('\n', colorValue - 2) + 1 : begin;
    layer->setInteger(color, 3);
    layer->insertTag(color + 1, doc->makeText(1000, L"added"));
    ASSERT_TRUE(layer->isModified());

    const std::string saved = DxfWriter(*doc).toBytes();
    EXPECT_EQ(saved.substr(0, begin), original.substr(0, begin));
    const std::size_t tail = original.size() - end;
    ASSERT_GE(saved.size(), tail);
    EXPECT_TRUE(saved.compare(saved.size() - tail, tail, original, end, tail) == 0);
    std::string_view middle = std::string_view(saved).substr(begin, saved.size() - tail - begin);
    if (doc->format() == DxfFormat::kAscii) {
      // Lines end as the file's lines end; codes are aligned as the file aligns them.
      const bool crlf = doc->layout().crlf;
      const std::string pad(doc->layout().codeWidth > 2 ? doc->layout().codeWidth - 2 : 0, ' ');
      EXPECT_NE(middle.find(crlf ? "\r\n" + pad + "62\r\n3\r\n" : "\n" + pad + "62\n3\n"),
                std::string_view::npos)
          << middle;
      EXPECT_EQ(saved.compare(begin, kept - begin, original, begin, kept - begin), 0);
      EXPECT_NE(middle.find(crlf ? "1000\r\nadded\r\n" : "1000\nadded\n"), std::string_view::npos);
    } else {
      // Codes take two bytes from R2000 on; before, one, and 0xFF escapes a wider code.
      const bool two = doc->layout().twoByteCodes;
      EXPECT_NE(middle.find(std::string("\x3E\x00\x03\x00", 4).erase(1, two ? 0 : 1)),
                std::string_view::npos);
      EXPECT_NE(middle.find((two ? "" : "\xFF") + std::string("\xE8\x03", 2) + "added" + '\0'),
                std::string_view::npos);
    }

    auto again = DxfReader::readBuffer(saved, name);
    DxfObject* reread = firstOfType(again->findSection("TABLES"), "LAYER");
    EXPECT_EQ(reread->integer(reread->find(62)), 3);
    EXPECT_EQ(reread->text(reread->find(1000)), L"added");
  }
}

TEST(DxfDocument, NewObjectsAndHeaderVariables) {
  auto dir = testsupport::corpusDir();
  if (dir.empty()) GTEST_SKIP() << "the shared corpus is absent";
  auto doc = DxfReader::readFile(dir / "r2018_ezdxf_wipeout.dxf");
  EXPECT_EQ(doc->headerText("$ACADVER"), L"AC1032");
  EXPECT_EQ(doc->headerText("$DWGCODEPAGE"), L"ANSI_1252");
  EXPECT_TRUE(doc->headerVariable("$NOSUCHVARIABLE").empty());
  const std::uint64_t handSeed = std::stoull(doc->headerText("$HANDSEED").toUtf8(), nullptr, 16);
  ASSERT_GT(handSeed, 0u);

  char hex[32];
  std::snprintf(hex, sizeof hex, "%llX", static_cast<unsigned long long>(handSeed));
  DxfSection* entities = doc->findSection("ENTITIES");
  const std::size_t count = entities->size();
  entities->insertObject(
      count, {doc->makeRaw(0, "LINE"), doc->makeRaw(5, hex), doc->makeRaw(100, "AcDbEntity"),
              doc->makeText(8, L"0"), doc->makeRaw(100, "AcDbLine"), doc->makeReal(10, 0.1),
              doc->makeReal(20, 1.0 / 3), doc->makeReal(30, 0), doc->makeReal(11, -1e-300),
              doc->makeReal(21, 123456789.125), doc->makeReal(31, 5e-324)});
  std::snprintf(hex, sizeof hex, "%llX", static_cast<unsigned long long>(handSeed + 1));
  doc->setHeaderVariable("$HANDSEED", {doc->makeRaw(5, hex)});
  doc->setHeaderVariable("$PROJECTNAME", {doc->makeText(1, L"Plan \u00C9")});

  for (DxfFormat format : {DxfFormat::kAscii, DxfFormat::kBinary}) {
    auto again = DxfReader::readBuffer(DxfWriter(*doc, format).toBytes(), "edited.dxf");
    EXPECT_EQ(again->headerText("$HANDSEED"), OdString(hex));
    EXPECT_EQ(again->headerText("$PROJECTNAME"), L"Plan \u00C9");
    const DxfSection* reread = again->findSection("ENTITIES");
    ASSERT_EQ(reread->size(), count + 1);
    const DxfObject& line = reread->object(count);
    EXPECT_EQ(line.type(), "LINE");
    EXPECT_EQ(line.handle(), handSeed);
    // Doubles written as text read back as the same double.
    for (const auto& [code, value] : std::vector<std::pair<int, double>>{
             {10, 0.1}, {20, 1.0 / 3}, {11, -1e-300}, {21, 123456789.125}, {31, 5e-324}})
      EXPECT_EQ(line.real(line.find(code)), value) << "group code " << code;
  }

  // A file with no HEADER section gets one, in front.
  auto bare = DxfReader::readFile(dir / "bin_r12_ixmilia_diamond_entities_only.dxf");
  ASSERT_EQ(bare->findSection("HEADER"), nullptr);
  bare->setHeaderVariable("$ACADVER", {bare->makeRaw(1, "AC1009")});
  auto again = DxfReader::readBuffer(DxfWriter(*bare).toBytes(), "bare.dxf");
  EXPECT_EQ(again->section(0).name(), "HEADER");
  EXPECT_EQ(again->version(), "AC1009");
  EXPECT_EQ(again->section(1).size(), bare->section(1).size());
}

TEST(DxfDocument, ValuesAreCheckedByGroupCodeAndControlCharactersUseCarets) {
  auto doc = DxfReader::readBuffer("0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n", "small.dxf");
  auto expectInvalid = [](auto make) {
    try {
      make();
      ADD_FAILURE() << "accepted";
    } catch (const OdError& e) {
      EXPECT_EQ(e.code(), eInvalidInput) << e.what();
    }
  };
  expectInvalid([&] { doc->makeInteger(10, 1); });
  expectInvalid([&] { doc->makeInteger(70, 70000); });
  expectInvalid([&] { doc->makeReal(8, 1.0); });
  expectInvalid([&] { doc->makeText(70, L"1"); });
  expectInvalid([&] { doc->makeRaw(70, "seven"); });
  expectInvalid([&] { doc->makeRaw(85, "1"); });
  expectInvalid([&] { doc->makeRaw(1, "two\nlines"); });
  expectInvalid([&] { doc->makeBinary(310, std::string(256, 'x')); });

  DxfTag text = doc->makeText(1, L"line one\nline two ^ caret");
  EXPECT_EQ(doc->rawValue(text), "line one^Jline two ^  caret");
  EXPECT_EQ(doc->text(text), L"line one\nline two ^ caret");
  DxfTag chunk = doc->makeBinary(310, std::string("\x00\xFF\x10", 3));
  EXPECT_EQ(doc->rawValue(chunk), "00FF10");
  DxfTag flag = doc->makeInteger(290, 1);
  DxfTag wide = doc->makeInteger(160, -5000000000LL);
  DxfTag small = doc->makeInteger(70, -32768);
  doc->findSection("ENTITIES")
      ->insertObject(0, {doc->makeRaw(0, "MTEXT"), text, chunk, flag, wide, small});

  auto binary = DxfReader::readBuffer(DxfWriter(*doc, DxfFormat::kBinary).toBytes(), "small.dxf");
  const DxfObject& mtext = binary->findSection("ENTITIES")->object(0);
  EXPECT_EQ(mtext.rawValue(1), "line one\nline two ^ caret");
  EXPECT_EQ(mtext.text(1), L"line one\nline two ^ caret");
  EXPECT_EQ(binary->binaryChunk(mtext.tag(2)), std::string("\x00\xFF\x10", 3));
  EXPECT_EQ(mtext.integer(3), 1);
  EXPECT_EQ(mtext.integer(4), -5000000000LL);
  EXPECT_EQ(mtext.integer(5), -32768);
  EXPECT_THROW(mtext.tag(6), OdError_InvalidIndex);
  try {
    mtext.real(1);
    ADD_FAILURE() << "a string read as a number";
  } catch (const OdError& e) {
    EXPECT_NE(std::string(e.what()).find("small.dxf: byte offset"), std::string::npos) << e.what();
  }
}

// Tags hold no lengths: the document finds where each value ends, in the file or in its pool.
// Values at the edges of that search keep every byte: empty, around the sizes the search
// steps by, long, with a CR or blanks of their own, on the last line without a line end;
// chunks of 0 and 255 bytes and numbers of every width once converted to binary.
TEST(DxfDocument, EveryValueEndsWhereItsLineOrTypeSays) {
  std::vector<std::string> values;
  for (std::size_t n : {0, 1, 7, 8, 15, 16, 17, 63, 64, 65, 70000}) {
    std::string v(n, 'a');
    for (std::size_t i = 0; i < n; i += 7) v[i] = static_cast<char>('b' + i % 23);
    values.push_back(v);
  }
  values.push_back("a CR of its own\r");
  values.push_back(" \tblanks kept\t ");
  std::string file = "0\r\nSECTION\r\n2\r\nENTITIES\r\n0\r\nMTEXT\r\n";
  for (const std::string& v : values) file += "3\r\n" + v + "\r\n";
  file += "310\r\n\r\n310\r\n" + std::string(510, 'E') + "\r\n70\r\n-2\r\n90\r\n70000\r\n";
  file += "160\r\n-5000000000\r\n290\r\n1\r\n40\r\n0.5\r\n0\r\nENDSEC\r\n0\r\nEOF";
  auto doc = DxfReader::readBuffer(file, "edges.dxf");
  EXPECT_TRUE(DxfWriter(*doc).toBytes() == file);
  EXPECT_EQ(doc->eofObject().type(), "EOF");
  DxfObject& mtext = doc->findSection("ENTITIES")->object(0);
  for (std::size_t i = 0; i < values.size(); ++i)
    EXPECT_EQ(mtext.rawValue(i + 1), values[i]) << "value " << i << " as read";

  auto binary = DxfReader::readBuffer(DxfWriter(*doc, DxfFormat::kBinary).toBytes(), "edges.dxf");
  EXPECT_EQ(DxfRoundTripCheck::checkValueExtents(*binary), "");
  const DxfObject& numbers = binary->findSection("ENTITIES")->object(0);
  const std::size_t chunks = values.size() + 1;
  EXPECT_EQ(binary->binaryChunk(numbers.tag(chunks)), "");
  EXPECT_EQ(binary->binaryChunk(numbers.tag(chunks + 1)), std::string(255, '\xEE'));
  const std::int64_t integers[] = {-2, 70000, -5000000000LL, 1};
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_EQ(numbers.integer(chunks + 2 + i), integers[i]) << "integer " << i;
  EXPECT_EQ(numbers.real(chunks + 6), 0.5);

  // Set later, the values live in the pool, in reverse order so that each lands elsewhere.
  for (std::size_t i = 0; i < values.size(); ++i)
    mtext.setText(i + 1, OdString::fromUtf8(values[values.size() - 1 - i]));
  for (DxfFormat format : {DxfFormat::kAscii, DxfFormat::kBinary}) {
    auto again = DxfReader::readBuffer(DxfWriter(*doc, format).toBytes(), "edges.dxf");
    const DxfObject& reread = again->findSection("ENTITIES")->object(0);
    ASSERT_EQ(reread.size(), mtext.size());
    for (std::size_t i = 0; i < values.size(); ++i)
      EXPECT_EQ(again->stringBytes(reread.tag(i + 1)), values[values.size() - 1 - i])
          << "value " << i;
  }
}

// Changed objects keep their tags in the document, by number: objects moving as others are
// inserted and erased, and numbers given back and reused, must not mix them up.
TEST(DxfDocument, ChangedObjectsKeepTheirTagsWhenObjectsMove) {
  auto doc = DxfReader::readBuffer(
      "0\nSECTION\n2\nENTITIES\n0\nTEXT\n1\nfirst\n0\nTEXT\n1\nsecond\n0\nENDSEC\n0\nEOF\n",
      "moves.dxf");
  DxfSection& entities = *doc->findSection("ENTITIES");
  entities.object(1).setText(1, L"second, changed");
  for (int i = 0; i < 40; ++i)
    entities.insertObject(
        0, {doc->makeRaw(0, "TEXT"), doc->makeText(1, OdString::fromUtf8(std::to_string(i)))});
  for (int i = 0; i < 40; i += 2) entities.eraseObject(static_cast<std::size_t>(i / 2));
  entities.insertObject(0, {doc->makeRaw(0, "POINT")});  // reuses a number given back
  DxfObject moved = std::move(entities.objects().back());
  entities.objects().pop_back();
  entities.objects().push_back(std::move(moved));

  std::vector<std::string> texts;
  for (const DxfObject& object : entities.objects())
    texts.push_back(std::string(object.type()) + " " +
                    (object.size() > 1 ? std::string(object.rawValue(1)) : ""));
  ASSERT_EQ(texts.size(), 23u);
  EXPECT_EQ(texts[0], "POINT ");
  EXPECT_EQ(texts[1], "TEXT 38");
  EXPECT_EQ(texts[20], "TEXT 0");
  EXPECT_EQ(texts[21], "TEXT first");
  EXPECT_EQ(texts[22], "TEXT second, changed");
  EXPECT_FALSE(entities.object(21).isModified());
  EXPECT_TRUE(entities.object(22).isModified());
}

}  // namespace
