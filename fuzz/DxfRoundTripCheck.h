#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DxfGroupCode.h"
#include "DxfReader.h"
#include "DxfWriter.h"
#include "OdError.h"

// What must hold for any bytes handed to the DXF file layer, checked in one place so that the
// fuzzer and the regression test over its findings test the same thing:
//  - the bytes either load or are rejected with OdError(eBadDxfFile or eDwgNotSupported);
//  - every value as read is where a plain walk over the file finds it (tags hold no lengths:
//    the document finds where each value ends);
//  - every string value decodes with the file's codec (OdError allowed, nothing else);
//  - a loaded document written back untouched gives the same bytes;
//  - converted to the other format (ASCII <-> binary), it either is refused with
//    OdError(eBadDxfFile) (a value the other format cannot hold) or reads back with the same
//    tags and values; converting that back and forth again gives the same bytes.
//
// check() returns an empty string when all of this holds, else a lower-case description of
// the first fault. Exceptions other than OdError are not caught: they are faults themselves.
// Header-only so the regression test can use it without linking the fuzzer.
class DxfRoundTripCheck {
 public:
  static std::string check(std::string_view bytes) {
    std::unique_ptr<DxfDocument> doc;
    try {
      doc = DxfReader::readBuffer(std::string(bytes), "input");
    } catch (const OdError& e) {
      if (e.code() == eBadDxfFile || e.code() == eDwgNotSupported) return {};
      return "load failed with an unexpected result code: " + std::string(e.what());
    }
    if (std::string fault = checkValueExtents(*doc); !fault.empty()) return fault;
    decodeEveryString(*doc);

    std::string same;
    try {
      same = DxfWriter(*doc).toBytes();
    } catch (const OdError& e) {
      return "writing an untouched document failed: " + std::string(e.what());
    }
    if (same != bytes) return "untouched save differs " + firstDifference(bytes, same);

    const DxfFormat own = doc->format();
    const DxfFormat other = own == DxfFormat::kAscii ? DxfFormat::kBinary : DxfFormat::kAscii;
    std::string converted;
    try {
      converted = DxfWriter(*doc, other).toBytes();
    } catch (const OdError& e) {
      if (e.code() == eBadDxfFile) return {};  // a value the other format cannot hold
      return "conversion failed with an unexpected result code: " + std::string(e.what());
    }
    std::unique_ptr<DxfDocument> convertedDoc;
    if (std::string fault = reload(converted, "converted", convertedDoc); !fault.empty())
      return fault;
    if (std::string fault = compareTags(*doc, *convertedDoc, "converted"); !fault.empty())
      return fault;

    std::string back;
    try {
      back = DxfWriter(*convertedDoc, own).toBytes();
    } catch (const OdError& e) {
      return "converting back failed: " + std::string(e.what());
    }
    std::unique_ptr<DxfDocument> backDoc;
    if (std::string fault = reload(back, "converted back", backDoc); !fault.empty()) return fault;
    if (std::string fault = compareTags(*doc, *backDoc, "converted back"); !fault.empty())
      return fault;
    // A converted file is in the writer's own layout, so a second trip is a fixed point.
    if (std::string again = DxfWriter(*backDoc, other).toBytes(); again != converted)
      return "a second conversion differs from the first " + firstDifference(converted, again);
    return {};
  }

