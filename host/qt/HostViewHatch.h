#pragma once

#include <vector>

#include "HostViewGeometry.h"

class DxfObject;

// The boundary of a HATCH entity in the hatch's own plane (the caller maps it by the
// extrusion and the elevation, 30): every boundary path (92) as a closed ring of points,
// polyline paths with their bulges, edge paths of lines, circular arcs, elliptic arcs and
// splines followed in order. `solid` says the hatch is a solid fill (70 = 1, or pattern name
// "SOLID"). A path that cannot be read is left out; false when no path could be read. Never
// throws for bad tags.
class HostViewHatch {
 public:
  struct Boundary {
    std::vector<std::vector<HostViewVec>> rings;
    bool solid = false;
  };
  static bool read(const DxfObject& tags, Boundary& out);
};
