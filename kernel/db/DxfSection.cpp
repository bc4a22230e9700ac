#include "DxfSection.h"

#include "OdError.h"

DxfObject& DxfSection::object(std::size_t index) {
  if (index >= objects_.size()) throw OdError_InvalidIndex();
  return objects_[index];
}

const DxfObject& DxfSection::object(std::size_t index) const {
  if (index >= objects_.size()) throw OdError_InvalidIndex();
  return objects_[index];
}

DxfObject& DxfSection::insertObject(std::size_t index, std::vector<DxfTag> tags) {
  if (index > objects_.size()) throw OdError_InvalidIndex();
  auto at = objects_.begin() + static_cast<std::ptrdiff_t>(index);
  return *objects_.emplace(at, head_.document(), std::move(tags));
}

void DxfSection::eraseObject(std::size_t index) {
  if (index >= objects_.size()) throw OdError_InvalidIndex();
  objects_.erase(objects_.begin() + static_cast<std::ptrdiff_t>(index));
}
