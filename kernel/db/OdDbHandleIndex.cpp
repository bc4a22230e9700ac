#include "OdDbHandleIndex.h"

#include <algorithm>
#include <cassert>
#include <queue>

void OdDbHandleIndex::append(std::uint32_t first, std::uint32_t count) {
  if (!runs_.empty() && runs_.back().first + runs_.back().count == first)
    runs_.back().count += count;
  else
    runs_.push_back({first, count});
}

std::uint64_t OdDbHandleIndex::build(std::uint64_t next) {
  runs_.clear();
  const auto size = static_cast<std::uint32_t>(stubs_.size());
  // The file's runs: consecutive positions whose handles rise; a null handle ends a run.
  std::vector<Run> fileRuns;
  for (std::uint32_t i = 0; i < size;) {
    if (handleAt(i) == 0) {
      ++i;
      continue;
    }
    std::uint32_t end = i + 1;
    while (end < size && handleAt(end) > handleAt(end - 1)) ++end;
    fileRuns.push_back({i, end - i});
    i = end;
  }

  // Merge them: take from the lowest run everything below the next run's head, as one run
  // of the index. Of two stubs with the same handle the earlier keeps it; the later's is
  // cleared and it gets a new one below.
  auto above = [&](std::uint32_t a, std::uint32_t b) {
    const std::uint64_t ha = handleAt(fileRuns[a].first), hb = handleAt(fileRuns[b].first);
    return ha != hb ? ha > hb : fileRuns[a].first > fileRuns[b].first;
  };
  std::priority_queue<std::uint32_t, std::vector<std::uint32_t>, decltype(above)> heads(above);
  for (std::uint32_t r = 0; r < fileRuns.size(); ++r) heads.push(r);
  auto dropHead = [&](Run& run) {
    stubs_[run.first].handle = 0;
    ++run.first;
    --run.count;
  };
  while (!heads.empty()) {
    const std::uint32_t r = heads.top();
    heads.pop();
    Run& run = fileRuns[r];
    if (heads.empty()) {
      append(run.first, run.count);
      break;
    }
    const std::uint32_t t = heads.top();
    const std::uint64_t bound = handleAt(fileRuns[t].first);
    std::uint32_t lo = 0, hi = run.count;  // how many of the run are below `bound`
    while (lo < hi) {
      const std::uint32_t mid = (lo + hi) / 2;
      if (handleAt(run.first + mid) < bound)
        lo = mid + 1;
      else
        hi = mid;
    }
    if (lo > 0) {
      append(run.first, lo);
      run.first += lo;
      run.count -= lo;
    }
    if (run.count > 0 && handleAt(run.first) == bound) {
      if (run.first > fileRuns[t].first) {
        dropHead(run);
      } else {
        heads.pop();
        dropHead(fileRuns[t]);
        if (fileRuns[t].count > 0) heads.push(t);
      }
    }
    if (run.count > 0) heads.push(r);
  }

  for (std::uint32_t i = 0; i < size; ++i) {
    if (handleAt(i) != 0) continue;
    stubs_[i].handle = next++;
    append(i, 1);
  }
  return next;
}

void OdDbHandleIndex::add(std::size_t position) {
  assert(runs_.empty() ||
         handleAt(position) > handleAt(runs_.back().first + runs_.back().count - 1));
  append(static_cast<std::uint32_t>(position), 1);
}

OdDbStub* OdDbHandleIndex::find(std::uint64_t handle) const noexcept {
  if (handle == 0) return nullptr;
  auto k =
      std::upper_bound(runs_.begin(), runs_.end(), handle,
                       [&](std::uint64_t v, const Run& run) { return v < handleAt(run.first); });
  if (k == runs_.begin()) return nullptr;
  --k;
  std::uint32_t lo = k->first, hi = k->first + k->count;
  while (lo < hi) {
    const std::uint32_t mid = lo + (hi - lo) / 2;
    if (handleAt(mid) < handle)
      lo = mid + 1;
    else
      hi = mid;
  }
  if (lo == k->first + k->count || handleAt(lo) != handle) return nullptr;
  return &stubs_[lo];
}
