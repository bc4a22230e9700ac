#include "HostViewTessellator.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "HostViewRaster.h"
#include "HostViewScene.h"

namespace {
constexpr double kPi = std::numbers::pi;
// Lines are clipped to the device grown by this many pixels, so that wide pens and joins at
// the border still look whole.
constexpr double kMargin = 16;
// A chord strays at most this far (pixels) from its arc.
constexpr double kChordError = 0.25;
// A pattern shorter than this on the device is drawn solid: its dashes would be a blur.
constexpr double kMinPatternPixels = 8;

int chordsFor(double radiusPixels, double sweep) {
  if (!(radiusPixels > kChordError)) return 1;
  const double step = 2 * std::acos(1 - kChordError / radiusPixels);
  const double n = std::ceil(std::abs(sweep) / std::max(step, 1e-6));
  return static_cast<int>(std::clamp(n, 1.0, 4096.0));
}

// Lengths here are of pixels and never overflow: the plain formula is much cheaper than hypot.
double length(double x, double y) {
  return std::sqrt(x * x + y * y);
}

QPointF map(const HostViewAffine& m, double x, double y) {
  return {m.a * x + m.c * y + m.tx, m.b * x + m.d * y + m.ty};
}
}  // namespace

HostViewTessellator::Batch& HostViewTessellator::batchFor(QRgb colour) {
  // Strokes come in runs of one colour: look the batch up once per run.
  if (last_ < batches_.size() && batches_[last_].colour == colour) return batches_[last_];
  for (last_ = 0; last_ < batches_.size(); ++last_)
    if (batches_[last_].colour == colour) return batches_[last_];
  batches_.push_back(Batch{colour, {}, {}});
  return batches_.back();
}

void HostViewTessellator::reset(const QSizeF& size) {
  clip_ = QRectF(-kMargin, -kMargin, size.width() + 2 * kMargin, size.height() + 2 * kMargin);
  for (Batch& batch : batches_) batch.lines.clear(), batch.dots.clear();
  last_ = 0;
  fills_.clear();
  texts_.clear();
}

bool HostViewTessellator::clip(QPointF& a, QPointF& b, double* t0out, double* t1out) const {
  if (inside(a) && inside(b)) {  // the common case: nothing to cut
    if (t0out) *t0out = 0;
    if (t1out) *t1out = 1;
    return true;
  }
  const double dx = b.x() - a.x(), dy = b.y() - a.y();
  // Cheap misses first (zoomed in, most segments found pass by the device): both ends beyond
  // one side, or the clip box's corners all on one side of the segment's line.
  if ((a.x() < clip_.left() && b.x() < clip_.left()) ||
      (a.x() > clip_.right() && b.x() > clip_.right()) ||
      (a.y() < clip_.top() && b.y() < clip_.top()) ||
      (a.y() > clip_.bottom() && b.y() > clip_.bottom()))
    return false;
  const double left = clip_.left() - a.x(), right = clip_.right() - a.x();
  const double top = clip_.top() - a.y(), bottom = clip_.bottom() - a.y();
  const double c0 = dx * top - dy * left, c1 = dx * top - dy * right, c2 = dx * bottom - dy * left,
               c3 = dx * bottom - dy * right;
  if ((c0 > 0 && c1 > 0 && c2 > 0 && c3 > 0) || (c0 < 0 && c1 < 0 && c2 < 0 && c3 < 0))
    return false;
  double t0, t1;
  if (!HostViewBox{clip_.left(), clip_.top(), clip_.right(), clip_.bottom()}.clipSegment(
          a.x(), a.y(), dx, dy, t0, t1))
    return false;
  if (!std::isfinite(t0) || !std::isfinite(t1)) return false;
  const QPointF from = a;
  a = QPointF(from.x() + t0 * dx, from.y() + t0 * dy);
  b = QPointF(from.x() + t1 * dx, from.y() + t1 * dy);
  if (t0out) *t0out = t0;
  if (t1out) *t1out = t1;
  return true;
}

