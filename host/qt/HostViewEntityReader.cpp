#include "HostViewEntityReader.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "DxfObject.h"
#include "HostQtText.h"
#include "HostViewHatch.h"
#include "HostViewPalette.h"
#include "HostViewScene.h"
#include "HostViewSpline.h"
#include "HostViewTables.h"
#include "HostViewTags.h"
#include "OdDbEntity.h"

using HostViewTags::integerOr;
using HostViewTags::Plane;
using HostViewTags::readReals;
using HostViewTags::realOr;
using Kind = HostViewPrimitive::Kind;

namespace {
constexpr double kPi = std::numbers::pi;
constexpr double kDegree = kPi / 180.0;

// A plane whose normal leans away from the drawing's z axis shows circles as ellipses that
// the primitives' axis-aligned form cannot hold: such curves are flattened when read.
bool tilted(const Plane& p) {
  return std::abs(p.n[2]) < 1.0 - 1e-9;
}
// A plane seen from below mirrors what lies in it.
bool mirrored(const Plane& p) {
  return p.ax[0] * p.ay[1] - p.ay[0] * p.ax[1] < 0;
}
HostViewVec linear(const Plane& p, double x, double y) {
  return {x * p.ax[0] + y * p.ay[0], x * p.ax[1] + y * p.ay[1]};
}
// Counter-clockwise sweep from `start` to `end`, in (0, 2 pi].
double sweepOf(double start, double end) {
  double sweep = std::fmod(end - start, 2 * kPi);
  if (sweep <= 1e-12) sweep += 2 * kPi;
  return sweep;
}
// Adds to `box` the curve c + m cos t + n sin t for t from `start` to `end` (end >= start): its
// ends and the parameters where x or y turns.
void addArc(HostViewBox& box, const HostViewVec& c, const HostViewVec& m, const HostViewVec& n,
            double start, double end) {
  auto add = [&](double t) {
    box.add(c.x + m.x * std::cos(t) + n.x * std::sin(t),
            c.y + m.y * std::cos(t) + n.y * std::sin(t));
  };
  add(start), add(end);
  for (const double turn : {std::atan2(n.x, m.x), std::atan2(n.y, m.y)}) {
    for (double t = turn; t < turn + 2 * kPi; t += kPi) {
      const double at = start + std::fmod(std::fmod(t - start, 2 * kPi) + 2 * kPi, 2 * kPi);
      if (at <= end) add(at);
    }
  }
}

std::string typeName(const DxfObject& tags) {
  const std::string_view type = tags.type();
  return type.empty() ? std::string("(no type)") : std::string(type);
}
}  // namespace

HostViewEntityReader::HostViewEntityReader(HostViewTables& tables,
                                           std::vector<HostViewLayer>& layers,
                                           HostViewGeometry& geometry,
                                           std::map<std::string, std::size_t>& unsupported)
    : tables_(tables), layers_(layers), g_(geometry), unsupported_(unsupported) {}

bool HostViewEntityReader::read(const OdDbEntity& entity, bool inBlock) {
  unbounded_ = false;
  look_ = HostViewPrimitive();
  const DxfObject& tags = entity.dxf();
  if (integerOr(tags, 60, 0) == 1) return true;
  readLook(tags);
  if (readKind(entity, tags, inBlock)) return true;
  ++unsupported_[typeName(tags)];
  return false;
}

void HostViewEntityReader::readLook(const DxfObject& tags) {
  look_ = HostViewPrimitive();
  const std::size_t layer = tags.find(8);
  look_.layer =
      tables_.layer(layer == DxfObject::npos ? OdString(L"0") : tags.text(layer), layers_);
  look_.colour = HostViewPalette::entityColour(integerOr(tags, 62, 256), integerOr(tags, 420, -1));
  const std::size_t linetype = tags.find(6);
  look_.linetype = linetype == DxfObject::npos ? HostViewLinetype::kByLayer
                                               : tables_.linetype(tags.text(linetype));
  const double scale = realOr(tags, 48, 1.0);
  look_.linetypeScale = static_cast<float>(scale > 0 ? scale : 1.0);
}

