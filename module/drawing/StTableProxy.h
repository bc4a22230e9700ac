#pragma once

#include <cstdint>

#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "StExport.h"

namespace st {

// A snapshot of the ids of the records of a symbol table (layers, linetypes, text styles, dimension
// styles), handed to plug-ins so that they can walk them without holding drawing objects open.
// Taken once, in the drawing's order, erased records left out; later changes to the drawing are not
// followed.
class ST_EXPORT StTableProxy : public OdRxObject {
  ODRX_DECLARE_MEMBERS(StTableProxy);

  // The number of ids held.
  virtual std::uint32_t count() const = 0;
  // The id at `index`; an index not below count() throws OdError_InvalidIndex.
  virtual OdDbObjectId getAt(std::uint32_t index) const = 0;

 protected:
  StTableProxy() = default;
};

using StTableProxyPtr = OdSmartPtr<StTableProxy>;

}  // namespace st
