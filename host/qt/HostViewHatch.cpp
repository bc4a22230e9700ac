#include "HostViewHatch.h"

#include <QString>
#include <algorithm>
#include <cmath>
#include <exception>
#include <numbers>

#include "HostQtText.h"
#include "HostViewSpline.h"
#include "HostViewTags.h"

namespace {
constexpr double kPi = std::numbers::pi;
// Arcs become chords of at most this angle: round at any size a hatch is looked at.
constexpr double kChordAngle = kPi / 36.0;

// Reads a boundary tag by tag: codes repeat, so only the order of the tags says which value
// belongs to which vertex, edge or path. Every read checks the code it expects.
class Cursor {
 public:
  Cursor(const DxfObject& tags, std::size_t at) : tags_(tags), at_(at) {}

  bool done() const { return at_ >= tags_.size(); }
  bool at(int code) const { return !done() && tags_.code(at_) == code; }
  std::size_t index() const { return at_; }
  void seek(std::size_t at) { at_ = at; }
  void skip() { ++at_; }

  bool real(int code, double& value) {
    if (!at(code)) return false;
    value = tags_.real(at_);
    if (!std::isfinite(value)) return false;
    ++at_;
    return true;
  }
  bool integer(int code, long long& value) {
    if (!at(code)) return false;
    value = tags_.integer(at_++);
    return true;
  }
  bool point(int xCode, HostViewVec& p) { return real(xCode, p.x) && real(xCode + 10, p.y); }
  // An optional tag: its value when it is next, else `dflt`.
  long long integerOr(int code, long long dflt) {
    long long value = dflt;
    return integer(code, value) ? value : dflt;
  }

 private:
  const DxfObject& tags_;
  std::size_t at_;
};

double distance(const HostViewVec& a, const HostViewVec& b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

bool same(const HostViewVec& a, const HostViewVec& b) {
  const double size = std::max({1.0, std::abs(a.x), std::abs(a.y), std::abs(b.x), std::abs(b.y)});
  return distance(a, b) <= 1e-9 * size;
}

// Points of the elliptic arc centre + major cos t + minor sin t for t from `start` over
// `sweep` radians (negative: clockwise), the ends included.
std::vector<HostViewVec> ellipticArc(const HostViewVec& centre, const HostViewVec& major,
                                     double ratio, double start, double sweep) {
  const HostViewVec minor{-major.y * ratio, major.x * ratio};
  const int steps = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / kChordAngle)));
  std::vector<HostViewVec> out;
  out.reserve(static_cast<std::size_t>(steps) + 1);
  for (int s = 0; s <= steps; ++s) {
    const double t = start + sweep * s / steps;
    out.push_back({centre.x + major.x * std::cos(t) + minor.x * std::sin(t),
                   centre.y + major.y * std::cos(t) + minor.y * std::sin(t)});
  }
  return out;
}

// The counter-clockwise sweep from `start` to `end` degrees, in (0, 360]: equal angles and
// 0 to 360 are a whole turn.
double sweepDegrees(double start, double end) {
  double sweep = std::fmod(end - start, 360.0);
  if (sweep <= 0) sweep += 360.0;
  return sweep;
}

// The parameter of the point at `angle` radians from the major axis of an ellipse.
double parameterOf(double angle, double ratio) {
  return std::atan2(std::sin(angle) / ratio, std::cos(angle));
}

// The points of a polyline path's edge from a to b with `bulge`, b itself left out.
void bulgedEdge(const HostViewVec& a, const HostViewVec& b, double bulge,
                std::vector<HostViewVec>& out) {
  out.push_back(a);
  const double chord = distance(a, b);
  if (bulge == 0 || !std::isfinite(bulge) || chord == 0) return;
  // The arc through a and b whose angle is 4 atan(bulge), counter-clockwise when positive.
  const double angle = 4.0 * std::atan(bulge);
  const double radius = chord / (2.0 * std::sin(angle / 2.0));
  const double toCentre = radius * std::cos(angle / 2.0);
  const double dx = b.x - a.x, dy = b.y - a.y;
  const HostViewVec centre{a.x + dx / 2.0 - dy / chord * toCentre,
                           a.y + dy / 2.0 + dx / chord * toCentre};
  const double r = std::abs(radius);
  const double start = std::atan2(a.y - centre.y, a.x - centre.x);
  std::vector<HostViewVec> arc = ellipticArc(centre, {r, 0}, 1.0, start, angle);
  out.insert(out.end(), arc.begin() + 1, arc.end() - 1);
}

