#include "HostViewPicker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {
constexpr int kMaxDepth = 16;                 // nested inserts followed
constexpr std::uint64_t kMaxCells = 1 << 16;  // cells of one array insert looked at
constexpr double kInf = std::numeric_limits<double>::infinity();

double cross(const HostViewVec& u, const HostViewVec& v) {
  return u.x * v.y - u.y * v.x;
}
HostViewVec sub(const HostViewVec& a, const HostViewVec& b) {
  return {a.x - b.x, a.y - b.y};
}

double segmentDistance(const HostViewVec& p, const HostViewVec& a, const HostViewVec& b) {
  const HostViewVec ab = sub(b, a), ap = sub(p, a);
  const double len2 = ab.x * ab.x + ab.y * ab.y;
  double t = len2 > 0 ? (ap.x * ab.x + ap.y * ab.y) / len2 : 0;
  t = std::clamp(t, 0.0, 1.0);
  return std::hypot(p.x - (a.x + t * ab.x), p.y - (a.y + t * ab.y));
}

// Whether segment a-b meets the box.
bool segmentMeets(const HostViewVec& a, const HostViewVec& b, const HostViewBox& box) {
  double t0, t1;
  return box.clipSegment(a.x, a.y, b.x - a.x, b.y - a.y, t0, t1);
}

// Whether `p` lies inside the rings (point counts `sizes`, one after another in `pts`) by the
// odd-even rule.
bool insideRings(const std::vector<HostViewVec>& pts, const std::vector<std::uint32_t>& sizes,
                 const HostViewVec& p) {
  bool inside = false;
  std::size_t ring = 0;
  for (std::uint32_t n : sizes) {
    for (std::uint32_t k = 0, prev = n - 1; k < n; prev = k++) {
      const HostViewVec& a = pts[ring + k];
      const HostViewVec& b = pts[ring + prev];
      if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
        inside = !inside;
    }
    ring += n;
  }
  return inside;
}

// How many chords follow an arc of `radius` through `sweep` radians within `tolerance`.
int chordsFor(double radius, double sweep, double tolerance) {
  if (!(radius > tolerance)) return 4;
  const double step = 2 * std::acos(1 - tolerance / radius);
  return std::clamp(static_cast<int>(std::ceil(std::abs(sweep) / step)), 4, 512);
}

// Walks the drawn geometry of one entity in model coordinates, telling a consumer of every
// edge, every infinite line and every filled area; the consumer stops the walk by setting
// `done`. Parts whose box misses `cull` are skipped.
class Walker {
 public:
  Walker(const HostViewScene& scene, const HostViewBox& cull, double tolerance)
      : scene_(scene), g_(scene.geometry()), cull_(cull), tolerance_(tolerance) {}
  virtual ~Walker() = default;

  void walk(const HostViewEntity& e) {
    unbounded_ = e.unbounded;
    primitives(e.first, e.count, HostViewAffine(), -1, 0);
  }
  bool done = false;

 protected:
  virtual void edge(const HostViewVec& a, const HostViewVec& b) = 0;
  // The line from `a` through `b` and on; with `bothWays`, back past `a` too.
  virtual void line(const HostViewVec& a, const HostViewVec& b, bool bothWays) = 0;
  // Rings of points, filled by the odd-even rule; their edges come separately.
  virtual void area(const std::vector<HostViewVec>& points,
                    const std::vector<std::uint32_t>& ringSizes) = 0;

 private:
  bool visible(std::int32_t layer) const {
    const auto& layers = scene_.layers();
    return layer < 0 || static_cast<std::size_t>(layer) >= layers.size() || layers[layer].visible;
  }

  void primitives(std::uint32_t first, std::uint32_t count, const HostViewAffine& m,
                  std::int32_t insertLayer, int depth) {
    const std::uint32_t end =
        std::min<std::uint32_t>(first + count, static_cast<std::uint32_t>(g_.primitives.size()));
    for (std::uint32_t i = first; i < end && !done; ++i) {
      const HostViewPrimitive& p = g_.primitives[i];
      const std::int32_t layer =
          insertLayer >= 0 && p.layer == scene_.layerZero() ? insertLayer : p.layer;
      if (!visible(layer)) continue;
      primitive(p, m, layer, depth);
    }
  }

