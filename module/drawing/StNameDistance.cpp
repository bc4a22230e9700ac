#include "StNameDistance.h"

#include <algorithm>
#include <numeric>

namespace st {

StNameDistance::StNameDistance(std::wstring_view name) : name_(name) {
  if (name_.size() > 64) return;  // compared by the table
  for (std::size_t i = 0; i < name_.size(); ++i) {
    const wchar_t c = name_[i];
    const std::uint64_t bit = std::uint64_t{1} << i;
    if (static_cast<std::uint32_t>(c) < ascii_.size()) {
      ascii_[static_cast<std::size_t>(c)] |= bit;
      continue;
    }
    auto it = std::find_if(others_.begin(), others_.end(),
                           [c](const auto& entry) { return entry.first == c; });
    if (it == others_.end())
      others_.emplace_back(c, bit);
    else
      it->second |= bit;
  }
}

std::uint64_t StNameDistance::positionsOf(wchar_t c) const {
  if (static_cast<std::uint32_t>(c) < ascii_.size()) return ascii_[static_cast<std::size_t>(c)];
  for (const auto& [ch, bits] : others_)
    if (ch == c) return bits;
  return 0;
}

std::size_t StNameDistance::to(std::wstring_view other) const {
  const std::size_t m = name_.size();
  if (m == 0) return other.size();
  if (m > 64) return byTable(other);
  // One column of the table per character of `other`, held as the vertical differences
  // between neighbouring cells (+1 in `up`, -1 in `down`); `score` follows the last row.
  const std::uint64_t last = std::uint64_t{1} << (m - 1);
  std::uint64_t up = ~std::uint64_t{0};
  std::uint64_t down = 0;
  std::size_t score = m;
  for (const wchar_t c : other) {
    const std::uint64_t equal = static_cast<std::uint32_t>(c) < ascii_.size()
                                    ? ascii_[static_cast<std::size_t>(c)]
                                    : positionsOf(c);
    const std::uint64_t xv = equal | down;
    const std::uint64_t xh = (((equal & up) + up) ^ up) | equal;
    std::uint64_t hUp = down | ~(xh | up);
    std::uint64_t hDown = up & xh;
    if (hUp & last)
      ++score;
    else if (hDown & last)
      --score;
    // The first row grows by one per column: its horizontal difference is always +1.
    hUp = (hUp << 1) | 1;
    hDown <<= 1;
    up = hDown | ~(xv | hUp);
    down = hUp & xv;
  }
  return score;
}

std::size_t StNameDistance::byTable(std::wstring_view other) const {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= name_.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= other.size(); ++j) {
      const std::size_t above = row[j];
      row[j] =
          std::min({above + 1, row[j - 1] + 1, diagonal + (name_[i - 1] == other[j - 1] ? 0 : 1)});
      diagonal = above;
    }
  }
  return row.back();
}

}  // namespace st