// Appends the points of one edge to the path's ring. Files do not always keep edges head to
// tail: an edge that meets the ring with its far end is turned round, and so is the first
// edge when the second meets its start.
void chain(std::vector<HostViewVec>& ring, std::vector<HostViewVec> edge, bool secondEdge) {
  if (edge.empty()) return;
  if (ring.empty()) {
    ring = std::move(edge);
    return;
  }
  double toFront = distance(ring.back(), edge.front());
  double toBack = distance(ring.back(), edge.back());
  if (secondEdge) {
    const double startToFront = distance(ring.front(), edge.front());
    const double startToBack = distance(ring.front(), edge.back());
    if (std::min(startToFront, startToBack) < std::min(toFront, toBack)) {
      std::reverse(ring.begin(), ring.end());
      toFront = startToFront;
      toBack = startToBack;
    }
  }
  if (toBack < toFront) std::reverse(edge.begin(), edge.end());
  const std::size_t from = same(ring.back(), edge.front()) ? 1 : 0;
  ring.insert(ring.end(), edge.begin() + static_cast<std::ptrdiff_t>(from), edge.end());
}

// Arc edge: 10/20 centre, 40 radius, 50/51 degrees, 73 counter-clockwise. A clockwise arc's
// angles are written mirrored (as seen from below): it runs from -start clockwise.
bool arcEdge(Cursor& c, std::vector<HostViewVec>& out) {
  HostViewVec centre;
  double radius = 0, start = 0, end = 0;
  if (!c.point(10, centre) || !c.real(40, radius) || !c.real(50, start) || !c.real(51, end))
    return false;
  const bool ccw = c.integerOr(73, 1) != 0;
  if (!(radius > 0)) return false;
  const double sweep = sweepDegrees(start, end) * kPi / 180.0;
  const double from = start * kPi / 180.0;
  out = ccw ? ellipticArc(centre, {radius, 0}, 1.0, from, sweep)
            : ellipticArc(centre, {radius, 0}, 1.0, -from, -sweep);
  return true;
}

// Elliptic arc edge: 10/20 centre, 11/21 major axis end (from the centre), 40 minor/major
// ratio, 50/51 angles in degrees from the major axis, 73 counter-clockwise; mirrored like
// arcs when clockwise.
bool ellipseEdge(Cursor& c, std::vector<HostViewVec>& out) {
  HostViewVec centre, major;
  double ratio = 0, start = 0, end = 0;
  if (!c.point(10, centre) || !c.point(11, major) || !c.real(40, ratio) || !c.real(50, start) ||
      !c.real(51, end))
    return false;
  const bool ccw = c.integerOr(73, 1) != 0;
  if (!(ratio > 0) || !(std::hypot(major.x, major.y) > 0)) return false;
  const double degrees = sweepDegrees(start, end);
  const double from = parameterOf(start * kPi / 180.0, ratio);
  double sweep = 2 * kPi;
  if (degrees < 360.0) {
    sweep = parameterOf(end * kPi / 180.0, ratio) - from;
    while (sweep <= 0) sweep += 2 * kPi;
  }
  out = ccw ? ellipticArc(centre, major, ratio, from, sweep)
            : ellipticArc(centre, major, ratio, -from, -sweep);
  return true;
}

// Spline edge: 94 degree, 73 rational, 74 periodic, 95/96 counts, 40 knots, 10/20 control
// points each with its 42 weight when rational; then, in newer files, 97 fit points 11/21 and
// 12/22, 13/23 end tangents. The path's own 97 (source objects) follows the last edge, so a
// 97 after the last edge is fit data only when fit data follows it.
bool splineEdge(Cursor& c, bool lastEdge, std::vector<HostViewVec>& out) {
  long long degree = 0;
  if (!c.integer(94, degree)) return false;
  c.integerOr(73, 0);
  const bool periodic = c.integerOr(74, 0) != 0;
  c.integerOr(95, 0);
  c.integerOr(96, 0);
  std::vector<double> knots, weights;
  std::vector<HostViewVec> control, fit;
  double value = 0;
  while (c.at(40)) {
    if (!c.real(40, value)) return false;
    knots.push_back(value);
  }
  while (c.at(10) || c.at(42)) {
    if (c.at(42)) {
      if (!c.real(42, value)) return false;
      weights.push_back(value);
      continue;
    }
    HostViewVec p;
    if (!c.point(10, p)) return false;
    control.push_back(p);
  }
  HostViewVec tangents[2];
  bool hasTangent[2] = {false, false};
  if (c.at(97)) {
    const std::size_t mark = c.index();
    const long long count = c.integerOr(97, 0);
    if (!lastEdge || c.at(11) || c.at(12) || c.at(13) || (count == 0 && c.at(97))) {
      while (c.at(11)) {
        HostViewVec p;
        if (!c.point(11, p)) return false;
        fit.push_back(p);
      }
      hasTangent[0] = c.at(12) && c.point(12, tangents[0]);
      hasTangent[1] = c.at(13) && c.point(13, tangents[1]);
    } else {
      c.seek(mark);
    }
  }
  if (degree >= 1 && degree <= 32 && !control.empty()) {
    if (weights.size() != control.size()) weights.clear();
    out = HostViewSpline::nurbs(static_cast<int>(degree), knots, control, weights, periodic);
    if (!out.empty()) return true;
  }
  out = HostViewSpline::throughPoints(fit, hasTangent[0] ? &tangents[0] : nullptr,
                                      hasTangent[1] ? &tangents[1] : nullptr, false);
  return !out.empty();
}

