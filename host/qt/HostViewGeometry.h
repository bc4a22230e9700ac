#pragma once

#include <QString>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

// The drawn form of a drawing, shared by every entity and every block of one view: flat arrays
// of points and primitives that an entity or a block addresses by range. Values, no ownership
// beyond the arrays; the scene appends to them and compacts them, the renderer only reads.

// A point or a vector in drawing units (model space, or a block's own coordinates).
struct HostViewVec {
  double x = 0, y = 0;
};

// An axis-aligned box; empty until a point is added.
struct HostViewBox {
  double minX = std::numeric_limits<double>::max();
  double minY = std::numeric_limits<double>::max();
  double maxX = std::numeric_limits<double>::lowest();
  double maxY = std::numeric_limits<double>::lowest();

  bool empty() const { return minX > maxX || minY > maxY; }
  void add(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    minX = std::min(minX, x), minY = std::min(minY, y);
    maxX = std::max(maxX, x), maxY = std::max(maxY, y);
  }
  void add(const HostViewBox& b) {
    if (b.empty()) return;
    add(b.minX, b.minY), add(b.maxX, b.maxY);
  }
  bool intersects(const HostViewBox& b) const {
    return !empty() && !b.empty() && minX <= b.maxX && b.minX <= maxX && minY <= b.maxY &&
           b.minY <= maxY;
  }
  // The part of the segment from (x, y) along (dx, dy) that lies in the box, as the
  // parameters t0 <= t1 within [0, 1] of its ends (Liang-Barsky); false when none does.
  bool clipSegment(double x, double y, double dx, double dy, double& t0, double& t1) const {
    t0 = 0, t1 = 1;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x - minX, maxX - x, y - minY, maxY - y};
    for (int i = 0; i < 4; ++i) {
      if (p[i] == 0) {
        if (q[i] < 0) return false;
        continue;
      }
      const double r = q[i] / p[i];
      if (p[i] < 0)
        t0 = std::max(t0, r);
      else
        t1 = std::min(t1, r);
      if (t0 > t1) return false;
    }
    return true;
  }
  double width() const { return empty() ? 0 : maxX - minX; }
  double height() const { return empty() ? 0 : maxY - minY; }
};

// x' = a x + c y + tx, y' = b x + d y + ty: a block's coordinates into its container's.
struct HostViewAffine {
  double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

  HostViewVec map(double x, double y) const { return {a * x + c * y + tx, b * x + d * y + ty}; }
  HostViewVec map(const HostViewVec& p) const { return map(p.x, p.y); }
  // This after `inner`: first inner, then this.
  HostViewAffine operator*(const HostViewAffine& inner) const {
    return {a * inner.a + c * inner.b,        b * inner.a + d * inner.b,
            a * inner.c + c * inner.d,        b * inner.c + d * inner.d,
            a * inner.tx + c * inner.ty + tx, b * inner.tx + d * inner.ty + ty};
  }
  // The box around the mapped corners of `box`.
  HostViewBox map(const HostViewBox& box) const {
    HostViewBox out;
    if (box.empty()) return out;
    for (const HostViewVec& p : {map(box.minX, box.minY), map(box.maxX, box.minY),
                                 map(box.minX, box.maxY), map(box.maxX, box.maxY)})
      out.add(p.x, p.y);
    return out;
  }
  // How much a unit length grows at most (the larger singular value, bounded above cheaply).
  double scale() const { return std::sqrt(std::max(a * a + b * b, c * c + d * d)); }
};

// How a primitive is coloured, as stored: an RGB in the low 24 bits with the high byte 0, or
// one of the rules below resolved when painted.
namespace HostViewColour {
constexpr std::uint32_t kByLayer = 0x01000000u;     // the colour of the (effective) layer
constexpr std::uint32_t kByBlock = 0x02000000u;     // the colour of the insert holding it
constexpr std::uint32_t kForeground = 0x03000000u;  // colour 7: white on dark, black on light
constexpr std::uint32_t kBackground = 0x04000000u;  // a wipeout: hides what was drawn before it
inline bool isRgb(std::uint32_t c) {
  return (c & 0xFF000000u) == 0;
}
}  // namespace HostViewColour

