#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "StExport.h"

namespace st {

// The edit distance (the fewest insertions, deletions and substitutions of one character)
// from one name to each of many others, for ranking thousands of candidate names against one.
//
// The name is prepared once; each comparison with a name of up to 64 characters then costs a
// few word operations per character of the other name (the columns of the distance table are
// kept as bit vectors). Longer names are compared by the plain table. Characters are compared
// exactly: fold case first when case must not count. Never throws beyond std::bad_alloc.
class ST_EXPORT StNameDistance {
 public:
  explicit StNameDistance(std::wstring_view name);

  // The edit distance from the name to `other`.
  std::size_t to(std::wstring_view other) const;

 private:
  // The positions of `c` in the name, one bit each (bit i for position i).
  std::uint64_t positionsOf(wchar_t c) const;
  std::size_t byTable(std::wstring_view other) const;

  std::wstring name_;
  std::array<std::uint64_t, 128> ascii_{};
  // Characters outside ASCII that the name holds, with their positions.
  std::vector<std::pair<wchar_t, std::uint64_t>> others_;
};

}  // namespace st
