#pragma once

#include <cstdint>

#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "StExport.h"

namespace st {

// A snapshot of the ids of the entities of a block (the check manager makes one for model space),
// handed to plug-ins so that they can walk them without holding drawing objects open. Taken once,
// in the drawing's order, erased entitys left out; later changes to the drawing are not followed.
class ST_EXPORT StBlockProxy : public OdRxObject {
  ODRX_DECLARE_MEMBERS(StBlockProxy);

  // The number of ids held.
  virtual std::uint32_t count() const = 0;
  // The id at `index`; an index not below count() throws OdError_InvalidIndex.
  virtual OdDbObjectId getAt(std::uint32_t index) const = 0;

 protected:
  StBlockProxy() = default;
};

using StBlockProxyPtr = OdSmartPtr<StBlockProxy>;

}  // namespace st