void HostViewTessellator::segment(QPointF a, QPointF b, const Pen& pen, double& phase) {
  const double span = length(b.x() - a.x(), b.y() - a.y());
  if (!std::isfinite(span)) return;
  const double total = pen.pattern ? pen.pattern->length * pen.scale : 0;
  if (total < kMinPatternPixels) {
    if (!clip(a, b)) return;
    Batch& batch = batchFor(pen.colour);
    if (span == 0)
      batch.dots.push_back(a);
    else
      batch.lines.emplace_back(a, b);
    return;
  }
  const QPointF from = a;
  double t0 = 0, t1 = 1;
  const double startPhase = phase;
  phase += span;
  if (span == 0 || !clip(a, b, &t0, &t1)) return;
  Batch& batch = batchFor(pen.colour);
  const double ux = (b.x() - a.x()) / std::max(span * (t1 - t0), 1e-300);
  const double uy = (b.y() - a.y()) / std::max(span * (t1 - t0), 1e-300);
  auto at = [&](double s) { return QPointF(from.x() + ux * s, from.y() + uy * s); };
  // Where in the pattern the visible part starts.
  double s = t0 * span;
  const double end = t1 * span;
  double into = std::fmod(startPhase + s, total);
  const std::vector<double>& dashes = pen.pattern->dashes;
  std::size_t k = 0;
  while (into >= std::abs(dashes[k]) * pen.scale && k + 1 < dashes.size()) {
    into -= std::abs(dashes[k]) * pen.scale;
    ++k;
  }
  while (s < end) {
    const double element = dashes[k] * pen.scale;
    const double stop = std::min(end, s + std::abs(element) - into);
    if (element > 0)
      batch.lines.emplace_back(at(s), at(stop));
    else if (element == 0 && into == 0)
      batch.dots.push_back(at(s));
    s = stop;
    into = 0;
    k = (k + 1) % dashes.size();
  }
}

void HostViewTessellator::stroke(const std::vector<QPointF>& points, bool closed, const Pen& pen) {
  if (points.empty()) return;
  double phase = 0;
  if (points.size() == 1) {
    segment(points[0], points[0], pen, phase);
    return;
  }
  for (std::size_t i = 1; i < points.size(); ++i) segment(points[i - 1], points[i], pen, phase);
  if (closed) segment(points.back(), points.front(), pen, phase);
}

void HostViewTessellator::arc(double cx, double cy, const HostViewVec& major,
                              const HostViewVec& minor, double start, double end,
                              const HostViewAffine& m, std::vector<QPointF>& out) const {
  const double rx = length(m.a * major.x + m.c * major.y, m.b * major.x + m.d * major.y);
  const double ry = length(m.a * minor.x + m.c * minor.y, m.b * minor.x + m.d * minor.y);
  const int n = chordsFor(std::max(rx, ry), end - start);
  // Turning by a fixed step: two sines and cosines per arc rather than one per chord.
  const double step = (end - start) / n, cs = std::cos(step), ss = std::sin(step);
  double c = std::cos(start), s = std::sin(start);
  for (int i = 1; i <= n; ++i) {
    const double nc = c * cs - s * ss;
    s = s * cs + c * ss, c = nc;
    out.push_back(map(m, cx + major.x * c + minor.x * s, cy + major.y * c + minor.y * s));
  }
}

