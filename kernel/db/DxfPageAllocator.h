#pragma once

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

// The allocator of the large arrays of a loaded file (its bytes, its tags). Blocks of a few
// megabytes and more are mapped directly and marked for transparent huge pages, which cuts
// the cost of first touching them (one page fault per 2 MB rather than per 4 KB) and
// returns them to the system as soon as they are freed; smaller blocks come from the heap.
// Elements are default-initialised, so a resized byte array is not zero-filled first.
// Stateless: containers using it move and swap freely. Allocation failure throws
// std::bad_alloc.
template <typename T>
class DxfPageAllocator {
 public:
  using value_type = T;

  DxfPageAllocator() noexcept = default;
  template <typename U>
  DxfPageAllocator(const DxfPageAllocator<U>&) noexcept {}

  T* allocate(std::size_t n) { return static_cast<T*>(allocateBytes(n * sizeof(T))); }
  void deallocate(T* p, std::size_t n) noexcept { freeBytes(p, n * sizeof(T)); }

  template <typename U>
  void construct(U* p) noexcept(noexcept(U())) {
    ::new (static_cast<void*>(p)) U;
  }
  template <typename U, typename... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }

  friend bool operator==(const DxfPageAllocator&, const DxfPageAllocator&) noexcept { return true; }

  // Gives the system back the pages of a block of `capacity` elements past its first `used`
  // ones; the block stays valid, and those pages read as zero if touched again. A huge page
  // is committed whole at its first touch, so without this the unused end of a block's last
  // huge page (up to 2 MB) would stay resident for the block's life. Does nothing for a block
  // from the heap.
  static void releaseUnused(T* p, std::size_t used, std::size_t capacity) noexcept {
    releaseUnusedBytes(p, used * sizeof(T), capacity * sizeof(T));
  }

  // The untyped halves, shared by every element type.
  static void* allocateBytes(std::size_t bytes);
  static void freeBytes(void* p, std::size_t bytes) noexcept;
  static void releaseUnusedBytes(void* p, std::size_t usedBytes, std::size_t bytes) noexcept;
};

// A whole file's bytes as DxfReader reads them.
using DxfFileBytes = std::vector<char, DxfPageAllocator<char>>;
