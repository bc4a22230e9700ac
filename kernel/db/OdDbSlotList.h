#pragma once

// Internal to TD_Db: the stubs of one section's objects, by the objects' index in the
// section (null for an object without a stub, such as ENDTAB).
//
// When a file is indexed the stubs of a section are made in its order, so at first the list
// is implicit: index i is stub first + i of the table, less the stubless objects before i.
// The first insertion or removal turns it into a list of pointers, which costs 8 bytes an
// object only for the sections a drawing's changes touch.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "OdDbStubTable.h"

class OdDbSlotList {
 public:
  OdDbSlotList() noexcept = default;
  // A section of `count` objects whose stubs are the table's from position `first` on, in
  // order; the objects at `stubless` (ascending indexes) have none.
  OdDbSlotList(const OdDbStubTable& stubs, std::uint32_t first, std::uint32_t count,
               std::vector<std::uint32_t> stubless);

  std::size_t size() const noexcept { return explicit_ ? list_.size() : count_; }
  // Unchecked: `index` < size(). Null for an object without a stub.
  OdDbStub* operator[](std::size_t index) const noexcept;
  // Checked: null past the end as well.
  OdDbStub* at(std::size_t index) const noexcept {
    return index < size() ? (*this)[index] : nullptr;
  }

  // `stub` (may be null) for a new object at `index` (size() appends); the later objects'
  // stubs get their new index.
  void insert(std::size_t index, OdDbStub* stub);
  // The object at `index` went; the later objects' stubs get their new index.
  void erase(std::size_t index);

 private:
  void makeExplicit();
  void renumberFrom(std::size_t index) noexcept;

  const OdDbStubTable* stubs_ = nullptr;
  std::uint32_t first_ = 0;
  std::uint32_t count_ = 0;
  std::vector<std::uint32_t> stubless_;
  bool explicit_ = false;
  std::vector<OdDbStub*> list_;
};
