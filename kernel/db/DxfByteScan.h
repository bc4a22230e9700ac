#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The first `byte` in [s, end), or null; reads no byte at or past `end`. Made for the short
// values of a DXF file (a type, a layer, a handle, a number), too short for a library call
// to pay for itself: the first bytes are compared sixteen at a time where the processor
// can, else eight at a time in a word, and only a longer value goes to memchr.
inline const char* dxfFindByte(const char* s, const char* end, unsigned char byte) noexcept {
#if defined(__SSE2__)
  const __m128i pattern = _mm_set1_epi8(static_cast<char>(byte));
  for (int block = 0; block < 4 && end - s >= 16; ++block, s += 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
    const auto match = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, pattern)));
    if (match != 0) return s + std::countr_zero(match);
  }
#else
  // With the searched byte turned to zero (x = w ^ pattern), in (x - 0x01..) & ~x & 0x80..
  // the lowest set bit marks the first match (later bits may be false alarms).
  const std::uint64_t pattern = 0x0101010101010101ull * byte;
  for (int word = 0; word < 4 && end - s >= 8; ++word, s += 8) {
    std::uint64_t w;
    std::memcpy(&w, s, sizeof w);
    static_assert(std::endian::native == std::endian::little, "s[0] must be the lowest byte");
    w ^= pattern;
    const std::uint64_t match = (w - 0x0101010101010101ull) & ~w & 0x8080808080808080ull;
    if (match != 0) return s + (std::countr_zero(match) >> 3);
  }
#endif
  if (s == end) return nullptr;
  return static_cast<const char*>(std::memchr(s, byte, static_cast<std::size_t>(end - s)));
}