HostViewPrimitive& HostViewEntityReader::begin(Kind kind) {
  HostViewPrimitive& p = g_.primitives.emplace_back(look_);
  p.kind = kind;
  p.first = static_cast<std::uint32_t>(g_.points.size());
  return p;
}

void HostViewEntityReader::polyline(const std::vector<HostViewVec>& points, bool closed) {
  if (points.size() < 2) return;
  HostViewPrimitive& p = begin(Kind::Polyline);
  g_.points.insert(g_.points.end(), points.begin(), points.end());
  p.count = static_cast<std::uint32_t>(points.size());
  if (closed) p.flags |= HostViewPrimitive::kClosed;
}

void HostViewEntityReader::ellipse(const HostViewVec& centre, const HostViewVec& major,
                                   double ratio, double start, double end) {
  HostViewPrimitive& p = begin(Kind::Ellipse);
  g_.points.push_back(centre);
  g_.points.push_back(major);
  p.count = 2;
  p.extra = static_cast<std::uint32_t>(g_.reals.size());
  g_.reals.insert(g_.reals.end(), {ratio, start, end});
}

// A circle or an arc of the entity's plane, `start` and `end` in radians.
bool HostViewEntityReader::planarArc(const DxfObject& tags, double cx, double cy, double r,
                                     double start, double end) {
  if (!(r > 0)) return false;
  const Plane plane = Plane::of(tags, 30);
  const double sweep = sweepOf(start, end);
  const bool whole = sweep >= 2 * kPi - 1e-12;
  if (tilted(plane)) {
    std::vector<HostViewVec> points;
    const int steps = 128;
    for (int i = 0; i <= steps; ++i) {
      const double t = start + sweep * i / steps;
      points.push_back(plane.map(cx + r * std::cos(t), cy + r * std::sin(t)));
    }
    polyline(points, whole);
    return true;
  }
  const HostViewVec centre = plane.map(cx, cy);
  const HostViewVec major = linear(plane, r, 0);
  if (whole)
    ellipse(centre, major, 1.0, 0, 2 * kPi);
  else if (mirrored(plane))
    ellipse(centre, major, 1.0, -(start + sweep), -start);  // seen from below: clockwise
  else
    ellipse(centre, major, 1.0, start, start + sweep);
  return true;
}