// One boundary path from its 92 tag: its points in `ring`, the cursor after its tags.
bool path(Cursor& c, std::vector<HostViewVec>& ring) {
  long long flags = 0;
  if (!c.integer(92, flags)) return false;
  if (flags & 2) {
    c.integerOr(72, 0);  // has bulges: a 42 follows a vertex or not, either way
    c.integerOr(73, 1);  // closed: a hatch's boundary is closed whatever it says
    long long count = 0;
    if (!c.integer(93, count)) return false;
    std::vector<HostViewVec> vertices;
    std::vector<double> bulges;
    while (c.at(10)) {
      HostViewVec p;
      if (!c.point(10, p)) return false;
      double bulge = 0;
      if (c.at(42) && !c.real(42, bulge)) return false;
      vertices.push_back(p);
      bulges.push_back(bulge);
    }
    const std::size_t n = vertices.size();
    for (std::size_t i = 0; i < n; ++i)
      bulgedEdge(vertices[i], vertices[(i + 1) % n], bulges[i], ring);
  } else {
    long long edges = 0;
    if (!c.integer(93, edges) || edges < 0) return false;
    for (long long e = 0; e < edges; ++e) {
      long long type = 0;
      if (!c.integer(72, type)) return false;
      std::vector<HostViewVec> points;
      bool ok = false;
      switch (type) {
        case 1: {
          HostViewVec a, b;
          ok = c.point(10, a) && c.point(11, b);
          points = {a, b};
          break;
        }
        case 2:
          ok = arcEdge(c, points);
          break;
        case 3:
          ok = ellipseEdge(c, points);
          break;
        case 4:
          ok = splineEdge(c, e + 1 == edges, points);
          break;
        default:
          break;
      }
      if (!ok) return false;
      chain(ring, std::move(points), e == 1);
    }
  }
  // The objects the boundary was made from: handles that say nothing of its shape.
  if (c.at(97)) {
    c.integerOr(97, 0);
    while (c.at(330)) c.skip();
  }
  // A closed ring is kept without its closing point; a spike of one point is no area.
  std::vector<HostViewVec> clean;
  for (const HostViewVec& p : ring)
    if (std::isfinite(p.x) && std::isfinite(p.y) && (clean.empty() || !same(clean.back(), p)))
      clean.push_back(p);
  while (clean.size() > 1 && same(clean.front(), clean.back())) clean.pop_back();
  ring = std::move(clean);
  return ring.size() >= 3;
}
}  // namespace

bool HostViewHatch::read(const DxfObject& tags, Boundary& out) {
  out = Boundary();
  try {
    const std::size_t countAt = tags.find(91);
    const std::size_t solidAt = tags.find(70);
    out.solid = solidAt != DxfObject::npos && (countAt == DxfObject::npos || solidAt < countAt) &&
                tags.integer(solidAt) == 1;
    const std::size_t nameAt = tags.find(2);
    if (nameAt != DxfObject::npos &&
        toQString(tags.text(nameAt))
                .trimmed()
                .compare(QLatin1String("SOLID"), Qt::CaseInsensitive) == 0)
      out.solid = true;
    if (countAt == DxfObject::npos) return false;
    const long long count = tags.integer(countAt);
    Cursor c(tags, countAt + 1);
    for (long long p = 0; p < count && !c.done(); ++p) {
      // After a path that could not be read, the next one starts at the next 92; the
      // pattern's own tags (75 onwards) end the boundary.
      while (!c.done() && !c.at(92) && !c.at(75)) c.skip();
      if (!c.at(92)) break;
      const std::size_t start = c.index();
      std::vector<HostViewVec> ring;
      bool ok = false;
      try {
        ok = path(c, ring);
      } catch (const std::exception&) {
        ok = false;
      }
      if (ok) {
        out.rings.push_back(std::move(ring));
      } else if (c.index() == start) {
        c.skip();
      }
    }
  } catch (const std::exception&) {
    // Tags the kernel cannot read as numbers: whatever paths were read stay.
  }
  return !out.rings.empty();
}