void HostViewTessellator::polyline(const HostViewVec* points, std::uint32_t count, bool closed,
                                   const double* bulges, const HostViewVec* widths,
                                   const HostViewAffine& m, const Pen& pen) {
  if (count == 0) return;
  std::vector<QPointF>& run = scratch_;
  run.clear();
  run.push_back(map(m, points[0].x, points[0].y));
  const double scale = m.scale();
  const std::uint32_t edges = closed ? count : count - 1;
  std::vector<QPointF>& edge = edge_;
  for (std::uint32_t i = 0; i < edges; ++i) {
    const HostViewVec& p = points[i];
    const HostViewVec& q = points[(i + 1) % count];
    edge.clear();
    const double bulge = bulges ? bulges[i] : 0;
    if (bulge != 0 && std::isfinite(bulge)) {
      // The arc through p and q whose angle is 4 atan(bulge), counter-clockwise when positive.
      const double angle = 4 * std::atan(bulge);
      const double dx = q.x - p.x, dy = q.y - p.y, chord = length(dx, dy);
      if (chord > 0) {
        const double radius = chord / (2 * std::sin(angle / 2));
        const double toCentre = radius * std::cos(angle / 2);
        const double cx = p.x + dx / 2 - dy / chord * toCentre;
        const double cy = p.y + dy / 2 + dx / chord * toCentre;
        const double r = std::abs(radius), start = std::atan2(p.y - cy, p.x - cx);
        arc(cx, cy, {r, 0}, {0, r}, start, start + angle, m, edge);
      }
    }
    if (edge.empty()) edge.push_back(map(m, q.x, q.y));
    const double w0 = widths ? widths[i].x * scale : 0, w1 = widths ? widths[i].y * scale : 0;
    if (std::max(w0, w1) < 1.5) {
      run.insert(run.end(), edge.begin(), edge.end());
      continue;
    }
    // A wide edge: quads along its chords, the width going from start to end.
    QPointF from = run.back();
    const double n = static_cast<double>(edge.size());
    for (std::size_t k = 0; k < edge.size(); ++k) {
      const QPointF to = edge[k];
      const double dx = to.x() - from.x(), dy = to.y() - from.y(), len = length(dx, dy);
      if (len > 0) {
        const double wa = (w0 + (w1 - w0) * k / n) / 2, wb = (w0 + (w1 - w0) * (k + 1) / n) / 2;
        const double nx = -dy / len, ny = dx / len;
        QPolygonF quad({QPointF(from.x() + nx * wa, from.y() + ny * wa),
                        QPointF(to.x() + nx * wb, to.y() + ny * wb),
                        QPointF(to.x() - nx * wb, to.y() - ny * wb),
                        QPointF(from.x() - nx * wa, from.y() - ny * wa)});
        if (quad.boundingRect().intersects(clip_)) fills_.push_back({pen.colour, {clipRing(quad)}});
      }
      from = to;
    }
    stroke(run, false, pen);
    run.clear();
    run.push_back(edge.back());
  }
  // A closed polyline's last edge came back to its start above.
  if (run.size() > 1 || edges == 0) stroke(run, false, pen);
}

void HostViewTessellator::ellipse(const HostViewVec& centre, const HostViewVec& major, double ratio,
                                  double start, double end, const HostViewAffine& m,
                                  const Pen& pen) {
  const HostViewVec minor{-major.y * ratio, major.x * ratio};
  // Off the device altogether: nothing to tessellate.
  const double reach = length(major.x, major.y) * m.scale();
  const QPointF c = map(m, centre.x, centre.y);
  if (!QRectF(c.x() - reach, c.y() - reach, 2 * reach, 2 * reach).intersects(clip_)) return;
  std::vector<QPointF>& points = scratch_;
  auto piece = [&](double from, double to, bool closed) {
    points.clear();
    points.push_back(map(m, centre.x + major.x * std::cos(from) + minor.x * std::sin(from),
                         centre.y + major.y * std::cos(from) + minor.y * std::sin(from)));
    arc(centre.x, centre.y, major, minor, from, to, m, points);
    if (closed) points.pop_back();
    stroke(points, closed, pen);
  };
  // A curve far larger than the device (zoomed far in on it): only the stretch the device can
  // see is tessellated, so that its chords stay within a fraction of a pixel of it.
  if (reach > 4 * length(clip_.width(), clip_.height()) && !clip_.contains(c)) {
    // On the device the curve is c + X cos t + Y sin t; the corners of the clip box, taken
    // back to the unit circle, bound the parameters it can show.
    const double xx = m.a * major.x + m.c * major.y, xy = m.b * major.x + m.d * major.y;
    const double yx = m.a * minor.x + m.c * minor.y, yy = m.b * minor.x + m.d * minor.y;
    const double det = xx * yy - yx * xy;
    if (!(std::abs(det) > 0) || !std::isfinite(det)) return;
    const QPointF corners[4] = {clip_.topLeft(), clip_.topRight(), clip_.bottomRight(),
                                clip_.bottomLeft()};
    double angles[4];
    bool outside = false;
    for (int i = 0; i < 4; ++i) {
      const double dx = corners[i].x() - c.x(), dy = corners[i].y() - c.y();
      const double u = (yy * dx - yx * dy) / det, v = (xx * dy - xy * dx) / det;
      outside = outside || u * u + v * v > 1;
      angles[i] = std::atan2(v, u);
    }
    if (!outside) return;  // the whole device lies inside the curve
    // The centre is off the device, so the corners span less than half a turn.
    double low = 0, high = 0;
    for (int i = 1; i < 4; ++i) {
      const double d = std::remainder(angles[i] - angles[0], 2 * kPi);
      low = std::min(low, d), high = std::max(high, d);
    }
    for (int turn = -2; turn <= 2; ++turn) {
      const double from = std::max(start, angles[0] + low + 2 * kPi * turn);
      const double to = std::min(end, angles[0] + high + 2 * kPi * turn);
      if (from < to) piece(from, to, false);
    }
    return;
  }
  piece(start, end, end - start >= 2 * kPi - 1e-9);
}

