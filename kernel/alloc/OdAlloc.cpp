#include "OdAlloc.h"

#include <cstdlib>
#include <new>

void* odrxAlloc(std::size_t size) {
  void* memory = std::malloc(size ? size : 1);
  if (!memory) throw std::bad_alloc();
  return memory;
}

void* odrxRealloc(void* memory, std::size_t newSize, std::size_t /*oldSize*/) {
  void* moved = std::realloc(memory, newSize ? newSize : 1);
  if (!moved) throw std::bad_alloc();
  return moved;
}

void odrxFree(void* memory) noexcept { std::free(memory); }
