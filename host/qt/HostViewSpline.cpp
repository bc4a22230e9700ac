#include "HostViewSpline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <numbers>

#include "HostViewTags.h"

namespace {
// A span is cut into chords that each turn by at most about this angle, so that a curve looks
// round at any size; at least kMinPerSpan chords, at most kMaxPerSpan. A huge spline gets
// fewer, down to 2, so that one entity does not grow to millions of points.
constexpr double kChordAngle = 5.0 * std::numbers::pi / 180.0;
constexpr int kMinPerSpan = 8;
constexpr int kMaxPerSpan = 64;
constexpr std::size_t kPointBudget = 16384;
// Degrees beyond this are no drawing's; they would only make evaluation slow.
constexpr int kMaxDegree = 32;

bool finite(const HostViewVec& p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

// The most chords a span may have when a curve has `spans` of them.
int chordCap(std::size_t spans) {
  if (spans == 0) return kMaxPerSpan;
  return static_cast<int>(std::clamp<std::size_t>(kPointBudget / spans, 2, kMaxPerSpan));
}

// The angle from direction a to direction b, 0 when either has no length.
double turn(const HostViewVec& a, const HostViewVec& b) {
  const double cross = a.x * b.y - a.y * b.x, dot = a.x * b.x + a.y * b.y;
  return cross == 0 && dot == 0 ? 0.0 : std::abs(std::atan2(cross, dot));
}

// Chords for a piece of curve that turns by `angle` radians at most.
int chordsFor(double angle, int cap) {
  const double wanted = std::ceil(angle / kChordAngle);
  return std::min(cap, std::max(std::min(kMinPerSpan, cap),
                                static_cast<int>(std::min<double>(wanted, kMaxPerSpan))));
}

// A point in homogeneous form: x and y times the weight, and the weight.
struct Homogeneous {
  double x = 0, y = 0, w = 1;
};
}  // namespace

std::vector<HostViewVec> HostViewSpline::nurbs(int degree, std::vector<double> knots,
                                               std::vector<HostViewVec> control,
                                               std::vector<double> weights, bool periodic) {
  std::vector<HostViewVec> out;
  const int p = degree;
  if (p < 1 || p > kMaxDegree) return out;
  if (!weights.empty() && weights.size() != control.size()) return out;
  for (const HostViewVec& c : control)
    if (!finite(c)) return out;
  for (double w : weights)
    if (!(w > 0) || !std::isfinite(w)) return out;
  for (double k : knots)
    if (!std::isfinite(k)) return out;
  const std::size_t up = static_cast<std::size_t>(p);

  // A periodic curve written the short way: n control points and n + 1 knots, one period.
  // Repeat the first `degree` points at the end and continue the knot spacing periodically
  // on both sides, so that the curve over the original knot range closes on itself.
  if (periodic && control.size() > up && knots.size() == control.size() + 1) {
    const std::size_t n = control.size();
    const double period = knots[n] - knots[0];
    std::vector<double> wrapped(n + 1 + 2 * up);
    for (std::size_t i = 0; i <= n; ++i) wrapped[i + up] = knots[i];
    for (std::size_t k = 1; k <= up; ++k) {
      wrapped[up - k] = knots[n - k] - period;
      wrapped[up + n + k] = knots[k] + period;
    }
    knots = std::move(wrapped);
    for (std::size_t k = 0; k < up; ++k) control.push_back(control[k]);
    if (!weights.empty())
      for (std::size_t k = 0; k < up; ++k) weights.push_back(weights[k]);
  }

  const std::size_t n = control.size();
  if (n < up + 1 || knots.size() != n + up + 1) return out;
  for (std::size_t i = 1; i < knots.size(); ++i)
    if (knots[i] < knots[i - 1]) return out;
  if (!(knots[up] < knots[n])) return out;

  std::vector<Homogeneous> h(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double w = weights.empty() ? 1.0 : weights[i];
    h[i] = {control[i].x * w, control[i].y * w, w};
  }

  std::size_t spans = 0;
  for (std::size_t k = up; k < n; ++k) spans += knots[k] < knots[k + 1];
  const int cap = chordCap(spans);
  out.reserve(spans * static_cast<std::size_t>(std::min(cap, 16)) + 1);

  std::array<Homogeneous, kMaxDegree + 1> d;
  auto evaluate = [&](std::size_t k, double u) {
    for (std::size_t j = 0; j <= up; ++j) d[j] = h[j + k - up];
    for (std::size_t r = 1; r <= up; ++r) {
      for (std::size_t j = up; j >= r; --j) {
        const std::size_t i = j + k - up;
        const double span = knots[i + up - r + 1] - knots[i];
        const double a = span > 0 ? (u - knots[i]) / span : 0.0;
        d[j] = {(1 - a) * d[j - 1].x + a * d[j].x, (1 - a) * d[j - 1].y + a * d[j].y,
                (1 - a) * d[j - 1].w + a * d[j].w};
      }
    }
    const Homogeneous& q = d[up];
    const HostViewVec point{q.x / q.w, q.y / q.w};
    if (finite(point)) out.push_back(point);
  };

  bool first = true;
  for (std::size_t k = up; k < n; ++k) {
    const double a = knots[k], b = knots[k + 1];
    if (!(a < b)) continue;
    // The span's curve turns no more than its control polygon does. A polyline's spans are
    // straight: their ends are all there is.
    double angle = 0;
    for (std::size_t i = k - up + 1; i < k; ++i) {
      const HostViewVec& c0 = control[i - 1];
      const HostViewVec& c1 = control[i];
      const HostViewVec& c2 = control[i + 1];
      angle += turn({c1.x - c0.x, c1.y - c0.y}, {c2.x - c1.x, c2.y - c1.y});
    }
    const int steps = p == 1 ? 1 : chordsFor(angle, cap);
    for (int s = first ? 0 : 1; s <= steps; ++s) evaluate(k, a + (b - a) * s / steps);
    first = false;
  }
  if (out.size() < 2) out.clear();
  return out;
}

std::vector<HostViewVec> HostViewSpline::throughPoints(std::vector<HostViewVec> fit,
                                                       const HostViewVec* startTangent,
                                                       const HostViewVec* endTangent, bool closed) {
  std::vector<HostViewVec> out;
  for (const HostViewVec& p : fit)
    if (!finite(p)) return out;
  // Repeated points would make a segment of no length, whose direction is undefined.
  std::vector<HostViewVec> pts;
  for (const HostViewVec& p : fit)
    if (pts.empty() || std::hypot(p.x - pts.back().x, p.y - pts.back().y) > 0) pts.push_back(p);
  if (closed && pts.size() > 2 && pts.front().x == pts.back().x && pts.front().y == pts.back().y)
    pts.pop_back();
  const std::size_t n = pts.size();
  if (n < 2) return out;
  if (closed && n < 3) closed = false;

  const std::size_t segments = closed ? n : n - 1;
  std::vector<double> len(segments);
  for (std::size_t i = 0; i < segments; ++i) {
    const HostViewVec& a = pts[i];
    const HostViewVec& b = pts[(i + 1) % n];
    len[i] = std::hypot(b.x - a.x, b.y - a.y);
  }
  if (closed && !(len[n - 1] > 0)) return out;

  // Tangents per unit of chord length: at an inner point the chord directions on either side
  // weighted by the other side's length (a parabola through the three points).
  std::vector<HostViewVec> m(n);
  auto inner = [&](std::size_t prev, std::size_t i, std::size_t next, double h0, double h1) {
    const HostViewVec d0{(pts[i].x - pts[prev].x) / h0, (pts[i].y - pts[prev].y) / h0};
    const HostViewVec d1{(pts[next].x - pts[i].x) / h1, (pts[next].y - pts[i].y) / h1};
    m[i] = {(h1 * d0.x + h0 * d1.x) / (h0 + h1), (h1 * d0.y + h0 * d1.y) / (h0 + h1)};
  };
  for (std::size_t i = 1; i + 1 < n; ++i) inner(i - 1, i, i + 1, len[i - 1], len[i]);
  if (closed) {
    inner(n - 1, 0, 1, len[n - 1], len[0]);
    inner(n - 2, n - 1, 0, len[n - 2], len[n - 1]);
  } else {
    auto unit = [](const HostViewVec* t, HostViewVec& into) {
      if (!t || !finite(*t)) return false;
      const double l = std::hypot(t->x, t->y);
      if (!(l > 0)) return false;
      into = {t->x / l, t->y / l};
      return true;
    };
    const HostViewVec c0{(pts[1].x - pts[0].x) / len[0], (pts[1].y - pts[0].y) / len[0]};
    const HostViewVec c1{(pts[n - 1].x - pts[n - 2].x) / len[n - 2],
                         (pts[n - 1].y - pts[n - 2].y) / len[n - 2]};
    if (!unit(startTangent, m[0]))
      m[0] = n == 2 ? c0 : HostViewVec{2 * c0.x - m[1].x, 2 * c0.y - m[1].y};
    if (!unit(endTangent, m[n - 1]))
      m[n - 1] = n == 2 ? c1 : HostViewVec{2 * c1.x - m[n - 2].x, 2 * c1.y - m[n - 2].y};
  }

  const int cap = chordCap(segments);
  out.reserve(segments * static_cast<std::size_t>(std::min(cap, 16)) + 1);
  out.push_back(pts[0]);
  for (std::size_t i = 0; i < segments; ++i) {
    const HostViewVec& a = pts[i];
    const HostViewVec& b = pts[(i + 1) % n];
    const HostViewVec& ma = m[i];
    const HostViewVec& mb = m[(i + 1) % n];
    const double h = len[i];
    const HostViewVec chord{b.x - a.x, b.y - a.y};
    const int steps = chordsFor(turn(ma, chord) + turn(chord, mb), cap);
    for (int s = 1; s <= steps; ++s) {
      const double t = static_cast<double>(s) / steps, t2 = t * t, t3 = t2 * t;
      const double h00 = 2 * t3 - 3 * t2 + 1, h10 = t3 - 2 * t2 + t;
      const double h01 = -2 * t3 + 3 * t2, h11 = t3 - t2;
      // The segment's last point is the fit point itself, exactly.
      out.push_back(s == steps
                        ? b
                        : HostViewVec{h00 * a.x + h10 * h * ma.x + h01 * b.x + h11 * h * mb.x,
                                      h00 * a.y + h10 * h * ma.y + h01 * b.y + h11 * h * mb.y});
    }
  }
  return out;
}

std::vector<HostViewVec> HostViewSpline::points(const DxfObject& tags) {
  try {
    std::vector<double> knots, weights;
    std::vector<HostViewVec> control, fit;
    HostViewVec tangents[2];
    bool hasTangent[2] = {false, false};
    constexpr double kUnset = std::numeric_limits<double>::quiet_NaN();
    // Codes repeat (one 10/20 pair per control point): the tags are read in order.
    for (std::size_t i = 0; i < tags.size(); ++i) {
      switch (tags.code(i)) {
        case 40:
          knots.push_back(tags.real(i));
          break;
        case 41:
          weights.push_back(tags.real(i));
          break;
        case 10:
          control.push_back({tags.real(i), kUnset});
          break;
        case 20:
          if (!control.empty()) control.back().y = tags.real(i);
          break;
        case 11:
          fit.push_back({tags.real(i), kUnset});
          break;
        case 21:
          if (!fit.empty()) fit.back().y = tags.real(i);
          break;
        case 12:
        case 13:
          tangents[tags.code(i) - 12].x = tags.real(i);
          break;
        case 22:
        case 23: {
          const int which = tags.code(i) - 22;
          tangents[which].y = tags.real(i);
          hasTangent[which] = true;
          break;
        }
        default:
          break;
      }
    }
    const long long flags = HostViewTags::integerOr(tags, 70, 0);
    const long long degree = HostViewTags::integerOr(tags, 71, 3);
    // Weights a non-rational spline carries without one per point say nothing.
    if (!(flags & 4) && weights.size() != control.size()) weights.clear();
    if (!control.empty() && degree >= 1 && degree <= kMaxDegree) {
      std::vector<HostViewVec> curve =
          nurbs(static_cast<int>(degree), knots, control, weights, (flags & 2) != 0);
      if (!curve.empty()) return curve;
    }
    if (fit.size() >= 2)
      return throughPoints(std::move(fit), hasTangent[0] ? &tangents[0] : nullptr,
                           hasTangent[1] ? &tangents[1] : nullptr, (flags & 1) != 0);
  } catch (const std::exception&) {
    // A value the kernel cannot read as a number: no curve.
  }
  return {};
}
