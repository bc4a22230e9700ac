// Every drawing of the shared corpus: loads, writes back byte for byte, converts between
// ASCII and binary without changing a value; broken drawings fail with one clean error.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>

#include "../../../fuzz/DxfRoundTripCheck.h"
#include "DxfGroupCode.h"
#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdError.h"
#include "TestSupport.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readBytes;

// Drawings that are not marked bad but cannot reasonably load, and why.
const std::map<std::string, std::string> kUnreadable = {
    {"preR12_r1.4_libredwg_entities.dxf",
     "an R1.4-era file whose first line is 'EXTENTS,1': not group-code/value pairs at all"},
};

bool isBad(const fs::path& path) {
  return path.filename().string().rfind("bad_", 0) == 0;
}

std::vector<fs::path> corpusOrSkip() {
  auto files = testsupport::corpusDrawings();
  return files;
}

#define SKIP_WITHOUT_CORPUS(files) \
  if ((files).empty())             \
  GTEST_SKIP() << "the shared corpus is absent (" STAUDIT_CORPUS_DIR "); nothing to check"

// A tag's value as comparable bits, whatever form it was read in.
std::string comparable(const DxfDocument& doc, const DxfTag& tag) {
  switch (DxfGroupCode::valueType(tag.code)) {
    case DxfValueType::kDouble: {
      double v = doc.real(tag);
      std::string bits(sizeof v, '\0');
      std::memcpy(bits.data(), &v, sizeof v);
      return bits;
    }
    case DxfValueType::kInt16:
      return std::to_string(static_cast<std::uint16_t>(doc.integer(tag)));
    case DxfValueType::kInt32:
      return std::to_string(static_cast<std::uint32_t>(doc.integer(tag)));
    case DxfValueType::kInt64:
    case DxfValueType::kBool:
      return std::to_string(doc.integer(tag));
    case DxfValueType::kBinary:
      return doc.binaryChunk(tag);
    default:
      return doc.stringBytes(tag);
  }
}

std::vector<std::pair<int, std::string>> allTags(const DxfDocument& doc) {
  std::vector<std::pair<int, std::string>> tags;
  doc.forEachObject([&](const DxfObject& object) {
    for (const DxfTag& tag : object.tags()) tags.emplace_back(tag.code, comparable(doc, tag));
  });
  return tags;
}

void expectSameTags(const DxfDocument& expected, const DxfDocument& actual,
                    const std::string& what) {
  auto a = allTags(expected);
  auto b = allTags(actual);
  ASSERT_EQ(a.size(), b.size()) << what;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i]) {
      ADD_FAILURE() << what << ": tag " << i << " differs: code " << a[i].first << " vs "
                    << b[i].first;
      return;
    }
  }
}

TEST(DxfCorpus, EveryDrawingLoadsAndSavesToTheSameBytes) {
  auto files = corpusOrSkip();
  SKIP_WITHOUT_CORPUS(files);
  int checked = 0;
  for (const auto& path : files) {
    if (isBad(path)) continue;
    const std::string name = path.filename().string();
    SCOPED_TRACE(name);
    if (kUnreadable.count(name)) {
      EXPECT_THROW(DxfReader::readFile(path), OdError) << "now loads; update kUnreadable";
      continue;
    }
    std::unique_ptr<DxfDocument> doc;
    try {
      doc = DxfReader::readFile(path);
    } catch (const OdError& e) {
      ADD_FAILURE() << e.what();
      continue;
    }
    EXPECT_TRUE(DxfWriter(*doc).toBytes() == readBytes(path)) << "untouched save differs";
    ++checked;
  }
  EXPECT_GT(checked, 90);
}

// Tags hold no lengths; every value must still end exactly where the file's own line or
// value does, in damaged drawings that load too.
TEST(DxfCorpus, EveryValueIsReadAsTheFileHasIt) {
  auto files = corpusOrSkip();
  SKIP_WITHOUT_CORPUS(files);
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    std::unique_ptr<DxfDocument> doc;
    try {
      doc = DxfReader::readFile(path);
    } catch (const OdError&) {
      continue;  // the other tests check the failures
    }
    EXPECT_EQ(DxfRoundTripCheck::checkValueExtents(*doc), "");
  }
}