bool HostViewEntityReader::readKind(const OdDbEntity& entity, const DxfObject& tags, bool inBlock) {
  const std::string_view type = tags.type();
  if (type == "LINE" || type == "3DLINE") {
    double v[4];
    if (!readReals(tags, {10, 20, 11, 21}, v)) return false;
    polyline({{v[0], v[1]}, {v[2], v[3]}}, false);
    return true;
  }
  if (type == "XLINE" || type == "RAY") {
    double v[4];
    if (!readReals(tags, {10, 20, 11, 21}, v)) return false;
    const double length = std::hypot(v[2], v[3]);
    if (!(length > 0)) return false;  // seen from above it is a point: nothing to draw
    polyline({{v[0], v[1]}, {v[0] + v[2] / length, v[1] + v[3] / length}}, type == "XLINE");
    unbounded_ = true;
    return true;
  }
  if (type == "POINT") {
    double v[2];
    if (!readReals(tags, {10, 20}, v)) return false;
    HostViewPrimitive& p = begin(Kind::Point);
    g_.points.push_back({v[0], v[1]});
    p.count = 1;
    return true;
  }
  if (type == "CIRCLE") {
    double v[3];
    return readReals(tags, {10, 20, 40}, v) && planarArc(tags, v[0], v[1], v[2], 0, 2 * kPi);
  }
  if (type == "ARC") {
    double v[5];
    return readReals(tags, {10, 20, 40, 50, 51}, v) &&
           planarArc(tags, v[0], v[1], v[2], v[3] * kDegree, v[4] * kDegree);
  }
  if (type == "ELLIPSE") {
    double v[5];
    if (!readReals(tags, {10, 20, 11, 21, 40}, v)) return false;
    const double mz = realOr(tags, 31, 0.0);
    double start = realOr(tags, 41, 0.0), end = realOr(tags, 42, 2 * kPi);
    const Plane plane = Plane::of(tags, -1);
    const double ratio = std::abs(v[4]);
    if (!(ratio > 0) || !(std::hypot(v[2], v[3], mz) > 0)) return false;
    const double sweep = sweepOf(start, end);
    // The minor axis is the normal crossed with the major axis.
    const double* n = plane.n;
    const double minor[3] = {ratio * (n[1] * mz - n[2] * v[3]), ratio * (n[2] * v[2] - n[0] * mz),
                             0};
    if (tilted(plane) || std::abs(mz) > 1e-9 * std::hypot(v[2], v[3])) {
      std::vector<HostViewVec> points;
      const int steps = 128;
      for (int i = 0; i <= steps; ++i) {
        const double t = start + sweep * i / steps;
        points.push_back({v[0] + v[2] * std::cos(t) + minor[0] * std::sin(t),
                          v[1] + v[3] * std::cos(t) + minor[1] * std::sin(t)});
      }
      polyline(points, sweep >= 2 * kPi - 1e-12);
      return true;
    }
    if (n[2] < 0) {  // seen from below
      const double s = start;
      start = -(s + sweep), end = -s;
    } else {
      end = start + sweep;
    }
    ellipse({v[0], v[1]}, {v[2], v[3]}, ratio, start, end);
    return true;
  }
  if (type == "LWPOLYLINE") return lwpolyline(tags);
  if (type == "POLYLINE") return polylineEntity(entity, tags);
  if (type == "SPLINE") {
    const std::vector<HostViewVec> points = HostViewSpline::points(tags);
    if (points.size() < 2) return false;
    polyline(points, false);
    return true;
  }
  if (type == "SOLID" || type == "TRACE" || type == "3DFACE") {
    double c[6];
    if (!readReals(tags, {10, 20, 11, 21, 12, 22}, c)) return false;
    const double x4 = realOr(tags, 13, c[4]), y4 = realOr(tags, 23, c[5]);
    if (type == "3DFACE") {
      // World points; flag bits 1, 2, 4, 8 hide the edges after corners 1 to 4.
      const HostViewVec q[4] = {{c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {x4, y4}};
      const long long hidden = integerOr(tags, 70, 0);
      if ((hidden & 15) == 0) {
        polyline({q[0], q[1], q[2], q[3]}, true);
      } else {
        for (int i = 0; i < 4; ++i)
          if (!(hidden & (1 << i))) polyline({q[i], q[(i + 1) % 4]}, false);
      }
      return true;
    }
    // Corners 3 and 4 are stored crosswise: the outline runs 1, 2, 4, 3.
    const Plane plane = Plane::of(tags, 30);
    HostViewPrimitive& p = begin(Kind::Polygon);
    for (const HostViewVec& q : {HostViewVec{c[0], c[1]}, HostViewVec{c[2], c[3]},
                                 HostViewVec{x4, y4}, HostViewVec{c[4], c[5]}})
      g_.points.push_back(plane.map(q.x, q.y));
    p.count = 4;
    p.rings = 1;
    p.extra = static_cast<std::uint32_t>(g_.ringSizes.size());
    g_.ringSizes.push_back(4);
    return true;
  }
  if (type == "HATCH") return hatch(tags);
  if (type == "TEXT" || type == "ATTRIB") return text(tags, false, false);
  if (type == "ATTDEF") return inBlock || text(tags, false, true);
  if (type == "MTEXT") return text(tags, true, false);
  if (type == "INSERT") return insert(entity, tags);
  if (type == "DIMENSION") {
    const std::size_t name = tags.find(2);
    const std::int32_t block = name == DxfObject::npos ? -1 : tables_.block(tags.text(name));
    if (block < 0) return false;
    HostViewPrimitive& p = begin(Kind::Insert);
    p.extra = static_cast<std::uint32_t>(g_.inserts.size());
    HostViewInsert& in = g_.inserts.emplace_back();
    in.block = block;
    // The block holds the dimension as drawn, in world coordinates, moved by the insertion
    // point of a copied dimension (12, in its own plane) when it has one.
    const HostViewVec base = tables_.blocks()[static_cast<std::size_t>(block)].base;
    double moved[2] = {0, 0};
    HostViewVec shift{0, 0};
    if (readReals(tags, {12, 22}, moved)) shift = Plane::of(tags, 32).map(moved[0], moved[1]);
    in.transform.tx = base.x + shift.x, in.transform.ty = base.y + shift.y;
    return true;
  }
  if (type == "ACAD_TABLE") {
    // A table shows the anonymous block of its cells, placed at its insertion point along its
    // horizontal direction.
    const std::size_t name = tags.find(2);
    const std::int32_t block = name == DxfObject::npos ? -1 : tables_.block(tags.text(name));
    double at[2];
    if (block < 0 || !readReals(tags, {10, 20}, at)) return false;
    const double angle = std::atan2(realOr(tags, 21, 0.0), realOr(tags, 11, 1.0));
    HostViewPrimitive& p = begin(Kind::Insert);
    p.extra = static_cast<std::uint32_t>(g_.inserts.size());
    HostViewInsert& in = g_.inserts.emplace_back();
    in.block = block;
    const double c = std::cos(angle), s = std::sin(angle);
    in.transform = {c, s, -s, c, at[0], at[1]};
    return true;
  }
  if (type == "LEADER") return leader(tags);
  if (type == "WIPEOUT") return wipeout(tags);
  return false;
}

bool HostViewEntityReader::lwpolyline(const DxfObject& tags) {
  std::vector<HostViewVec> points, widths;
  std::vector<double> bulges;
  const double constant = realOr(tags, 43, 0.0);
  bool wide = constant > 0;
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const int code = tags.code(i);
    if (code == 10) {
      points.push_back({tags.real(i), 0});
      bulges.push_back(0);
      widths.push_back({constant, constant});
    } else if (points.empty()) {
      continue;
    } else if (code == 20) {
      points.back().y = tags.real(i);
    } else if (code == 42) {
      bulges.back() = tags.real(i);
    } else if (code == 40 || code == 41) {
      const double w = tags.real(i);
      if (std::isfinite(w) && w > 0)
        (code == 40 ? widths.back().x : widths.back().y) = w, wide = true;
    }
  }
  if (points.empty()) return false;
  const Plane plane = Plane::of(tags, 38);
  const bool flip = mirrored(plane);
  bool bulged = false;
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i] = plane.map(points[i].x, points[i].y);
    if (!std::isfinite(bulges[i])) bulges[i] = 0;
    if (flip) bulges[i] = -bulges[i];
    bulged = bulged || bulges[i] != 0;
  }
  if (points.size() == 1) {  // one vertex: a dot
    HostViewPrimitive& p = begin(Kind::Point);
    g_.points.push_back(points[0]);
    p.count = 1;
    return true;
  }
  HostViewPrimitive& p = begin(Kind::Polyline);
  p.count = static_cast<std::uint32_t>(points.size());
  if (integerOr(tags, 70, 0) & 1) p.flags |= HostViewPrimitive::kClosed;
  g_.points.insert(g_.points.end(), points.begin(), points.end());
  if (bulged) {
    p.flags |= HostViewPrimitive::kBulges;
    g_.bulges.resize(p.first);
    g_.bulges.insert(g_.bulges.end(), bulges.begin(), bulges.end());
  }
  if (wide) {
    p.flags |= HostViewPrimitive::kWidths;
    g_.widths.resize(p.first);
    g_.widths.insert(g_.widths.end(), widths.begin(), widths.end());
  }
  return true;
}

