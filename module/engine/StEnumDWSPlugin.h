#pragma once

#include "OdRxMacros.h"
#include "StDWSPlugin.h"
#include "StExport.h"

namespace st {

// Walks the plug-ins of a check manager in ascending order of their class names. The manager
// makes the enumerator; it is abstract here and has no constructor of its own.
//
// The order of the operations below is part of the contract with plug-in libraries built
// separately.
class ST_EXPORT StEnumDWSPlugin : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(StEnumDWSPlugin);

  // The plug-in the enumerator stands on, or null once it has passed the last one.
  virtual StDWSPluginPtr current() const = 0;
  // Moves to the next plug-in; past the last one, current() answers null.
  virtual void next() = 0;
};

using StEnumDWSPluginPtr = OdSmartPtr<StEnumDWSPlugin>;

}  // namespace st