  HostViewVec point(std::uint32_t i, const HostViewAffine& m) const {
    return i < g_.points.size() ? m.map(g_.points[i]) : HostViewVec{};
  }

  void chord(const HostViewVec& a, const HostViewVec& b, bool bothWays) {
    if (unbounded_)
      line(a, b, bothWays);
    else
      edge(a, b);
  }

  // The edge after point `i` of a polyline with bulges: an arc in chords, or a line.
  void bulgedEdge(const HostViewVec& p0, const HostViewVec& p1, double bulge,
                  const HostViewAffine& m) {
    const double c = std::hypot(p1.x - p0.x, p1.y - p0.y);
    if (!(std::abs(bulge) > 1e-9) || !std::isfinite(bulge) || c == 0) {
      edge(m.map(p0), m.map(p1));
      return;
    }
    const double offset = (c / 2) * (1 - bulge * bulge) / (2 * bulge);
    const HostViewVec mid{(p0.x + p1.x) / 2, (p0.y + p1.y) / 2};
    const HostViewVec centre{mid.x - (p1.y - p0.y) / c * offset,
                             mid.y + (p1.x - p0.x) / c * offset};
    const double r = std::hypot(p0.x - centre.x, p0.y - centre.y);
    const double start = std::atan2(p0.y - centre.y, p0.x - centre.x);
    const double sweep = 4 * std::atan(bulge);
    const int n = chordsFor(r * m.scale(), sweep, tolerance_);
    HostViewVec prev = m.map(p0);
    for (int k = 1; k <= n && !done; ++k) {
      const double t = start + sweep * k / n;
      const HostViewVec next =
          k == n ? m.map(p1) : m.map(centre.x + r * std::cos(t), centre.y + r * std::sin(t));
      edge(prev, next);
      prev = next;
    }
  }

