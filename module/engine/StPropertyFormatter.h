#pragma once

#include "OdRxObject.h"
#include "OdString.h"
#include "OdVariant.h"
#include "StExport.h"
#include "StVariantText.h"

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
  // The same with every digit needed to tell a real from any other, for two different values
  // that format() shows alike. By default a real becomes st::exactRealText, anything else
  // what format() gives.
  virtual OdString formatExact(const OdString& name, const OdVariant& value) {
    return value.varType() == OdVariant::kDouble ? exactRealText(value.getDouble())
                                                 : format(name, value);
  }
};

using StPropertyFormatterPtr = OdSmartPtr<StPropertyFormatter>;

}  // namespace st
