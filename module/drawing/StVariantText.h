#pragma once

#include "OdString.h"
#include "OdVariant.h"
#include "StExport.h"

// Property values as the Check Standards dialog shows and compares them.
namespace st {

// The text a user reads for a value: a string as it is; a bool as the host's "Yes" or "No";
// an integer in decimal; a real as the current drawing shows lengths (decimal, its number
// of places; "%f" when the host cannot format it); a narrow string decoded as UTF-8. Empty
// for an empty value and an object pointer.
ST_EXPORT OdString odVariantToString(const OdVariant& value);
// A real with the fewest digits that read back as exactly `value` ("0.85", "1", "1e-07"):
// different reals never give the same text. For showing two values that the drawing's
// number of places would show alike.
ST_EXPORT OdString exactRealText(double value);
// True when both values have the same type and are equal: strings by the locale's
// comparison ignoring case ("Ébauche" equals "ÉBAUCHE"), narrow strings ignoring ASCII case,
// reals exactly (two NaNs count as equal), object pointers by identity. Values of different
// types (a 16-bit 7 and a 32-bit 7) and empty values are never equal.
ST_EXPORT bool compareOdVariant(const OdVariant& a, const OdVariant& b);

}  // namespace st