  void primitive(const HostViewPrimitive& p, const HostViewAffine& m, std::int32_t layer,
                 int depth) {
    using Kind = HostViewPrimitive::Kind;
    switch (p.kind) {
      case Kind::Polyline: {
        if (p.count == 0 || p.first + p.count > g_.points.size()) return;
        if (p.count == 1) return edge(point(p.first, m), point(p.first, m));
        const bool bulges =
            (p.flags & HostViewPrimitive::kBulges) && p.first + p.count <= g_.bulges.size();
        const std::uint32_t edges = (p.flags & HostViewPrimitive::kClosed) ? p.count : p.count - 1;
        for (std::uint32_t k = 0; k < edges && !done; ++k) {
          const HostViewVec& a = g_.points[p.first + k];
          const HostViewVec& b = g_.points[p.first + (k + 1) % p.count];
          if (bulges)
            bulgedEdge(a, b, g_.bulges[p.first + k], m);
          else
            chord(m.map(a), m.map(b), p.flags & HostViewPrimitive::kClosed);
        }
        return;
      }
      case Kind::Polygon: {
        if (p.extra + p.rings > g_.ringSizes.size()) return;
        std::vector<HostViewVec> pts;
        std::vector<std::uint32_t> sizes;
        std::uint32_t at = p.first;
        for (std::uint32_t r = 0; r < p.rings; ++r) {
          const std::uint32_t n = g_.ringSizes[p.extra + r];
          if (at + n > g_.points.size()) return;
          for (std::uint32_t k = 0; k < n; ++k) pts.push_back(point(at + k, m));
          sizes.push_back(n);
          at += n;
        }
        area(pts, sizes);
        std::size_t ring = 0;
        for (std::uint32_t n : sizes) {
          for (std::uint32_t k = 0; k < n && !done; ++k)
            edge(pts[ring + k], pts[ring + (k + 1) % n]);
          ring += n;
        }
        return;
      }
      case Kind::Ellipse: {
        if (p.first + 2 > g_.points.size() || p.extra + 3 > g_.reals.size()) return;
        const HostViewVec c = g_.points[p.first], major = g_.points[p.first + 1];
        const double ratio = g_.reals[p.extra];
        double start = g_.reals[p.extra + 1], end = g_.reals[p.extra + 2];
        if (!std::isfinite(start) || !std::isfinite(end) || !std::isfinite(ratio)) return;
        while (end <= start) end += 2 * std::numbers::pi;
        const HostViewVec minor{-major.y * ratio, major.x * ratio};
        const double radius = std::hypot(major.x, major.y) * std::max(1.0, std::abs(ratio));
        const int n = chordsFor(radius * m.scale(), end - start, tolerance_);
        auto at = [&](double t) {
          return m.map(c.x + major.x * std::cos(t) + minor.x * std::sin(t),
                       c.y + major.y * std::cos(t) + minor.y * std::sin(t));
        };
        HostViewVec prev = at(start);
        for (int k = 1; k <= n && !done; ++k) {
          const HostViewVec next = at(start + (end - start) * k / n);
          edge(prev, next);
          prev = next;
        }
        return;
      }
      case Kind::Point:
        if (p.first < g_.points.size()) edge(point(p.first, m), point(p.first, m));
        return;
      case Kind::Text: {
        if (p.extra >= g_.texts.size()) return;
        const HostViewText& t = g_.texts[p.extra];
        const double length =
            t.advance > 0 ? t.advance : t.height * t.widthFactor * 0.6 * double(t.text.size());
        const HostViewVec d{std::cos(t.direction), std::sin(t.direction)};
        const HostViewVec o = t.origin;
        const HostViewVec corners[4] = {
            m.map(o), m.map(o.x + d.x * length, o.y + d.y * length),
            m.map(o.x + d.x * length - d.y * t.height, o.y + d.y * length + d.x * t.height),
            m.map(o.x - d.y * t.height, o.y + d.x * t.height)};
        area({corners, corners + 4}, {4});
        for (int k = 0; k < 4 && !done; ++k) edge(corners[k], corners[(k + 1) % 4]);
        return;
      }
      case Kind::Insert: {
        if (p.extra >= g_.inserts.size() || depth >= kMaxDepth) return;
        const HostViewInsert& ins = g_.inserts[p.extra];
        if (ins.block < 0 || static_cast<std::size_t>(ins.block) >= scene_.blocks().size()) return;
        const HostViewBlock& block = scene_.blocks()[ins.block];
        std::uint64_t cells = 0;
        for (std::uint32_t i = 0; i < ins.columns && !done; ++i) {
          for (std::uint32_t j = 0; j < ins.rows && !done; ++j) {
            if (++cells > kMaxCells) return;
            HostViewAffine cell = ins.transform;
            cell.tx += i * ins.columnStep.x + j * ins.rowStep.x;
            cell.ty += i * ins.columnStep.y + j * ins.rowStep.y;
            const HostViewAffine placed = m * cell;
            if (!placed.map(block.extents).intersects(cull_)) continue;
            primitives(block.first, block.count, placed, layer, depth + 1);
          }
        }
        return;
      }
    }
  }

  const HostViewScene& scene_;
  const HostViewGeometry& g_;
  HostViewBox cull_;
  double tolerance_;
  bool unbounded_ = false;
};

// The distance from a point to what the walk tells of.
class DistanceWalker : public Walker {
 public:
  DistanceWalker(const HostViewScene& scene, const HostViewVec& at, double tolerance)
      : Walker(scene, around(at, tolerance), tolerance / 4), at_(at) {}
  double best = kInf;

 protected:
  void edge(const HostViewVec& a, const HostViewVec& b) override {
    best = std::min(best, segmentDistance(at_, a, b));
    done = best == 0;
  }
  void line(const HostViewVec& a, const HostViewVec& b, bool bothWays) override {
    const HostViewVec ab = sub(b, a), ap = sub(at_, a);
    const double len = std::hypot(ab.x, ab.y);
    const bool behind = !bothWays && ap.x * ab.x + ap.y * ab.y < 0;
    best =
        std::min(best, len > 0 && !behind ? std::abs(cross(ab, ap)) / len : std::hypot(ap.x, ap.y));
  }
  void area(const std::vector<HostViewVec>& pts, const std::vector<std::uint32_t>& sizes) override {
    const bool inside = insideRings(pts, sizes, at_);
    if (inside) best = 0, done = true;
  }

 private:
  static HostViewBox around(const HostViewVec& p, double r) {
    HostViewBox box;
    box.add(p.x - r, p.y - r);
    box.add(p.x + r, p.y + r);
    return box;
  }
  HostViewVec at_;
};

// Whether what the walk tells of meets a window.
class CrossingWalker : public Walker {
 public:
  CrossingWalker(const HostViewScene& scene, const HostViewBox& window, double tolerance)
      : Walker(scene, window, tolerance), window_(window) {}
  bool meets = false;

