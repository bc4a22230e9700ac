#pragma once

#include "OdDbObject.h"
#include "OdResBuf.h"

// An xrecord: a chain of typed values stored in the drawing under a dictionary.
class OdDbXrecord : public OdDbObject {
  ODRX_DECLARE_MEMBERS(OdDbXrecord);

  // The data as a new chain (null when there is none). Changing the chain changes nothing
  // until it is given back with setFromRbChain.
  OdResBufPtr rbChain() const;
  // Replaces the data. Throws OdError(eInvalidInput) for a buffer type that is not a group
  // code a drawing can store; the data is then left as it was.
  void setFromRbChain(const OdResBuf* chain);

 protected:
  OdDbXrecord() = default;
  void initNewObject() override;

 private:
  std::pair<std::size_t, std::size_t> dataBounds() const;
};

using OdDbXrecordPtr = OdSmartPtr<OdDbXrecord>;
