#include "OdDbStubTable.h"

#include <sys/mman.h>

#include <new>

namespace {

// A page aligned to its own size: map twice the size and give back both ends. Pages not yet
// written cost address space only.
void* mapAligned(std::size_t bytes) {
  void* raw =
      ::mmap(nullptr, 2 * bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) throw std::bad_alloc();
  const auto start = reinterpret_cast<std::uintptr_t>(raw);
  const std::uintptr_t aligned = (start + bytes - 1) & ~(bytes - 1);
  if (aligned > start) ::munmap(raw, aligned - start);
  if (start + bytes > aligned)
    ::munmap(reinterpret_cast<void*>(aligned + bytes), start + bytes - aligned);
  return reinterpret_cast<void*>(aligned);
}

}  // namespace

OdDbStubTable::~OdDbStubTable() {
  for (OdDbStub* page : pages_) ::munmap(page, kPageBytes);
}

OdDbStub& OdDbStubTable::emplace_back() {
  if (size_ == pages_.size() * kPerPage) {
    pages_.reserve(pages_.size() + 1);
    auto* page = static_cast<OdDbStub*>(mapAligned(kPageBytes));
    ::new (static_cast<void*>(page)) PageHead{db_};
    pages_.push_back(page);
  }
  OdDbStub* stub = &pages_[size_ / kPerPage][size_ % kPerPage + 1];
  ::new (static_cast<void*>(stub)) OdDbStub();
  ++size_;
  return *stub;
}