bool HostViewEntityReader::polylineEntity(const OdDbEntity& entity, const DxfObject& tags) {
  const long long flags = integerOr(tags, 70, 0);
  struct Vertex {
    HostViewVec at;
    double bulge = 0;
    HostViewVec width;
    long long flags = 0;
    long long face[4] = {0, 0, 0, 0};
  };
  std::vector<Vertex> vertices;
  const double startWidth = realOr(tags, 40, 0.0), endWidth = realOr(tags, 41, 0.0);
  for (const OdDbObjectId& id : entity.subEntityIds()) {
    OdDbObjectPtr sub = id.openObject();
    if (!sub) continue;
    const DxfObject& vt = sub->dxf();
    if (vt.type() != "VERTEX") continue;
    Vertex v;
    v.flags = integerOr(vt, 70, 0);
    v.at = {realOr(vt, 10, 0.0), realOr(vt, 20, 0.0)};
    v.bulge = realOr(vt, 42, 0.0);
    v.width = {realOr(vt, 40, startWidth), realOr(vt, 41, endWidth)};
    for (int k = 0; k < 4; ++k) v.face[k] = integerOr(vt, 71 + k, 0);
    vertices.push_back(v);
  }
  if (flags & 64) {
    // A polyface mesh: position vertices, then faces naming them from 1; a negative index
    // hides the edge that starts at it.
    std::vector<HostViewVec> positions;
    for (const Vertex& v : vertices)
      if ((v.flags & 64) || !(v.flags & 128)) positions.push_back(v.at);
    for (const Vertex& v : vertices) {
      if ((v.flags & 64) || !(v.flags & 128)) continue;
      int corners = 0;
      while (corners < 4 && v.face[corners] != 0) ++corners;
      for (int k = 0; k < corners; ++k) {
        const long long a = v.face[k], b = v.face[(k + 1) % corners];
        if (a < 0) continue;
        const auto ia = static_cast<std::size_t>(a - 1),
                   ib = static_cast<std::size_t>(std::llabs(b) - 1);
        if (ia < positions.size() && ib < positions.size())
          polyline({positions[ia], positions[ib]}, false);
      }
    }
    return true;
  }
  if (flags & 16) {
    // A polygon mesh: M rows of N vertices, each row and each column a line.
    const long long m = integerOr(tags, 71, 0), n = integerOr(tags, 72, 0);
    if (m < 1 || n < 1 || static_cast<std::size_t>(m * n) > vertices.size()) return false;
    for (long long i = 0; i < m; ++i) {
      std::vector<HostViewVec> row;
      for (long long j = 0; j < n; ++j)
        row.push_back(vertices[static_cast<std::size_t>(i * n + j)].at);
      polyline(row, (flags & 32) != 0);
    }
    for (long long j = 0; j < n; ++j) {
      std::vector<HostViewVec> column;
      for (long long i = 0; i < m; ++i)
        column.push_back(vertices[static_cast<std::size_t>(i * n + j)].at);
      polyline(column, (flags & 1) != 0);
    }
    return true;
  }
  // A spline-fit polyline keeps its frame's vertices too: only the curve is drawn.
  std::erase_if(vertices, [](const Vertex& v) { return (v.flags & 16) != 0; });
  if (vertices.empty()) return false;
  // A 3D polyline's vertices are the drawing's own points; a 2D one's lie in its plane.
  const Plane plane = (flags & 8) ? Plane() : Plane::of(tags, 30);
  const bool flip = mirrored(plane);
  HostViewPrimitive& p = begin(Kind::Polyline);
  p.count = static_cast<std::uint32_t>(vertices.size());
  if (flags & 1) p.flags |= HostViewPrimitive::kClosed;
  bool bulged = false, wide = false;
  for (const Vertex& v : vertices) {
    g_.points.push_back(plane.map(v.at.x, v.at.y));
    bulged = bulged || (v.bulge != 0 && !(flags & 8));
    wide = wide || v.width.x > 0 || v.width.y > 0;
  }
  if (bulged) {
    p.flags |= HostViewPrimitive::kBulges;
    g_.bulges.resize(p.first);
    for (const Vertex& v : vertices) g_.bulges.push_back(flip ? -v.bulge : v.bulge);
  }
  if (wide) {
    p.flags |= HostViewPrimitive::kWidths;
    g_.widths.resize(p.first);
    for (const Vertex& v : vertices) g_.widths.push_back(v.width);
  }
  return true;
}

