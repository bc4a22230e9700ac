#include "StBlockProxyImpl.h"

#include "OdDbBlockTableRecord.h"
#include "OdError.h"

namespace st {

std::uint32_t StBlockProxyImpl::count() const {
  return ids_.size();
}

OdDbObjectId StBlockProxyImpl::getAt(std::uint32_t index) const {
  if (index >= ids_.size()) throw OdError_InvalidIndex(index, ids_.size());
  return ids_[index];
}

bool StBlockProxyImpl::fill(const OdDbObjectId& blockId) {
  if (blockId.isNull()) return false;
  OdDbObjectPtr object = blockId.openObject();
  if (!object) return false;
  OdDbBlockTableRecordPtr block = object;
  for (OdDbObjectIteratorPtr it = block->newIterator(true, true); !it->done(); it->step())
    ids_.append(it->objectId());
  return true;
}

}  // namespace st