TEST(DxfCorpus, AsciiBinaryConversionsKeepEveryValue) {
  auto files = corpusOrSkip();
  SKIP_WITHOUT_CORPUS(files);
  for (const auto& path : files) {
    const std::string name = path.filename().string();
    if (isBad(path) || kUnreadable.count(name)) continue;
    SCOPED_TRACE(name);
    try {
      auto original = DxfReader::readFile(path);
      DxfFormat own = original->format();
      DxfFormat other = own == DxfFormat::kAscii ? DxfFormat::kBinary : DxfFormat::kAscii;
      auto converted =
          DxfReader::readBuffer(DxfWriter(*original, other).toBytes(), name + " (converted)");
      EXPECT_EQ(converted->format(), other);
      expectSameTags(*original, *converted, "converted");
      auto back = DxfReader::readBuffer(DxfWriter(*converted, own).toBytes(), name + " (back)");
      expectSameTags(*original, *back, "converted back");
      EXPECT_EQ(back->sectionCount(), original->sectionCount());
      // A second trip of a converted file is stable byte for byte.
      EXPECT_TRUE(DxfWriter(*back, other).toBytes() == DxfWriter(*converted).toBytes());
    } catch (const OdError& e) {
      ADD_FAILURE() << e.what();
    }
  }
}

TEST(DxfCorpus, BrokenDrawingsLoadAndRoundTripOrFailWithAPosition) {
  auto files = corpusOrSkip();
  SKIP_WITHOUT_CORPUS(files);
  const std::regex position("(line|byte offset) [0-9]+");
  int failed = 0;
  for (const auto& path : files) {
    if (!isBad(path)) continue;
    const std::string name = path.filename().string();
    SCOPED_TRACE(name);
    try {
      auto doc = DxfReader::readFile(path);
      EXPECT_TRUE(DxfWriter(*doc).toBytes() == readBytes(path)) << "untouched save differs";
    } catch (const OdError& e) {
      ++failed;
      std::string message = e.what();
      EXPECT_EQ(e.code(), eBadDxfFile) << message;
      EXPECT_NE(message.find(path.string()), std::string::npos) << message;
      EXPECT_TRUE(std::regex_search(message, position)) << message;
    }
  }
  EXPECT_GT(failed, 0);
}

TEST(DxfCorpus, StructureMatchesTheManifest) {
  auto files = corpusOrSkip();
  SKIP_WITHOUT_CORPUS(files);
  // A few drawings whose structure is known: sections, versions, layouts, data after EOF.
  auto greek =
      DxfReader::readFile(testsupport::corpusDir() / "r12_ezdxf_ascii_greek_umlaut_layer.dxf");
  EXPECT_EQ(greek->version(), "AC1009");
  EXPECT_EQ(greek->format(), DxfFormat::kAscii);
  ASSERT_NE(greek->findSection("ENTITIES"), nullptr);
  EXPECT_NE(greek->findSection("TABLES"), nullptr);

  auto trash = DxfReader::readFile(testsupport::corpusDir() / "bad_ezdxf_r12_trash_after_eof.dxf");
  EXPECT_FALSE(trash->trailer().empty()) << "bytes after EOF are kept";

  auto bin12 = DxfReader::readFile(testsupport::corpusDir() / "bin_r12_acsharp_sample.dxf");
  EXPECT_EQ(bin12->format(), DxfFormat::kBinary);
  EXPECT_FALSE(bin12->layout().twoByteCodes);
  auto bin18 = DxfReader::readFile(testsupport::corpusDir() / "bin_r2018_acsharp_sample.dxf");
  EXPECT_TRUE(bin18->layout().twoByteCodes);
  EXPECT_EQ(bin18->version(), "AC1032");
  const DxfSection* entities = bin18->findSection("ENTITIES");
  ASSERT_NE(entities, nullptr);
  std::set<std::uint64_t> handles;
  for (const DxfObject& object : entities->objects()) handles.insert(object.handle());
  EXPECT_GT(handles.size(), 150u);
  EXPECT_EQ(handles.count(0), 0u) << "every R2018 entity has a handle";
}

}  // namespace