// A linetype reference as stored in HostViewPrimitive::linetype: an index into the scene's
// linetypes, or one of these.
namespace HostViewLinetype {
constexpr std::int32_t kContinuous = -1;
constexpr std::int32_t kByLayer = -2;
constexpr std::int32_t kByBlock = -3;
}  // namespace HostViewLinetype

// One drawn piece. Its points are geometry.points[first, first + count).
struct HostViewPrimitive {
  enum class Kind : std::uint8_t {
    // count points joined in order (closed: back to the first). With kBulges, bulges[first +
    // i] is the bulge of the edge after point i (tan of a quarter of its arc's angle, counter-
    // clockwise when positive); with kWidths, widths[first + i] is {start, end} width of that
    // edge (drawn filled when wide enough to see).
    Polyline,
    // A filled area: `rings` rings, their point counts at geometry.ringSizes[extra, extra +
    // rings), filled by the odd-even rule. Its outline is drawn too.
    Polygon,
    // points[first] = centre, points[first + 1] = major axis end relative to the centre;
    // geometry.reals[extra] = minor/major ratio (1 for a circle or arc), reals[extra + 1] and
    // reals[extra + 2] = start and end parameter in radians (0 and 2 pi for a whole one),
    // counter-clockwise from the major axis. Tessellated when painted, by its size on screen.
    Ellipse,
    // points[first]: drawn as one dot.
    Point,
    // geometry.texts[extra]; points unused.
    Text,
    // geometry.inserts[extra]; points unused.
    Insert,
  };
  static constexpr std::uint8_t kClosed = 1, kBulges = 2, kWidths = 4;

  Kind kind = Kind::Polyline;
  std::uint8_t flags = 0;
  std::uint16_t rings = 0;
  std::uint32_t colour = HostViewColour::kByLayer;
  // Index of the layer in the scene; inside a block, the layer "0" is replaced by the layer
  // of the insert that holds it.
  std::int32_t layer = 0;
  std::int32_t linetype = HostViewLinetype::kByLayer;
  float linetypeScale = 1.0f;  // the entity's own scale; the drawing's LTSCALE multiplies it
  std::uint32_t first = 0, count = 0;
  std::uint32_t extra = 0;
};

// A line of text laid out: `text` drawn from `origin` (the left end of its baseline, alignment
// already applied) along `direction` radians, `height` the cap height in drawing units,
// `widthFactor` stretching it along the baseline, `oblique` radians of slant. `advance` is the
// laid-out length along the baseline in drawing units (for extents and when too small to draw
// letters). `family` is the font family to draw with (empty: the default sans serif).
struct HostViewText {
  QString text;
  HostViewVec origin;
  double direction = 0;
  double height = 1;
  double widthFactor = 1;
  double oblique = 0;
  double advance = 0;
  QString family;
};

// An insert of a block, or each cell of its columns-by-rows array: `transform` places the
// block's coordinates for the cell (0, 0); cell (i, j) adds i * columnStep + j * rowStep.
struct HostViewInsert {
  std::int32_t block = -1;  // index into the scene's blocks
  HostViewAffine transform;
  std::uint32_t columns = 1, rows = 1;
  HostViewVec columnStep, rowStep;
};

// The arrays themselves.
struct HostViewGeometry {
  std::vector<HostViewVec> points;
  std::vector<double> bulges;       // parallel to points where a primitive has kBulges
  std::vector<HostViewVec> widths;  // parallel to points where a primitive has kWidths
  std::vector<double> reals;
  std::vector<std::uint32_t> ringSizes;
  std::vector<HostViewText> texts;
  std::vector<HostViewInsert> inserts;
  std::vector<HostViewPrimitive> primitives;

  void clear() { *this = HostViewGeometry(); }
};
