#include "StIcon.h"

#include <cstring>

namespace st {

StIconHandle stCreateIcon(const char* const (&rows)[StIcon::kSize], std::uint32_t ink) {
  auto* icon = new StIcon;
  for (int y = 0; y < StIcon::kSize; ++y) {
    const char* row = rows[y];
    if (!row) continue;
    const int length = static_cast<int>(std::strlen(row));
    for (int x = 0; x < StIcon::kSize && x < length; ++x)
      if (row[x] != '.' && row[x] != ' ') icon->pixels[y * StIcon::kSize + x] = ink;
  }
  return icon;
}

const StIcon* stIconImage(StIconHandle icon) {
  return static_cast<const StIcon*>(icon);
}

void stFreeIcon(StIconHandle icon) {
  delete static_cast<StIcon*>(icon);
}

}  // namespace st
