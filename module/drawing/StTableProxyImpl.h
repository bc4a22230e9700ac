#pragma once

#include "StTableProxy.h"

namespace st {

// The ids of a symbol table's records, as the table's iterator gives them.
class ST_EXPORT StTableProxyImpl : public StTableProxy {
 public:
  std::uint32_t count() const override;
  OdDbObjectId getAt(std::uint32_t index) const override;

  // Appends the ids of the live records of the symbol table `tableId`. False, with nothing
  // added, for a null id or a table that does not open (erased); an object that is not a
  // symbol table throws OdError_NotThatKindOfClass.
  bool fill(const OdDbObjectId& tableId);

 protected:
  StTableProxyImpl() = default;

 private:
  OdDbObjectIdArray ids_;
};

}  // namespace st
