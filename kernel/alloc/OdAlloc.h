#pragma once

#include <cstddef>

// The kernel's allocator. Every run-time object is allocated here, so that an object made in
// one shared library can be freed in another.
//
// odrxAlloc returns memory aligned for any fundamental type, or throws std::bad_alloc.
// odrxFree accepts null; memory from odrxAlloc must go back through odrxFree only.
void* odrxAlloc(std::size_t size);
void* odrxRealloc(void* memory, std::size_t newSize, std::size_t oldSize);
void odrxFree(void* memory) noexcept;
