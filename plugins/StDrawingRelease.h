#pragma once

// The releases of the drawing format at which the records the standard plug-ins compare
// gained properties, and the test of whether a drawing's release stores one. A property
// that the drawing checked or the standards file cannot store is neither compared nor
// written by a fix: a drawing of an older release cannot be given it.

#include "OdDbDatabase.h"

namespace st {

// Release numbers as OdDbDatabase::versionNumber() gives them ("AC1015" -> 1015).
constexpr int kReleaseR13 = 1012;
constexpr int kReleaseR2000 = 1015;  // lineweights, plotting and plot styles of layers
constexpr int kReleaseR2004 = 1018;  // true colours

// Whether `db` is of a release that stores what `release` added (a drawing that names no
// release stores what release 12 does); a null drawing stores nothing.
inline bool storesRelease(const OdDbDatabase* db, int release) {
  return db && db->formatRelease() >= release;
}

}  // namespace st
