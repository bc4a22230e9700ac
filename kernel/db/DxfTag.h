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
struct DxfTag {
  enum Flags : std::uint8_t {
    kBinaryForm = 1,  // the value bytes are in binary form (else text form)
    kInPool = 2,      // the value bytes are in the document's pool (else in the file buffer)
  };

  std::uint32_t offset = 0;  // first byte of the value
  std::uint32_t length = 0;  // number of value bytes
  std::int16_t code = 0;     // the group code
  std::uint8_t flags = 0;
  std::uint8_t reserved = 0;

  bool isBinaryForm() const noexcept { return (flags & kBinaryForm) != 0; }
  bool isInPool() const noexcept { return (flags & kInPool) != 0; }
};

static_assert(sizeof(DxfTag) == 12, "tags are kept by the million; keep them small");
