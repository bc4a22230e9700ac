#include "DxfPageAllocator.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>

#include "DxfTag.h"

namespace {

constexpr std::size_t kHugePage = std::size_t(2) << 20;
// Below this a block is not worth a mapping of its own.
constexpr std::size_t kLargeBlock = std::size_t(4) << 20;

std::size_t roundUp(std::size_t bytes) {
  return (bytes + kHugePage - 1) & ~(kHugePage - 1);
}

void* mapLarge(std::size_t bytes) {
  // Huge pages need 2 MB-aligned addresses: map one huge page more and trim both ends.
  const std::size_t size = roundUp(bytes);
  void* raw =
      ::mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) throw std::bad_alloc();
  const auto start = reinterpret_cast<std::uintptr_t>(raw);
  const std::uintptr_t aligned = (start + kHugePage - 1) & ~(kHugePage - 1);
  if (aligned > start) ::munmap(raw, aligned - start);
  const std::size_t after = (start + size + kHugePage) - (aligned + size);
  if (after > 0) ::munmap(reinterpret_cast<void*>(aligned + size), after);
#ifdef MADV_HUGEPAGE
  ::madvise(reinterpret_cast<void*>(aligned), size, MADV_HUGEPAGE);  // a hint; failure is harmless
#endif
  return reinterpret_cast<void*>(aligned);
}

}  // namespace

template <typename T>
void* DxfPageAllocator<T>::allocateBytes(std::size_t bytes) {
  if (bytes >= kLargeBlock) return mapLarge(bytes);
  void* p = std::malloc(bytes ? bytes : 1);
  if (!p) throw std::bad_alloc();
  return p;
}

template <typename T>
void DxfPageAllocator<T>::freeBytes(void* p, std::size_t bytes) noexcept {
  if (!p) return;
  if (bytes >= kLargeBlock)
    ::munmap(p, roundUp(bytes));
  else
    std::free(p);
}

template <typename T>
void DxfPageAllocator<T>::releaseUnusedBytes(void* p, std::size_t usedBytes,
                                             std::size_t bytes) noexcept {
  if (!p || bytes < kLargeBlock) return;
  constexpr std::uintptr_t kPage = 4096;
  const auto start = reinterpret_cast<std::uintptr_t>(p);
  const std::uintptr_t from = (start + usedBytes + kPage - 1) & ~(kPage - 1);
  const std::uintptr_t to = start + roundUp(bytes);
  if (from < to) ::madvise(reinterpret_cast<void*>(from), to - from, MADV_DONTNEED);
}

template class DxfPageAllocator<char>;
template class DxfPageAllocator<DxfTag>;
