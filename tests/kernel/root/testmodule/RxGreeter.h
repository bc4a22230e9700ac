#pragma once

#include "OdRxMacros.h"
#include "OdString.h"

// The abstract interface the test module registers; odrxCreateObject("RxGreeter") makes the
// module's implementation of it.
class RxGreeter : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(RxGreeter);
  virtual OdString greet() const = 0;
};
