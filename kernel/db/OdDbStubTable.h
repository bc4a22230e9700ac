#pragma once

// Internal to TD_Db: the stubs of one database, by position (the order they were made in).
//
// A drawing has one stub per object, hundreds of thousands of them, and every stub must know
// its database. Rather than a pointer in each stub, stubs live in pages aligned to the page
// size whose first slot holds the database, so a stub finds it from its own address. Stubs
// never move: ids point at them for the database's life.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "OdDbStub.h"

class OdDbDatabase;

class OdDbStubTable {
 public:
  explicit OdDbStubTable(OdDbDatabase* db) noexcept : db_(db) {}
  ~OdDbStubTable();
  OdDbStubTable(const OdDbStubTable&) = delete;
  OdDbStubTable& operator=(const OdDbStubTable&) = delete;

  std::size_t size() const noexcept { return size_; }
  // Unchecked: `position` < size().
  OdDbStub& operator[](std::size_t position) const noexcept {
    return pages_[position / kPerPage][position % kPerPage + 1];
  }
  // A new default stub at position size(). Throws std::bad_alloc.
  OdDbStub& emplace_back();

  // The database of a stub made by any table.
  static OdDbDatabase* databaseOf(const OdDbStub* stub) noexcept {
    const auto page = reinterpret_cast<std::uintptr_t>(stub) & ~(kPageBytes - 1);
    return reinterpret_cast<const PageHead*>(page)->db;
  }

 private:
  static constexpr std::uintptr_t kPageBytes = std::uintptr_t(1) << 18;
  // The first slot of a page holds its head.
  static constexpr std::size_t kPerPage = kPageBytes / sizeof(OdDbStub) - 1;
  struct PageHead {
    OdDbDatabase* db;
  };
  static_assert(sizeof(PageHead) <= sizeof(OdDbStub));

  OdDbDatabase* db_;
  std::vector<OdDbStub*> pages_;
  std::size_t size_ = 0;
};

inline OdDbDatabase* OdDbStub::database() const noexcept {
  return OdDbStubTable::databaseOf(this);
}