  // The values of a loaded document's tags against a plain walk over its file: line pairs of
  // an ASCII file (the value line without its line end), or the group codes and values of a
  // binary one, each value measured by its type. Empty when every value matches.
  static std::string checkValueExtents(const DxfDocument& doc) {
    const std::string_view bytes = doc.bytes();
    const bool binary = doc.format() == DxfFormat::kBinary;
    std::size_t p = doc.preamble().size();
    auto nextLine = [&] {
      std::size_t end = std::min(bytes.find('\n', p), bytes.size());
      std::string_view line = bytes.substr(p, end - p);
      if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
      p = end + 1;
      return line;
    };
    auto take = [&](std::size_t n) {
      std::string_view taken = bytes.substr(std::min(p, bytes.size()), n);
      p += n;
      return taken;
    };
    const auto tags = doc.sourceTags();
    for (std::size_t i = 0; i < tags.size(); ++i) {
      std::string_view value;
      if (!binary) {
        nextLine();
        value = nextLine();
      } else {
        if (doc.layout().twoByteCodes || take(1) == "\xFF") take(2);
        const DxfValueType type = DxfGroupCode::valueType(tags[i].code);
        if (type == DxfValueType::kBinary) {
          const std::string_view length = take(1);
          value = take(length.empty() ? 0 : static_cast<unsigned char>(length[0]));
        } else if (DxfGroupCode::binarySize(type) > 0) {
          value = take(static_cast<std::size_t>(DxfGroupCode::binarySize(type)));
        } else {
          value = take(bytes.find('\0', p) - p);
          take(1);
        }
      }
      if (doc.rawValue(tags[i]) != value)
        return "the value of tag " + std::to_string(i) + " (group code " +
               std::to_string(tags[i].code) + ", " + doc.describePosition(tags[i]) +
               ") is not the one in the file";
    }
    return {};
  }

 private:
  static void decodeEveryString(const DxfDocument& doc) {
    for (const DxfTag& tag : doc.sourceTags()) {
      if (DxfGroupCode::valueType(tag.code) != DxfValueType::kString) continue;
      try {
        (void)doc.text(tag);
      } catch (const OdError&) {
      }
    }
  }

  static std::string reload(const std::string& bytes, const char* what,
                            std::unique_ptr<DxfDocument>& doc) {
    try {
      doc = DxfReader::readBuffer(bytes, what);
      return {};
    } catch (const OdError& e) {
      return std::string(what) + " output does not read back: " + e.what();
    }
  }

  // A value as comparable bytes, whatever form it was read in. Integers compare as the bits
  // of their width: a file may write 65535 where the binary form holds -1.
  static std::string comparable(const DxfDocument& doc, const DxfTag& tag) {
    auto bits = [](auto value) {
      std::string out(sizeof value, '\0');
      std::memcpy(out.data(), &value, sizeof value);
      return out;
    };
    switch (DxfGroupCode::valueType(tag.code)) {
      case DxfValueType::kDouble:
        return bits(doc.real(tag));
      case DxfValueType::kInt16:
        return bits(static_cast<std::uint16_t>(doc.integer(tag)));
      case DxfValueType::kInt32:
        return bits(static_cast<std::uint32_t>(doc.integer(tag)));
      case DxfValueType::kInt64:
        return bits(doc.integer(tag));
      case DxfValueType::kBool:
        return bits(static_cast<std::uint8_t>(doc.integer(tag)));
      case DxfValueType::kBinary:
        return doc.binaryChunk(tag);
      default:
        return doc.stringBytes(tag);
    }
  }

  static std::string compareTags(const DxfDocument& expected, const DxfDocument& actual,
                                 const char* what) {
    std::vector<const DxfTag*> a;
    std::vector<const DxfTag*> b;
    expected.forEachObject([&](const DxfObject& o) {
      for (const DxfTag& t : o.tags()) a.push_back(&t);
    });
    actual.forEachObject([&](const DxfObject& o) {
      for (const DxfTag& t : o.tags()) b.push_back(&t);
    });
    if (a.size() != b.size())
      return std::string(what) + ": " + std::to_string(b.size()) + " tags instead of " +
             std::to_string(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (a[i]->code != b[i]->code)
        return std::string(what) + ": tag " + std::to_string(i) + " has group code " +
               std::to_string(b[i]->code) + " instead of " + std::to_string(a[i]->code);
      if (comparable(expected, *a[i]) != comparable(actual, *b[i]))
        return std::string(what) + ": the value of tag " + std::to_string(i) + " (group code " +
               std::to_string(a[i]->code) + ", " + expected.describePosition(*a[i]) + ") changed";
    }
    return {};
  }

  static std::string firstDifference(std::string_view expected, std::string_view actual) {
    std::size_t at = 0;
    while (at < expected.size() && at < actual.size() && expected[at] == actual[at]) ++at;
    return "at byte " + std::to_string(at) + " (" + std::to_string(actual.size()) +
           " bytes instead of " + std::to_string(expected.size()) + ")";
  }
};
