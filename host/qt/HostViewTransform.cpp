#include "HostViewTransform.h"

#include <algorithm>

HostViewTransform HostViewTransform::fit(const HostViewBox& box, const QSizeF& device,
                                         double margin) {
  HostViewTransform view;
  view.device = device;
  if (box.empty()) return view;
  view.centre = {(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2};
  const double w = std::max(device.width() - 2 * margin, 1.0);
  const double h = std::max(device.height() - 2 * margin, 1.0);
  const double bw = box.width(), bh = box.height();
  double scale = 0;
  if (bw > 0 && bh > 0)
    scale = std::min(w / bw, h / bh);
  else if (bw > 0)
    scale = w / bw;
  else if (bh > 0)
    scale = h / bh;
  view.scale = std::isfinite(scale) && scale > 0 ? scale : 1.0;
  return view;
}
