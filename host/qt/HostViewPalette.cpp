#include "HostViewPalette.h"

#include <cmath>
#include <cstdlib>

#include "HostViewGeometry.h"

namespace {
// One channel of the hue ring: 0 to 1 over the 24 hues of 15 degrees.
double hueChannel(int hue, int offset) {
  const int h = (hue + offset) % 24;
  if (h < 4) return 1.0;
  if (h < 8) return 1.0 - (h - 4) / 4.0;
  if (h < 16) return 0.0;
  if (h < 20) return (h - 16) / 4.0;
  return 1.0;
}
}  // namespace

std::uint32_t HostViewPalette::aciToRgb(int index) {
  static constexpr std::uint32_t kBasic[10] = {0xFFFFFF, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                               0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
  static constexpr std::uint32_t kGreys[6] = {0x333333, 0x505050, 0x696969,
                                              0x828282, 0xBEBEBE, 0xFFFFFF};
  if (index >= 1 && index <= 9) return kBasic[index];
  if (index >= 250 && index <= 255) return kGreys[index - 250];
  if (index < 10 || index > 249) return 0xFFFFFF;
  // 24 hues of ten shades: five brightnesses, each full and half saturated.
  static constexpr double kValue[5] = {255.0, 0.65 * 255, 0.5 * 255, 0.3 * 255, 0.15 * 255};
  const int hue = (index - 10) / 10;
  const double value = kValue[(index % 10) / 2];
  const bool half = index % 2 == 1;
  const double low = half ? value / 2.0 : 0.0;
  auto channel = [&](int offset) {
    return static_cast<std::uint32_t>(std::floor(low + (value - low) * hueChannel(hue, offset)));
  };
  // Red leads the ring, green follows a third behind, blue two thirds.
  return channel(0) << 16 | channel(16) << 8 | channel(8);
}

std::uint32_t HostViewPalette::entityColour(long long index, long long trueColour) {
  if (trueColour >= 0) return static_cast<std::uint32_t>(trueColour) & 0xFFFFFFu;
  index = std::llabs(index);
  if (index == 0) return HostViewColour::kByBlock;
  if (index == 7) return HostViewColour::kForeground;
  if (index >= 1 && index <= 255) return aciToRgb(static_cast<int>(index));
  return HostViewColour::kByLayer;
}
