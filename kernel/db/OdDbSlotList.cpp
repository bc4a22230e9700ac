#include "OdDbSlotList.h"

#include <algorithm>

OdDbSlotList::OdDbSlotList(const OdDbStubTable& stubs, std::uint32_t first, std::uint32_t count,
                           std::vector<std::uint32_t> stubless)
    : stubs_(&stubs), first_(first), count_(count), stubless_(std::move(stubless)) {}

OdDbStub* OdDbSlotList::operator[](std::size_t index) const noexcept {
  if (explicit_) return list_[index];
  if (stubless_.empty()) return &(*stubs_)[first_ + index];
  auto it = std::lower_bound(stubless_.begin(), stubless_.end(), index);
  if (it != stubless_.end() && *it == index) return nullptr;
  return &(*stubs_)[first_ + index - static_cast<std::size_t>(it - stubless_.begin())];
}

void OdDbSlotList::makeExplicit() {
  if (explicit_) return;
  std::vector<OdDbStub*> list(count_);
  for (std::size_t i = 0; i < count_; ++i) list[i] = (*this)[i];
  list_ = std::move(list);
  stubless_ = {};
  explicit_ = true;
}

void OdDbSlotList::renumberFrom(std::size_t index) noexcept {
  for (std::size_t i = index; i < list_.size(); ++i)
    if (list_[i]) list_[i]->index = static_cast<std::uint32_t>(i);
}

void OdDbSlotList::insert(std::size_t index, OdDbStub* stub) {
  makeExplicit();
  list_.insert(list_.begin() + static_cast<std::ptrdiff_t>(index), stub);
  renumberFrom(index);
}

void OdDbSlotList::erase(std::size_t index) {
  makeExplicit();
  list_.erase(list_.begin() + static_cast<std::ptrdiff_t>(index));
  renumberFrom(index);
}
