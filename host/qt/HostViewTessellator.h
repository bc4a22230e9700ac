#pragma once

#include <QFont>
#include <QLineF>
#include <QPolygonF>
#include <QRectF>
#include <QRgb>
#include <QString>
#include <QTransform>
#include <QVector>
#include <unordered_map>
#include <vector>

#include "HostViewGeometry.h"

class QPainter;
struct HostViewPattern;

// Turns primitives into what a painter draws cheaply: lines and dots batched by colour, filled
// polygons and texts in order, all in device pixels. Curves get as many chords as their size
// on the device needs, linetype patterns are dashed here when a pattern spans enough pixels,
// and every line and polygon is clipped to the device (plus a margin) first, so that nothing
// huge or far away reaches the painter. Collects until flush(); not thread-safe.
class HostViewTessellator {
 public:
  // How a stroke looks: its colour and, when dashed, its pattern with `scale` device pixels
  // per pattern unit.
  struct Pen {
    QRgb colour = 0;
    const HostViewPattern* pattern = nullptr;
    double scale = 1;
  };

  // Starts collecting for a device of `size` pixels.
  void reset(const QSizeF& size);
  // `toDevice` maps the primitive's coordinates to device pixels.
  void polyline(const HostViewVec* points, std::uint32_t count, bool closed, const double* bulges,
                const HostViewVec* widths, const HostViewAffine& toDevice, const Pen& pen);
  void ellipse(const HostViewVec& centre, const HostViewVec& major, double ratio, double start,
               double end, const HostViewAffine& toDevice, const Pen& pen);
  // Rings of points, filled odd-even, and outlined.
  void polygon(const HostViewVec* points, const std::uint32_t* ringSizes, std::uint32_t rings,
               const HostViewAffine& toDevice, const Pen& pen);
  // A line through `a` and `b` (device pixels) running on past `b`, and past `a` too when
  // `bothWays`.
  void infiniteLine(const QPointF& a, const QPointF& b, bool bothWays, const Pen& pen);
  void dot(const QPointF& at, QRgb colour);
  void text(const HostViewText& text, const HostViewAffine& toDevice, QRgb colour);

  // Draws what was collected (fills, then lines and dots, then texts) with lines `width`
  // pixels wide, and empties the buffers. Returns how many pieces were drawn.
  std::size_t flush(QPainter& painter, double width);

 private:
  struct Batch {
    QRgb colour = 0;
    std::vector<QLineF> lines;
    std::vector<QPointF> dots;
  };
  struct Fill {
    QRgb colour;
    std::vector<QPolygonF> rings;
  };
  struct Text {
    QString text;
    QString family;
    int pixelSize;
    QTransform transform;
    QRgb colour;
  };
  struct Face {
    QFont font;
    double capRatio;  // cap height per pixel of size
  };

  // Chords of an arc (device pixels) into `out`, the first point left out.
  void arc(double cx, double cy, const HostViewVec& major, const HostViewVec& minor, double start,
           double end, const HostViewAffine& toDevice, std::vector<QPointF>& out) const;
  void stroke(const std::vector<QPointF>& points, bool closed, const Pen& pen);
  void segment(QPointF a, QPointF b, const Pen& pen, double& phase);
  bool clip(QPointF& a, QPointF& b, double* t0 = nullptr, double* t1 = nullptr) const;
  QPolygonF clipRing(const QPolygonF& ring) const;
  const Face& face(const QString& family);
  Batch& batchFor(QRgb colour);
  bool inside(const QPointF& p) const {
    return p.x() >= clip_.left() && p.x() <= clip_.right() && p.y() >= clip_.top() &&
           p.y() <= clip_.bottom();
  }

  QRectF clip_;
  // A drawing uses few colours: a short list searched from the last one used beats hashing.
  std::vector<Batch> batches_;
  std::vector<Fill> fills_;
  std::vector<Text> texts_;
  std::unordered_map<QString, Face> faces_;
  std::vector<QPointF> scratch_;
  std::vector<QPointF> edge_;  // one polyline edge's chords
  std::size_t last_ = 0;       // index of the batch used last
};