bool HostViewEntityReader::hatch(const DxfObject& tags) {
  HostViewHatch::Boundary boundary;
  if (!HostViewHatch::read(tags, boundary)) return false;
  const Plane plane = Plane::of(tags, 30);
  if (boundary.solid) {
    HostViewPrimitive& p = begin(Kind::Polygon);
    p.extra = static_cast<std::uint32_t>(g_.ringSizes.size());
    for (const auto& ring : boundary.rings) {
      if (ring.size() < 3 || p.rings == 0xFFFF) continue;
      for (const HostViewVec& q : ring) g_.points.push_back(plane.map(q.x, q.y));
      g_.ringSizes.push_back(static_cast<std::uint32_t>(ring.size()));
      p.count += static_cast<std::uint32_t>(ring.size());
      ++p.rings;
    }
    if (p.rings == 0) g_.primitives.pop_back();
    return true;
  }
  for (const auto& ring : boundary.rings) {
    std::vector<HostViewVec> mapped;
    for (const HostViewVec& q : ring) mapped.push_back(plane.map(q.x, q.y));
    polyline(mapped, true);
  }
  return true;
}

bool HostViewEntityReader::text(const DxfObject& tags, bool mtext, bool showTag) {
  // An attribute or its definition flagged invisible (70 bit 1) shows nothing.
  if (!mtext && tags.type() != "TEXT" && (integerOr(tags, 70, 0) & 1)) return true;
  const std::size_t styleAt = tags.find(7);
  HostViewTextStyle style =
      tables_.style(styleAt == DxfObject::npos ? OdString(L"STANDARD") : tags.text(styleAt));
  // A style's fixed height is what new texts were given; a text that stores its own height is
  // drawn at that height.
  if (tags.find(40) != DxfObject::npos) style.fixedHeight = 0;
  std::vector<HostViewText> lines = mtext ? layout_.mtext(tags, style) : layout_.text(tags, style);
  if (showTag) {
    const std::size_t tag = tags.find(2);
    if (tag == DxfObject::npos) return false;
    for (HostViewText& line : lines) {
      line.text = toQString(tags.text(tag));
      line.advance = layout_.advance(line.text, line.family) * line.height * line.widthFactor;
    }
  }
  // MTEXT is placed in world coordinates; TEXT and attributes in their own plane.
  const Plane plane = mtext ? Plane() : Plane::of(tags, 30);
  for (HostViewText& line : lines) {
    if (line.text.isEmpty() || !(line.height > 0)) continue;
    if (!plane.isWorld()) {
      line.origin = plane.map(line.origin.x, line.origin.y);
      const HostViewVec d = linear(plane, std::cos(line.direction), std::sin(line.direction));
      line.direction = std::atan2(d.y, d.x);
    }
    HostViewPrimitive& p = begin(Kind::Text);
    p.extra = static_cast<std::uint32_t>(g_.texts.size());
    g_.texts.push_back(std::move(line));
  }
  return true;
}

