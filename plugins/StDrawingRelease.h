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

// Whether `db` is of a release that stores what `release` added. A drawing that names no
// release (0: no $ACADVER, or one from before AC1001) is read and written as a release-12
// one, so it stores nothing later; a null drawing stores nothing.
inline bool storesRelease(const OdDbDatabase* db, int release) {
  if (!db) return false;
  const int version = db->versionNumber();
  return (version == 0 ? 1009 : version) >= release;
}

}  // namespace st
