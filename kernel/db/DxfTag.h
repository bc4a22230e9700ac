#pragma once

#include <cstdint>

// One group-code/value pair of a DXF file, as compact as a parser can produce it: the value
// is not copied but referred to by offset and length, either inside the document's file
// buffer (tags as read) or inside the document's pool (values set after loading). A tag is
// meaningful only together with the DxfDocument that made it; read its value through that
// document or through a DxfObject.
//
// The value bytes are kept in the form they were read in:
//  - text form: the value line of an ASCII file without its line ending, byte for byte
//    (blanks included), or a value given as text through the document's API;
//  - binary form: the bytes of a binary file's value: the little-endian number, the string
//    without its terminating NUL, the chunk without its length byte.
//
// Lengths up to kLongLength - 1 are kept in the tag; the few longer values keep theirs in
// the document, found by the value's place, so that the common tag takes eight bytes.
struct DxfTag {
  enum Flags : std::uint8_t {
    kBinaryForm = 1,  // the value bytes are in binary form (else text form)
    kInPool = 2,      // the value bytes are in the document's pool (else in the file buffer)
  };
  static constexpr unsigned kFlagBits = 2;
  static constexpr std::uint32_t kLongLength = 0xFFFFu >> kFlagBits;

  std::uint32_t offset = 0;  // first byte of the value
  std::int16_t code = 0;     // the group code
  // The flags in the low bits, the length (or kLongLength) above them.
  std::uint16_t lengthAndFlags = 0;

  bool isBinaryForm() const noexcept { return (lengthAndFlags & kBinaryForm) != 0; }
  bool isInPool() const noexcept { return (lengthAndFlags & kInPool) != 0; }
  // The length, or kLongLength when the document keeps it.
  std::uint32_t shortLength() const noexcept { return lengthAndFlags >> kFlagBits; }
};

static_assert(sizeof(DxfTag) == 8, "tags are kept by the million; keep them small");