bool HostViewEntityReader::insert(const OdDbEntity& entity, const DxfObject& tags) {
  const std::size_t name = tags.find(2);
  const std::int32_t block = name == DxfObject::npos ? -1 : tables_.block(tags.text(name));
  if (block < 0 || tables_.blocks()[static_cast<std::size_t>(block)].layout) return false;
  const Plane plane = Plane::of(tags, 30);
  const double x = realOr(tags, 10, 0.0), y = realOr(tags, 20, 0.0);
  const double sx = realOr(tags, 41, 1.0), sy = realOr(tags, 42, 1.0);
  const double rotation = realOr(tags, 50, 0.0) * kDegree;
  const double c = std::cos(rotation), s = std::sin(rotation);
  const HostViewAffine place{c * sx, s * sx, -s * sy, c * sy, x, y};
  HostViewInsert in;
  in.block = block;
  in.transform = plane.affine() * place;
  const long long columns = integerOr(tags, 70, 1), rows = integerOr(tags, 71, 1);
  in.columns = static_cast<std::uint32_t>(std::clamp(columns, 1LL, 100000LL));
  in.rows = static_cast<std::uint32_t>(std::clamp(rows, 1LL, 100000LL));
  const double dc = realOr(tags, 44, 0.0), dr = realOr(tags, 45, 0.0);
  in.columnStep = linear(plane, c * dc, s * dc);
  in.rowStep = linear(plane, -s * dr, c * dr);
  HostViewPrimitive& p = begin(Kind::Insert);
  p.extra = static_cast<std::uint32_t>(g_.inserts.size());
  g_.inserts.push_back(in);

  // The insert's attributes, each in its own colour and layer.
  const HostViewPrimitive insertLook = look_;
  for (const OdDbObjectId& id : entity.subEntityIds()) {
    OdDbObjectPtr sub = id.openObject();
    if (!sub) continue;
    const DxfObject& at = sub->dxf();
    if (at.type() != "ATTRIB" || integerOr(at, 60, 0) == 1) continue;
    readLook(at);
    text(at, false, false);
  }
  look_ = insertLook;
  return true;
}

