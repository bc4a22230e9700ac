#pragma once

#include <cmath>
#include <cstddef>

#include "DxfObject.h"
#include "HostViewGeometry.h"

// Reading an entity's geometry from its tags: every reader answers a default or false for a
// missing or non-finite value, never throws for one.
namespace HostViewTags {

// The reals of the first tags with codes `codes` in `obj`, or false when one is missing or not
// a finite number.
template <std::size_t N>
bool readReals(const DxfObject& obj, const int (&codes)[N], double (&values)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    const std::size_t at = obj.find(codes[i]);
    if (at == DxfObject::npos) return false;
    values[i] = obj.real(at);
    if (!std::isfinite(values[i])) return false;
  }
  return true;
}

inline double realOr(const DxfObject& obj, int code, double dflt) {
  const std::size_t at = obj.find(code);
  if (at == DxfObject::npos) return dflt;
  const double value = obj.real(at);
  return std::isfinite(value) ? value : dflt;
}

inline long long integerOr(const DxfObject& obj, int code, long long dflt) {
  const std::size_t at = obj.find(code);
  return at == DxfObject::npos ? dflt : obj.integer(at);
}

// The plane of a planar object (its object coordinate system): the extrusion direction
// (210/220/230) and the axes the arbitrary-axis rule gives it, at an elevation. Maps the
// object's own x, y to the drawing's, seen from above.
struct Plane {
  double ax[3] = {1, 0, 0};
  double ay[3] = {0, 1, 0};
  double n[3] = {0, 0, 1};
  double z = 0;

  // The plane of `obj`, at the elevation of group `elevationCode` (0 when absent).
  static Plane of(const DxfObject& obj, int elevationCode) {
    Plane p;
    p.z = realOr(obj, elevationCode, 0.0);
    double v[3] = {realOr(obj, 210, 0.0), realOr(obj, 220, 0.0), realOr(obj, 230, 1.0)};
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (!(length > 1e-12) || !std::isfinite(length)) return p;
    for (double& c : v) c /= length;
    // Near the drawing's z axis the x axis is world y cross n, else world z cross n.
    double a[3];
    if (std::abs(v[0]) < 1.0 / 64 && std::abs(v[1]) < 1.0 / 64) {
      a[0] = v[2], a[1] = 0, a[2] = -v[0];
    } else {
      a[0] = -v[1], a[1] = v[0], a[2] = 0;
    }
    const double al = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    for (int i = 0; i < 3; ++i) {
      p.n[i] = v[i];
      p.ax[i] = a[i] / al;
    }
    p.ay[0] = p.n[1] * p.ax[2] - p.n[2] * p.ax[1];
    p.ay[1] = p.n[2] * p.ax[0] - p.n[0] * p.ax[2];
    p.ay[2] = p.n[0] * p.ax[1] - p.n[1] * p.ax[0];
    return p;
  }

  bool isWorld() const { return n[2] == 1.0 && z == 0; }
  HostViewVec map(double x, double y) const {
    return {x * ax[0] + y * ay[0] + z * n[0], x * ax[1] + y * ay[1] + z * n[1]};
  }
  // The plane's x, y into the drawing's, as an affine map (z dropped).
  HostViewAffine affine() const { return {ax[0], ax[1], ay[0], ay[1], z * n[0], z * n[1]}; }
};

}  // namespace HostViewTags
