#pragma once

// Internal to TD_Db: finds a database's stubs by handle.
//
// Files list objects by increasing handle within each section, and new handles come from
// $HANDSEED, above all others, so in handle order the stubs form a few runs of consecutive
// positions. The index keeps those runs (8 bytes each) rather than a position per object or
// a hash node per object, and searches a run's stubs directly.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "OdDbStubTable.h"

class OdDbHandleIndex {
 public:
  explicit OdDbHandleIndex(const OdDbStubTable& stubs) noexcept : stubs_(stubs) {}

  // Indexes every stub of a freshly loaded table. Stubs keep their file handle unless it is
  // null or an earlier stub (by position) has the same one; those get new handles from
  // `next` upwards, in position order. Returns the first handle not given out, which is
  // above every handle of the table.
  std::uint64_t build(std::uint64_t next);
  // Indexes the stub at `position`, whose handle must be final and above every indexed
  // one, as every handle the database gives out is.
  void add(std::size_t position);
  // The stub with `handle`, or null.
  OdDbStub* find(std::uint64_t handle) const noexcept;

 private:
  struct Run {
    std::uint32_t first;  // position of the run's first stub
    std::uint32_t count;
  };
  std::uint64_t handleAt(std::size_t position) const noexcept {
    return stubs_[position].handle.value();
  }
  // Appends positions [first, first + count) as the highest run, joining the last run when
  // they continue it.
  void append(std::uint32_t first, std::uint32_t count);

  const OdDbStubTable& stubs_;
  // In handle order; the handles inside a run increase with position, and every handle of
  // a run is below every handle of the next.
  std::vector<Run> runs_;
};