bool HostViewEntityReader::wipeout(const DxfObject& tags) {
  // The clip boundary (14/24) is in the unit image's pixels, y down from its top left corner;
  // the image's pixel vectors (11, 12) place it from the insertion point (10).
  double v[6];
  if (!readReals(tags, {10, 20, 11, 21, 12, 22}, v)) return false;
  std::vector<HostViewVec> corners;
  for (std::size_t i = 0; i + 1 < tags.size(); ++i)
    if (tags.code(i) == 14 && tags.code(i + 1) == 24)
      corners.push_back({tags.real(i), tags.real(i + 1)});
  if (corners.size() == 2)  // a rectangle by two opposite corners
    corners = {corners[0], {corners[1].x, corners[0].y}, corners[1], {corners[0].x, corners[1].y}};
  if (corners.size() < 3) return false;
  const double height = realOr(tags, 23, 1.0);
  HostViewPrimitive& p = begin(Kind::Polygon);
  p.colour = HostViewColour::kBackground;
  for (const HostViewVec& c : corners) {
    const double a = c.x + 0.5, b = height - c.y - 0.5;
    g_.points.push_back({v[0] + v[2] * a + v[4] * b, v[1] + v[3] * a + v[5] * b});
  }
  p.count = static_cast<std::uint32_t>(corners.size());
  p.rings = 1;
  p.extra = static_cast<std::uint32_t>(g_.ringSizes.size());
  g_.ringSizes.push_back(p.count);
  return true;
}

bool HostViewEntityReader::leader(const DxfObject& tags) {
  std::vector<HostViewVec> points;
  for (std::size_t i = 0; i + 1 < tags.size(); ++i)
    if (tags.code(i) == 10 && tags.code(i + 1) == 20)
      points.push_back({tags.real(i), tags.real(i + 1)});
  if (points.size() < 2) return false;
  polyline(points, false);
  const double size = tables_.arrowSize();
  const double dx = points[0].x - points[1].x, dy = points[0].y - points[1].y;
  const double length = std::hypot(dx, dy);
  if (integerOr(tags, 71, 1) != 0 && length > size && size > 0) {
    // A filled arrowhead at the first vertex, pointing along the first segment.
    const double ux = dx / length, uy = dy / length;
    const HostViewVec tip = points[0];
    const HostViewVec back{tip.x - ux * size, tip.y - uy * size};
    const double half = size / 6;
    HostViewPrimitive& p = begin(Kind::Polygon);
    g_.points.insert(
        g_.points.end(),
        {tip, {back.x - uy * half, back.y + ux * half}, {back.x + uy * half, back.y - ux * half}});
    p.count = 3;
    p.rings = 1;
    p.extra = static_cast<std::uint32_t>(g_.ringSizes.size());
    g_.ringSizes.push_back(3);
  }
  return true;
}

