#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// How the value of a tag is typed, decided by its group code alone. ASCII files write every
// value as a line of text; binary files store each type in its own fixed layout.
enum class DxfValueType : std::uint8_t {
  kUnknown,  // a group code with no defined meaning; such a tag is rejected at load
  kString,   // text (names, handles as hex text, comments); NUL terminated in binary files
  kDouble,   // 8-byte IEEE double, little endian in binary files
  kInt16,    // 2-byte integer, little endian
  kInt32,    // 4-byte integer, little endian
  kInt64,    // 8-byte integer, little endian
  kBool,     // 1 byte in binary files, 0 or 1 as text
  kBinary,   // a chunk of bytes: hex text in ASCII files, a length byte and the bytes in binary
};

// The value type table of DXF group codes. Stateless; every function is cheap enough to
// call per tag while parsing.
class DxfGroupCode {
 public:
  // The highest group code with a value type; negative codes have none (see valueType).
  static constexpr int kLastCode = 1071;

  // The value type of `code`; kUnknown for codes the format does not define. Inline: the
  // parsers call it for every tag.
  static DxfValueType valueType(int code) noexcept {
    return (code >= 0 && code < kTableSize) ? kTypes[static_cast<std::size_t>(code)]
                                            : DxfValueType::kUnknown;
  }

  static bool isNumeric(DxfValueType type) noexcept {
    return type != DxfValueType::kUnknown && type != DxfValueType::kString &&
           type != DxfValueType::kBinary;
  }
  static bool isInteger(DxfValueType type) noexcept {
    return type == DxfValueType::kInt16 || type == DxfValueType::kInt32 ||
           type == DxfValueType::kInt64 || type == DxfValueType::kBool;
  }
  // Group codes whose string value is a handle written as hex text (the object's own handle
  // 5 and 105, and the references 320-369, 390-399, 480-481, 1005).
  static bool isHandle(int code) noexcept;

  // The size in bytes of a fixed-size value in a binary file, or 0 for strings, binary
  // chunks and unknown codes.
  static constexpr int binarySize(DxfValueType type) noexcept {
    return kBinarySizes[static_cast<std::size_t>(type)];
  }

  // The range of integer values a type accepts. Integers are accepted up to the unsigned
  // maximum of their width as well, because files in the wild write flag words and colours
  // that way; they are stored as the same bits.
  static std::int64_t minInteger(DxfValueType type) noexcept;
  static std::int64_t maxInteger(DxfValueType type) noexcept;

  // Text forms of values, as ASCII files write them. Parsing accepts blanks around the
  // number and a leading '+'; it fails (returns false) on anything else, including a number
  // out of the range of int64 or double.
  static bool parseInteger(std::string_view text, std::int64_t& value) noexcept;
  static bool parseReal(std::string_view text, double& value) noexcept;
  // Hex digits (either case, blanks around) to bytes; `bytes` may be null to only check.
  static bool parseHex(std::string_view text, std::string* bytes);
  // The shortest text that reads back as the same double, with a decimal point so that it
  // reads as a real everywhere ("1.0", "0.1", "1e+300").
  static std::string formatReal(double value);
  static std::string formatHex(std::string_view bytes);
  // ASCII files write control characters of strings as a caret and a letter ("^J" for a
  // line feed) and a caret as "^ ". decode turns such text back into the string's bytes;
  // encode does the opposite. Both return their input unchanged when there is nothing to do.
  // With `keepTabs`, tabs stay as they are: readers trim them around structure words
  // ("EOF\t"), which must stay recognisable.
  static bool needsCaretEncoding(std::string_view bytes, bool keepTabs = false) noexcept;
  static std::string caretEncode(std::string_view bytes, bool keepTabs = false);
  static std::string caretDecode(std::string_view text);

 private:
  static constexpr int kTableSize = kLastCode + 1;
  static const std::array<DxfValueType, kTableSize> kTypes;
  // By DxfValueType: a table rather than a switch, as values are measured by it when read.
  static constexpr std::array<std::uint8_t, 8> kBinarySizes = {0, 0, 8, 2, 4, 8, 1, 0};
};

static_assert(DxfGroupCode::binarySize(DxfValueType::kDouble) == 8 &&
                  DxfGroupCode::binarySize(DxfValueType::kInt16) == 2 &&
                  DxfGroupCode::binarySize(DxfValueType::kInt32) == 4 &&
                  DxfGroupCode::binarySize(DxfValueType::kInt64) == 8 &&
                  DxfGroupCode::binarySize(DxfValueType::kBool) == 1 &&
                  DxfGroupCode::binarySize(DxfValueType::kString) == 0 &&
                  DxfGroupCode::binarySize(DxfValueType::kBinary) == 0,
              "kBinarySizes follows the order of DxfValueType");
