#pragma once

#include <QRectF>
#include <QString>
#include <vector>

class OdDbDatabase;
class QPainter;

// The model space of a drawing as lines, for the PDF plot and the desktop host's preview until
// a full drawing view exists: LINE, LWPOLYLINE (bulges as arcs) and (2D/3D) POLYLINE vertices,
// CIRCLE and ARC as short segments, POINT as a dot, each in its colour (entity true colour, else
// its index, else its layer's; ACI). Entities on layers that are off or frozen, and invisible
// ones, are left out; INSERTs are not followed; polygon and polyface meshes are left out.
// Geometry is read from the entities' tags and seen from above: a planar object (circle, arc,
// 2D polyline) is placed by its extrusion direction and elevation, then z is dropped.
//
// Built once from the database (read only; a malformed entity is skipped, never thrown
// about); paint() may then be called any number of times.
class HostQtDrawingPainter {
 public:
  explicit HostQtDrawingPainter(OdDbDatabase& db);

  // The extents of what it draws, in drawing units; empty (null) when there is nothing.
  QRectF extents() const { return extents_; }
  std::size_t segmentCount() const { return segments_.size(); }
  // The drawing's name (its file name without folder and extension; "Untitled" for a new
  // drawing), the title of the PDF.
  const QString& title() const { return title_; }

  // Draws the drawing's extents fitted into `target` (keeping proportions, y pointing up),
  // on whatever background the painter has; `darkBackground` draws colour 7 white, else black.
  void paint(QPainter& painter, const QRectF& target, bool darkBackground) const;

  // Writes a one-page PDF (A4 landscape or portrait, whichever fits the extents better) of the
  // extents, through a temporary file renamed into place. False, with `error` set (naming the
  // file and the reason), when it cannot be written; an empty drawing gives a blank page.
  bool writePdf(const QString& path, QString& error) const;

  // The RGB (0xRRGGBB) of a colour index 1-255 of the standard palette; 7 is white. Other
  // indices give white too.
  static unsigned aciToRgb(int index);

 private:
  // In Segment::rgb: the colour that contrasts with the background (index 7, by block).
  static constexpr unsigned kForeground = 0x1000000u;
  struct Segment {
    double x1, y1, x2, y2;
    unsigned rgb;
  };
  void add(double x1, double y1, double x2, double y2, unsigned rgb);

  std::vector<Segment> segments_;
  QRectF extents_;
  QString title_;
};