 protected:
  void edge(const HostViewVec& a, const HostViewVec& b) override {
    done = meets = segmentMeets(a, b, window_);
  }
  void line(const HostViewVec& a, const HostViewVec& b, bool bothWays) override {
    const HostViewVec d = sub(b, a);
    if (!bothWays) {
      // A ray: a segment long enough to pass every corner of the window.
      const double len = std::hypot(d.x, d.y);
      if (!(len > 0)) return;
      const double reach =
          std::hypot(std::max(std::abs(window_.minX - a.x), std::abs(window_.maxX - a.x)),
                     std::max(std::abs(window_.minY - a.y), std::abs(window_.maxY - a.y)));
      const double t = (reach + 1) / len;
      done = meets = segmentMeets(a, {a.x + d.x * t, a.y + d.y * t}, window_);
      return;
    }
    // Meets unless every corner lies strictly on one side.
    int below = 0, above = 0;
    for (const HostViewVec& c :
         {HostViewVec{window_.minX, window_.minY}, HostViewVec{window_.maxX, window_.minY},
          HostViewVec{window_.minX, window_.maxY}, HostViewVec{window_.maxX, window_.maxY}}) {
      const double s = cross(d, sub(c, a));
      below += s <= 0, above += s >= 0;
    }
    done = meets = below > 0 && above > 0;
  }
  void area(const std::vector<HostViewVec>& pts, const std::vector<std::uint32_t>& sizes) override {
    // The window wholly inside the area: its centre is inside and no edge crosses it (the
    // edges are told separately).
    const HostViewVec c{(window_.minX + window_.maxX) / 2, (window_.minY + window_.maxY) / 2};
    const bool inside = insideRings(pts, sizes, c);
    if (inside) done = meets = true;
  }

 private:
  HostViewBox window_;
};

bool drawn(const HostViewScene& scene, const HostViewEntity& e) {
  if (!e.alive || (e.extents.empty() && !e.unbounded)) return false;
  const auto& layers = scene.layers();
  return e.layer < 0 || static_cast<std::size_t>(e.layer) >= layers.size() ||
         layers[e.layer].visible;
}
}  // namespace

double HostViewPicker::distance(std::uint32_t slot, const HostViewVec& at, double tolerance) const {
  if (slot >= scene_.entities().size()) return kInf;
  const HostViewEntity& e = scene_.entities()[slot];
  if (!drawn(scene_, e)) return kInf;
  DistanceWalker walker(scene_, at, tolerance);
  walker.walk(e);
  return walker.best;
}

std::int64_t HostViewPicker::pick(const HostViewVec& at, double tolerance) const {
  HostViewBox box;
  box.add(at.x - tolerance, at.y - tolerance);
  box.add(at.x + tolerance, at.y + tolerance);
  std::vector<std::uint32_t> candidates;
  scene_.index().query(box, candidates);
  std::sort(candidates.begin(), candidates.end());
  std::int64_t best = -1;
  double bestDistance = kInf;
  for (std::uint32_t slot : candidates) {
    const double d = distance(slot, at, tolerance);
    // On a tie the later entity wins: it is drawn over the earlier one.
    if (d <= tolerance && d <= bestDistance) best = slot, bestDistance = d;
  }
  return best;
}

std::vector<std::uint32_t> HostViewPicker::select(const HostViewBox& window, bool crossing,
                                                  double tolerance) const {
  std::vector<std::uint32_t> candidates, out;
  if (window.empty()) return out;
  scene_.index().query(window, candidates);
  std::sort(candidates.begin(), candidates.end());
  for (std::uint32_t slot : candidates) {
    if (slot >= scene_.entities().size()) continue;
    const HostViewEntity& e = scene_.entities()[slot];
    if (!drawn(scene_, e)) continue;
    const bool inside = !e.unbounded && e.extents.minX >= window.minX &&
                        e.extents.maxX <= window.maxX && e.extents.minY >= window.minY &&
                        e.extents.maxY <= window.maxY;
    if (inside) {
      out.push_back(slot);
    } else if (crossing) {
      CrossingWalker walker(scene_, window, tolerance);
      walker.walk(e);
      if (walker.meets) out.push_back(slot);
    }
  }
  return out;
}
