#pragma once

#include <QRgb>
#include <cstdint>

class QImage;
class QPainter;

// Draws one-pixel solid lines and dots straight into the pixels of a 32-bit image, for the
// many thin strokes of a large drawing: a general painter spends most of a redraw setting up
// each line, this spends it writing pixels. It draws what a painter draws with a cosmetic
// pen of width 0 and no antialiasing, to within a pixel along a line: a point (x, y) lights
// the pixel (floor x, floor y), a line every pixel of its longer axis from end to end, both
// ends included.
//
// Only opaque colours are written (the alpha given is ignored), over whatever is there.
// Coordinates are device pixels; anything outside the image is clipped away, non-finite
// coordinates draw nothing. Holds a pointer to the image's pixels: the image must outlive it
// and must not be resized meanwhile. Not thread-safe.
class HostViewRaster {
 public:
  // The image a painter paints into, when the painter's strokes can be drawn here instead:
  // a raster painter on a 32-bit image (RGB32, ARGB32, ARGB32_Premultiplied) of device pixel
  // ratio 1, no transform, no clipping, no antialiasing, source-over at full opacity. Null
  // otherwise (a PDF, a widget, a transformed or clipped painter): the caller paints with the
  // painter.
  static QImage* target(QPainter& painter);

  explicit HostViewRaster(QImage& image);

  void line(double x0, double y0, double x1, double y1, QRgb colour);
  void dot(double x, double y, QRgb colour);

 private:
  std::uint32_t* bits_;
  std::int64_t stride_;  // in pixels
  int width_, height_;
};
