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

  // The parts of a curve, shared with the spline edges of hatch boundaries.
  //
  // A NURBS curve of `degree` over `knots` (used as given: clamped or not, the curve runs over
  // [knots[degree], knots[count]]) and its control points; `weights` empty for a non-rational
  // curve, else one per control point. A periodic curve may give one knot more than control
  // points, without its first `degree` control points repeated at the end; it is wrapped
  // here. Empty when the parts do not make a curve (knot count, decreasing knots, a weight
  // that is not positive, non-finite values).
  static std::vector<HostViewVec> nurbs(int degree, std::vector<double> knots,
                                        std::vector<HostViewVec> control,
                                        std::vector<double> weights, bool periodic);
  // A smooth curve through `fit` in order (a cubic with chord-length spacing), leaving the
  // first and last point along `startTangent` and `endTangent` when they are given (non-null,
  // not zero); `closed` joins the last point back to the first smoothly. Empty for fewer than
  // two distinct points or non-finite ones.
  static std::vector<HostViewVec> throughPoints(std::vector<HostViewVec> fit,
                                                const HostViewVec* startTangent,
                                                const HostViewVec* endTangent, bool closed);
};
