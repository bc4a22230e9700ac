#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include "HostViewGeometry.h"

// Where a view looks: the drawing point at the middle of the device and how many device
// pixels one drawing unit spans. Maps drawing coordinates (y up) to device ones (y down).
struct HostViewTransform {
  HostViewVec centre;
  double scale = 1.0;  // pixels per drawing unit, > 0
  QSizeF device;       // the device's size in pixels

  QPointF toDevice(double x, double y) const {
    return {device.width() / 2 + (x - centre.x) * scale,
            device.height() / 2 - (y - centre.y) * scale};
  }
  HostViewVec toDrawing(const QPointF& p) const {
    return {centre.x + (p.x() - device.width() / 2) / scale,
            centre.y - (p.y() - device.height() / 2) / scale};
  }
  // The drawing box the device shows.
  HostViewBox visible() const {
    HostViewBox box;
    const HostViewVec a = toDrawing(QPointF(0, 0));
    const HostViewVec b = toDrawing(QPointF(device.width(), device.height()));
    box.add(a.x, a.y);
    box.add(b.x, b.y);
    return box;
  }
  // The transform that shows `box` whole on `device`, with `margin` pixels free on each side;
  // an empty box gives scale 1 about the origin, a box of no width or height fits its other
  // side.
  static HostViewTransform fit(const HostViewBox& box, const QSizeF& device, double margin);
};