QPolygonF HostViewTessellator::clipRing(const QPolygonF& ring) const {
  if (clip_.contains(ring.boundingRect())) return ring;
  // Sutherland-Hodgman against each side of the clip box.
  QPolygonF out = ring;
  for (int side = 0; side < 4 && !out.isEmpty(); ++side) {
    auto inside = [&](const QPointF& p) {
      switch (side) {
        case 0:
          return p.x() >= clip_.left();
        case 1:
          return p.x() <= clip_.right();
        case 2:
          return p.y() >= clip_.top();
        default:
          return p.y() <= clip_.bottom();
      }
    };
    auto cross = [&](const QPointF& p, const QPointF& q) {
      const double edge = side == 0   ? clip_.left()
                          : side == 1 ? clip_.right()
                          : side == 2 ? clip_.top()
                                      : clip_.bottom();
      const double t =
          side < 2 ? (edge - p.x()) / (q.x() - p.x()) : (edge - p.y()) / (q.y() - p.y());
      return QPointF(p.x() + (q.x() - p.x()) * t, p.y() + (q.y() - p.y()) * t);
    };
    QPolygonF in = out;
    out.clear();
    for (qsizetype i = 0; i < in.size(); ++i) {
      const QPointF& p = in[i];
      const QPointF& q = in[(i + 1) % in.size()];
      const bool pin = inside(p), qin = inside(q);
      if (pin) out.push_back(p);
      if (pin != qin) out.push_back(cross(p, q));
    }
  }
  return out;
}

void HostViewTessellator::polygon(const HostViewVec* points, const std::uint32_t* ringSizes,
                                  std::uint32_t rings, const HostViewAffine& m, const Pen& pen) {
  Fill fill{pen.colour, {}};
  QRectF bounds;
  std::uint32_t at = 0;
  for (std::uint32_t r = 0; r < rings; ++r) {
    QPolygonF ring;
    ring.reserve(ringSizes[r]);
    for (std::uint32_t k = 0; k < ringSizes[r]; ++k, ++at)
      ring.push_back(map(m, points[at].x, points[at].y));
    bounds |= ring.boundingRect();
    fill.rings.push_back(std::move(ring));
  }
  if (!bounds.intersects(clip_) && !(bounds.width() == 0 || bounds.height() == 0)) return;
  // The outline, so that a fill too thin for the rasteriser still shows.
  for (const QPolygonF& ring : fill.rings) {
    std::vector<QPointF> outline(ring.begin(), ring.end());
    stroke(outline, true, Pen{pen.colour, nullptr, 1});
  }
  for (QPolygonF& ring : fill.rings) ring = clipRing(ring);
  fills_.push_back(std::move(fill));
}

void HostViewTessellator::infiniteLine(const QPointF& a, const QPointF& b, bool bothWays,
                                       const Pen& pen) {
  const double dx = b.x() - a.x(), dy = b.y() - a.y(), span = length(dx, dy);
  if (!(span > 0)) return;
  // Far enough past the device in either direction that clipping finds the visible part.
  const double reach = (length(clip_.width(), clip_.height()) + length(a.x(), a.y())) / span * 2;
  const QPointF from = bothWays ? QPointF(a.x() - dx * reach, a.y() - dy * reach) : a;
  const QPointF to(a.x() + dx * reach, a.y() + dy * reach);
  double phase = 0;
  segment(from, to, pen, phase);
}

void HostViewTessellator::dot(const QPointF& at, QRgb colour) {
  if (inside(at)) batchFor(colour).dots.push_back(at);
}

const HostViewTessellator::Face& HostViewTessellator::face(const QString& family) {
  auto found = faces_.find(family);
  if (found != faces_.end()) return found->second;
  QFont font = family.isEmpty() ? QFont() : QFont(family);
  font.setPixelSize(200);
  const double cap = QFontMetricsF(font).capHeight();
  return faces_.emplace(family, Face{font, cap > 0 ? cap / 200 : 0.7}).first->second;
}

