#include "StTableProxyImpl.h"

#include "OdDbSymbolTable.h"
#include "OdError.h"

namespace st {

std::uint32_t StTableProxyImpl::count() const {
  return ids_.size();
}

OdDbObjectId StTableProxyImpl::getAt(std::uint32_t index) const {
  if (index >= ids_.size()) throw OdError_InvalidIndex(index, ids_.size());
  return ids_[index];
}

bool StTableProxyImpl::fill(const OdDbObjectId& tableId) {
  if (tableId.isNull()) return false;
  // An erased table does not open: no proxy rather than an error, as for a block.
  OdDbObjectPtr object = tableId.openObject();
  if (!object) return false;
  OdDbSymbolTablePtr table = object;
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(true, true); !it->done(); it->step())
    ids_.append(it->getRecordId());
  return true;
}

}  // namespace st