HostViewBox HostViewEntityReader::extents(const HostViewGeometry& g, std::uint32_t first,
                                          std::uint32_t count,
                                          const std::vector<HostViewBlock>& blocks) {
  HostViewBox box;
  for (std::uint32_t i = first; i < first + count; ++i) {
    const HostViewPrimitive& p = g.primitives[i];
    switch (p.kind) {
      case Kind::Polyline:
      case Kind::Polygon:
      case Kind::Point: {
        for (std::uint32_t k = 0; k < p.count; ++k) {
          const HostViewVec& q = g.points[p.first + k];
          double grow = 0;
          if (p.flags & HostViewPrimitive::kWidths)
            grow = std::max(g.widths[p.first + k].x, g.widths[p.first + k].y) / 2;
          box.add(q.x - grow, q.y - grow), box.add(q.x + grow, q.y + grow);
          const bool last = k + 1 == p.count;
          if (!(p.flags & HostViewPrimitive::kBulges) ||
              (last && !(p.flags & HostViewPrimitive::kClosed)))
            continue;
          const double bulge = g.bulges[p.first + k];
          if (bulge == 0) continue;
          // Points along the arc: its bulge pushes the curve off the chord.
          const HostViewVec& r = g.points[last ? p.first : p.first + k + 1];
          const double angle = 4 * std::atan(bulge);
          const double dx = r.x - q.x, dy = r.y - q.y, chord = std::hypot(dx, dy);
          if (chord == 0) continue;
          const double radius = chord / (2 * std::sin(angle / 2));
          const double toCentre = radius * std::cos(angle / 2);
          const double cx = q.x + dx / 2 - dy / chord * toCentre;
          const double cy = q.y + dy / 2 + dx / chord * toCentre;
          const double start = std::atan2(q.y - cy, q.x - cx), rr = std::abs(radius);
          addArc(box, {cx, cy}, {rr, 0}, {0, rr}, std::min(start, start + angle),
                 std::max(start, start + angle));
        }
        break;
      }
      case Kind::Ellipse: {
        const HostViewVec& c = g.points[p.first];
        const HostViewVec& m = g.points[p.first + 1];
        const double ratio = g.reals[p.extra], start = g.reals[p.extra + 1],
                     end = g.reals[p.extra + 2];
        const HostViewVec n{-m.y * ratio, m.x * ratio};
        addArc(box, c, m, n, start, std::max(start, end));
        break;
      }
      case Kind::Text: {
        const HostViewText& t = g.texts[p.extra];
        const double ux = std::cos(t.direction), uy = std::sin(t.direction);
        const double a = std::max(t.advance, 0.0);
        for (double up : {-0.35 * t.height, 1.2 * t.height}) {
          box.add(t.origin.x - uy * up, t.origin.y + ux * up);
          box.add(t.origin.x + ux * a - uy * up, t.origin.y + uy * a + ux * up);
        }
        break;
      }
      case Kind::Insert: {
        const HostViewInsert& in = g.inserts[p.extra];
        if (in.block < 0 || static_cast<std::size_t>(in.block) >= blocks.size()) break;
        const HostViewBox inner =
            in.transform.map(blocks[static_cast<std::size_t>(in.block)].extents);
        if (inner.empty()) break;
        box.add(inner);
        // The far corner cell of an array: the cells between lie inside.
        const double fx = (in.columns - 1.0) * in.columnStep.x + (in.rows - 1.0) * in.rowStep.x;
        const double fy = (in.columns - 1.0) * in.columnStep.y + (in.rows - 1.0) * in.rowStep.y;
        const double cx = (in.columns - 1.0) * in.columnStep.x,
                     cy = (in.columns - 1.0) * in.columnStep.y;
        for (const HostViewVec& d :
             {HostViewVec{fx, fy}, HostViewVec{cx, cy}, HostViewVec{fx - cx, fy - cy}}) {
          box.add(inner.minX + d.x, inner.minY + d.y);
          box.add(inner.maxX + d.x, inner.maxY + d.y);
        }
        break;
      }
    }
  }
  return box;
}
