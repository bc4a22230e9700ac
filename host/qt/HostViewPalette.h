#pragma once

#include <cstdint>

// The drawing colour index (1-255) as RGB, and how a stored colour (group 62, group 420) becomes
// a HostViewColour value. Pure functions; nothing throws.
class HostViewPalette {
 public:
  // 0x00RRGGBB of an index 1-255; white for anything else.
  static std::uint32_t aciToRgb(int index);
  // An entity's colour: the true colour when it has one (`trueColour` >= 0), else by its index:
  // 0 by block, 256 (or absent, passed as 256) by layer, 7 the foreground, 1-255 the palette;
  // a negative index (an off layer's way of storing it) counts as its absolute value.
  static std::uint32_t entityColour(long long index, long long trueColour);
};
