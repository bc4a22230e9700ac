#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "DxfDocument.h"
#include "DxfGroupCode.h"

// Reads a DXF file, ASCII or binary (recognised by its first bytes), of any version, into a
// DxfDocument that keeps every tag as it was read.
//
// The whole file is read into one buffer and tags refer into it; numeric values are checked
// while reading, so a document that loads has no malformed numbers. Every failure is one
// OdError:
//  - eFileNotFound / eFileAccessError: the file cannot be opened or read;
//  - eDwgNotSupported: the file is a DWG drawing;
//  - eBadDxfFile: the content is not well-formed DXF. The message names the file, the line
//    (ASCII) or byte offset (binary) and the group code, and says what is wrong.
// Malformed input never crashes, hangs or makes the reader allocate more than a small
// multiple of the input size.
class DxfReader {
 public:
  static std::unique_ptr<DxfDocument> readFile(const std::filesystem::path& path);
  // Parses `bytes`, the content of a file; `name` stands for the file in error messages.
  static std::unique_ptr<DxfDocument> readBuffer(std::string bytes, std::string name);

 private:
  static std::unique_ptr<DxfDocument> parseDocument(std::unique_ptr<DxfDocument> doc);

  explicit DxfReader(DxfDocument& doc) : doc_(doc) {}
  void parse();
  void parseAscii();
  void parseBinary();
  void buildStructure();
  void readHeaderVersion();
  [[noreturn]] void failAt(std::size_t offset, int code, const std::string& what) const;

  void checkAsciiValue(int code, DxfValueType type, std::string_view value,
                       std::size_t valueBegin) const;
  void addTag(int code, std::size_t valueBegin, std::uint8_t flags);
  void startObject(std::size_t byteBegin, std::string_view type);

  // Where each object starts; it ends where the next one starts (the last, "0 EOF", at
  // endByte_). Eight bytes an object, as this list lives beside the finished objects while
  // the structure pass runs.
  struct ObjectStart {
    std::uint32_t firstTag;
    std::uint32_t byteBegin;
  };
  // The objects that open and close sections, noted while their group-0 tag is at hand
  // (looking the tags up again later costs a cache miss per object).
  enum class Kind : std::uint8_t { kSection, kEndsec };
  struct Mark {
    std::uint32_t object;
    Kind kind;
  };

  DxfDocument& doc_;
  std::vector<ObjectStart> objects_;
  std::vector<Mark> marks_;
  std::uint32_t endByte_ = 0;
  bool sawEof_ = false;
};