void HostViewTessellator::text(const HostViewText& t, const HostViewAffine& m, QRgb colour) {
  const double ux = std::cos(t.direction), uy = std::sin(t.direction);
  // The text's frame on the device: along the baseline and up.
  const double ax = m.a * ux + m.c * uy, ay = m.b * ux + m.d * uy;
  const double vx = -m.a * uy + m.c * ux, vy = -m.b * uy + m.d * ux;
  const double capPixels = t.height * length(vx, vy);
  const QPointF o = map(m, t.origin.x, t.origin.y);
  const double advance = std::max(t.advance, 0.0);
  const QPointF end(o.x() + ax * advance, o.y() + ay * advance);
  const QPointF top(o.x() + vx * t.height, o.y() + vy * t.height);
  QRectF box = QRectF(o, end).normalized() | QRectF(o, top).normalized();
  box.adjust(-capPixels, -capPixels, capPixels + std::abs(top.x() - o.x()),
             capPixels + std::abs(top.y() - o.y()));
  if (!box.intersects(clip_)) return;
  if (capPixels < 3) {
    // Too small to read: a line along its baseline.
    double phase = 0;
    segment(o, end, Pen{colour, nullptr, 1}, phase);
    return;
  }
  const Face& f = face(t.family);
  const int pixelSize =
      static_cast<int>(std::clamp(std::round(capPixels / f.capRatio), 1.0, 512.0));
  // Painter units are font pixels: cap height pixelSize * capRatio stands for t.height.
  const double unit = t.height / (pixelSize * f.capRatio);
  const double slant = std::tan(t.oblique);
  // Columns of the map from font pixels (y down) to device pixels.
  const double c1x = ax * t.widthFactor * unit, c1y = ay * t.widthFactor * unit;
  const double c2x = -(ax * slant + vx) * unit, c2y = -(ay * slant + vy) * unit;
  texts_.push_back(
      {t.text, t.family, pixelSize, QTransform(c1x, c1y, c2x, c2y, o.x(), o.y()), colour});
}

std::size_t HostViewTessellator::flush(QPainter& painter, double width) {
  std::size_t drawn = 0;
  const QTransform base = painter.transform();
  painter.setPen(Qt::NoPen);
  for (const Fill& fill : fills_) {
    painter.setBrush(QColor::fromRgb(fill.colour));
    if (fill.rings.size() == 1) {
      painter.drawPolygon(fill.rings[0], Qt::OddEvenFill);
    } else {
      QPainterPath path;
      path.setFillRule(Qt::OddEvenFill);
      for (const QPolygonF& ring : fill.rings) path.addPolygon(ring), path.closeSubpath();
      painter.drawPath(path);
    }
    ++drawn;
  }
  painter.setBrush(Qt::NoBrush);
  // Thin strokes into an image: straight into its pixels.
  if (QImage* image = width <= 1 ? HostViewRaster::target(painter) : nullptr) {
    HostViewRaster raster(*image);
    for (Batch& batch : batches_) {
      for (const QLineF& l : batch.lines) raster.line(l.x1(), l.y1(), l.x2(), l.y2(), batch.colour);
      for (const QPointF& p : batch.dots) raster.dot(p.x(), p.y(), batch.colour);
      drawn += batch.lines.size() + batch.dots.size();
      batch.lines.clear(), batch.dots.clear();
    }
  }
  for (const Batch& batch : batches_) {
    if (batch.lines.empty() && batch.dots.empty()) continue;
    QPen pen(QColor::fromRgb(batch.colour), width <= 1 ? 0 : width);
    pen.setCosmetic(true);
    pen.setCapStyle(Qt::SquareCap);
    painter.setPen(pen);
    if (!batch.lines.empty())
      painter.drawLines(batch.lines.data(), static_cast<int>(batch.lines.size()));
    if (!batch.dots.empty())
      painter.drawPoints(batch.dots.data(), static_cast<int>(batch.dots.size()));
    drawn += batch.lines.size() + batch.dots.size();
  }
  for (const Text& t : texts_) {
    QFont font = face(t.family).font;
    font.setPixelSize(t.pixelSize);
    painter.setFont(font);
    painter.setPen(QColor::fromRgb(t.colour));
    painter.setTransform(t.transform * base);
    painter.drawText(QPointF(0, 0), t.text);
    ++drawn;
  }
  painter.setTransform(base);
  reset(QSizeF(clip_.width() - 2 * kMargin, clip_.height() - 2 * kMargin));
  return drawn;
}
