#pragma once

#include <vector>

#include "HostViewGeometry.h"

class DxfObject;

// The curve of a SPLINE entity as points close enough to draw at any zoom a drawing is read at
// (seen from above, z dropped): evaluated from its degree (71), knots (40), control points
// (10/20) and weights (41, rational splines) by de Boor's algorithm; a spline with fit points
// (11/21) and no usable control points runs through its fit points (a smooth interpolating
// curve). Empty when the tags describe no curve (too few points, knots that do not match,
// non-finite values); never throws for bad tags.
class HostViewSpline {
 public:
  static std::vector<HostViewVec> points(const DxfObject& tags);
};
