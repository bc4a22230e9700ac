#pragma once

#include "StBlockProxy.h"

namespace st {

// The ids of a block's entities, as the block's iterator gives them.
class ST_EXPORT StBlockProxyImpl : public StBlockProxy {
 public:
  std::uint32_t count() const override;
  OdDbObjectId getAt(std::uint32_t index) const override;

  // Appends the ids of the live entities of the block table record `blockId`. False for a
  // null id or a block that does not open; a record of another class throws
  // OdError_NotThatKindOfClass.
  bool fill(const OdDbObjectId& blockId);

 protected:
  StBlockProxyImpl() = default;

 private:
  OdDbObjectIdArray ids_;
};

}  // namespace st
