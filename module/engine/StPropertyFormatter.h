#pragma once

#include "OdRxObject.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StExport.h"

namespace st {

// Turns a property's value into the text a user reads, for the plug-in whose properties need
// more than the engine's general formatting (a colour number shown as a colour name, an
// enumeration shown as a word). A plug-in hands one out through
// StDWSPlugin::propertyFormatter.
//
// The interface has no run-time class of its own: it is held through OdSmartPtr made from
// its own pointer type, never cast from an OdRxObject.
class ST_EXPORT StPropertyFormatter : public OdRxObject {
 public:
  // The display text of `value`, the value of the property called `name`.
  virtual OdString format(const OdString& name, const OdVariant& value) = 0;
};

using StPropertyFormatterPtr = OdSmartPtr<StPropertyFormatter>;

}  // namespace st
