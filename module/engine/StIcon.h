#pragma once

#include <array>
#include <cstdint>

#include "StDWSPlugin.h"
#include "StExport.h"

namespace st {

// The image a plug-in shows beside its name in the list of plug-ins: 16 × 16 pixels, 32-bit
// ARGB (alpha in the high byte; 0 is transparent), rows from the top. Whoever receives one as
// a StIconHandle (StDWSPlugin::icon) owns it and frees it with stFreeIcon once it has copied
// the pixels; plug-ins make them with stCreateIcon, so that the one allocator frees them.
struct StIcon {
  static constexpr int kSize = 16;
  std::array<std::uint32_t, kSize * kSize> pixels{};
};

// A new icon drawn from 16 rows of 16 characters: `ink` where a row has a character other
// than '.' or ' ', transparent elsewhere; a row shorter than 16 characters (or a null row)
// leaves the rest transparent. Never null.
ST_EXPORT StIconHandle stCreateIcon(const char* const (&rows)[StIcon::kSize], std::uint32_t ink);
// The pixels of an icon made by stCreateIcon; null for a null handle.
ST_EXPORT const StIcon* stIconImage(StIconHandle icon);
// Frees an icon made by stCreateIcon; a null handle is ignored.
ST_EXPORT void stFreeIcon(StIconHandle icon);

}  // namespace st
