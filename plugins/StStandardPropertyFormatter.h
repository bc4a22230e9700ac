#pragma once

#include "StPropertyFormatter.h"

namespace st {

// Turns the property values of the standard plug-ins into the texts a user reads: colour
// numbers as colour names ("red", "ByLayer", "Color 31", a true colour as "R,G,B"),
// lineweights in millimetres, transparency as a percentage, angles in degrees, text
// generation flags as words, a value the record does not store as "(not set)". Anything else
// is shown as the engine shows values (st::odVariantToString). Stateless; one serves all four
// plug-ins, which name their properties so that names never clash.
class StStandardPropertyFormatter : public StPropertyFormatter {
 public:
  OdString format(const OdString& name, const OdVariant& value) override;
  // Oblique angles in degrees with every digit; otherwise as the base does.
  OdString formatExact(const OdString& name, const OdVariant& value) override;

  // The colour text of a colour index (0 ByBlock, 256 ByLayer, 1-7 by name, else a number).
  static OdString colorText(int index);
};

}  // namespace st
