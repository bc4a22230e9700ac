#pragma once

#include <QRectF>
#include <QString>
#include <vector>

class OdDbDatabase;
class QPainter;

// The model space of a drawing as lines, for the PDF plot and the desktop host's preview until
// a full drawing view exists: LINE, LWPOLYLINE and (2D/3D) POLYLINE vertices, CIRCLE and ARC
// as short segments, POINT as a dot, each in its colour (entity, else its layer's; ACI);
// entities on layers that are off or frozen are left out; INSERTs are not followed.
//
// Built once from the database (read only); paint() may then be called any number of times.
class HostQtDrawingPainter {
 public:
  explicit HostQtDrawingPainter(OdDbDatabase& db);

  // The extents of what it draws, in drawing units; empty (null) when there is nothing.
  QRectF extents() const { return extents_; }
  std::size_t segmentCount() const { return segments_.size(); }

  // Draws the drawing's extents fitted into `target` (keeping proportions, y pointing up),
  // on whatever background the painter has; `darkBackground` draws colour 7 white, else black.
  void paint(QPainter& painter, const QRectF& target, bool darkBackground) const;

  // Writes a one-page PDF (A4 landscape or portrait, whichever fits the extents better) of the
  // extents, through a temporary file renamed into place. False, with `error` set, when it
  // cannot be written; an empty drawing gives a blank page.
  bool writePdf(const QString& path, QString& error) const;

 private:
  struct Segment {
    double x1, y1, x2, y2;
    unsigned rgb;
  };
  std::vector<Segment> segments_;
  QRectF extents_;
};
