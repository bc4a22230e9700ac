#pragma once

#include <cstdint>
#include <cstring>

#include "DxfGroupCode.h"

// One group-code/value pair of a DXF file, as compact as a parser can produce it: the value
// is not copied but referred to by where it starts, either inside the document's file buffer
// (tags as read) or inside the document's pool (values set after loading). A tag is
// meaningful only together with the DxfDocument that made it; read its value through that
// document or through a DxfObject.
//
// The value bytes are kept in the form they were read in:
//  - text form: the value line of an ASCII file without its line ending, byte for byte
//    (blanks included), or a value given as text through the document's API;
//  - binary form: the bytes of a binary file's value: the little-endian number, the string
//    without its terminating NUL, the chunk without its length byte.
//
// A large drawing has millions of tags, so a tag is six bytes and holds no length: the
// document finds where a value ends from the bytes, as the parser did. A text value runs to
// the end of its line (one trailing CR dropped); the pool ends each of its values with a line
// feed for that. A binary value has the size of its group code's type, a string runs to its
// NUL and a chunk has the length byte before it. So the group code of a binary-form tag
// decides how its value is read: give such a tag another code only with a value made for it.
//
// Layout: the offset in two 16-bit halves (so that a tag needs only 2-byte alignment and an
// array of them has no padding), then one 16-bit word with the flags in its two low bits and
// the group code in the 14 above, which a single arithmetic shift reads.
struct DxfTag {
  enum Flags : std::uint8_t {
    kBinaryForm = 1,  // the value bytes are in binary form (else text form)
    kInPool = 2,      // the value bytes are in the document's pool (else in the file buffer)
  };
  // The group codes a tag can hold.
  static constexpr int kMinCode = -(1 << 13);
  static constexpr int kMaxCode = (1 << 13) - 1;

  DxfTag() = default;
  // `groupCode` must lie in [kMinCode, kMaxCode], as every code with a value type does;
  // `flags` is a set of Flags.
  DxfTag(int groupCode, std::uint32_t valueOffset, unsigned flags) noexcept
      : flags_(static_cast<std::uint16_t>(flags & 3u)), code(static_cast<std::int16_t>(groupCode)) {
    std::memcpy(offset_, &valueOffset, sizeof valueOffset);
  }

  // The first byte of the value in the file buffer or the pool.
  std::uint32_t offset() const noexcept {
    std::uint32_t value;
    std::memcpy(&value, offset_, sizeof value);
    return value;
  }
  bool isBinaryForm() const noexcept { return (flags_ & kBinaryForm) != 0; }
  bool isInPool() const noexcept { return (flags_ & kInPool) != 0; }

 private:
  std::uint16_t offset_[2] = {0, 0};
  std::uint16_t flags_ : 2 = 0;

 public:
  std::int16_t code : 14 = 0;  // the group code
};

static_assert(sizeof(DxfTag) == 6, "tags are kept by the million; keep them small");
static_assert(alignof(DxfTag) == 2);
static_assert(DxfGroupCode::kLastCode <= DxfTag::kMaxCode, "every code with a value type fits");
