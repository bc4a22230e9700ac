#include "HostViewRaster.h"

#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "HostViewGeometry.h"

namespace {
// Positions along the shorter axis are stepped in fixed point with this many fraction bits:
// exact enough over any image's length, and no conversion from floating point per pixel.
constexpr int kFraction = 32;
constexpr double kOne = 4294967296.0;  // 2^kFraction

// Cuts the segment to the box [lo, hiX] x [lo, hiY]; false when nothing is left.
bool clipTo(double& x0, double& y0, double& x1, double& y1, double lo, double hiX, double hiY) {
  const double dx = x1 - x0, dy = y1 - y0;
  double t0, t1;
  if (!HostViewBox{lo, lo, hiX, hiY}.clipSegment(x0, y0, dx, dy, t0, t1)) return false;
  const double ax = x0, ay = y0;
  x0 = ax + t0 * dx, y0 = ay + t0 * dy;
  x1 = ax + t1 * dx, y1 = ay + t1 * dy;
  return true;
}

// Lights pixels along the major axis from floor(a0) to floor(a1) (a0 <= a1), the minor
// coordinate taken at each pixel's centre. `minorStep` is the pixel offset of one step along
// the minor axis (one step along the major axis is 1 when kAlongRows, else `stride`);
// `majorSize` and `minorSize` are the image's extent along each axis.
template <bool kAlongRows>
void run(std::uint32_t* bits, std::int64_t stride, int majorSize, int minorSize, double a0,
         double b0, double a1, double b1, std::uint32_t colour) {
  int from = std::max(static_cast<int>(std::floor(a0)), 0);
  int to = std::min(static_cast<int>(std::floor(a1)), majorSize - 1);
  if (from > to) return;
  const double slope = a1 > a0 ? (b1 - b0) / (a1 - a0) : 0;
  const std::int64_t start = std::llround((b0 + slope * (from + 0.5 - a0)) * kOne);
  const std::int64_t step = std::llround(slope * kOne);
  // The minor coordinate is monotonic along the run and the ends were clipped a pixel past
  // the image: trimming the ends that fall outside leaves a run wholly inside.
  auto inside = [&](int i) {
    const std::int64_t m = (start + step * (i - from)) >> kFraction;  // floor, also below 0
    return static_cast<std::uint64_t>(m) < static_cast<std::uint64_t>(minorSize);
  };
  const int first = from;
  while (from <= to && !inside(from)) ++from;
  while (to >= from && !inside(to)) --to;
  if (from > to) return;
  std::int64_t minor = start + step * (from - first);
  const std::int64_t majorStep = kAlongRows ? 1 : stride, minorStep = kAlongRows ? stride : 1;
  std::uint32_t* pixel = bits + from * majorStep;
  for (int i = from; i <= to; ++i, pixel += majorStep, minor += step)
    pixel[(minor >> kFraction) * minorStep] = colour;
}
}  // namespace

QImage* HostViewRaster::target(QPainter& painter) {
  if (!painter.isActive() || !painter.device() || painter.device()->devType() != QInternal::Image)
    return nullptr;
  if (!painter.paintEngine() || painter.paintEngine()->type() != QPaintEngine::Raster)
    return nullptr;
  auto* image = static_cast<QImage*>(painter.device());
  const QImage::Format format = image->format();
  if (format != QImage::Format_RGB32 && format != QImage::Format_ARGB32 &&
      format != QImage::Format_ARGB32_Premultiplied)
    return nullptr;
  if (image->devicePixelRatio() != 1 || !painter.deviceTransform().isIdentity() ||
      painter.hasClipping() || painter.testRenderHint(QPainter::Antialiasing) ||
      painter.compositionMode() != QPainter::CompositionMode_SourceOver || painter.opacity() != 1)
    return nullptr;
  return image;
}

HostViewRaster::HostViewRaster(QImage& image)
    : bits_(reinterpret_cast<std::uint32_t*>(image.bits())),
      stride_(image.bytesPerLine() / 4),
      width_(image.width()),
      height_(image.height()) {}

void HostViewRaster::line(double x0, double y0, double x1, double y1, QRgb colour) {
  if (!std::isfinite(x0) || !std::isfinite(y0) || !std::isfinite(x1) || !std::isfinite(y1)) return;
  // A pixel past each side, so that what is cut keeps its slope and its pixels at the border.
  if (!clipTo(x0, y0, x1, y1, -1, width_ + 1, height_ + 1)) return;
  const std::uint32_t c = colour | 0xFF000000u;
  if (std::abs(x1 - x0) >= std::abs(y1 - y0)) {
    if (x1 < x0) std::swap(x0, x1), std::swap(y0, y1);
    run<true>(bits_, stride_, width_, height_, x0, y0, x1, y1, c);
  } else {
    if (y1 < y0) std::swap(x0, x1), std::swap(y0, y1);
    run<false>(bits_, stride_, height_, width_, y0, x0, y1, x1, c);
  }
}

void HostViewRaster::dot(double x, double y, QRgb colour) {
  if (!(x >= 0 && x < width_ && y >= 0 && y < height_)) return;
  bits_[static_cast<std::int64_t>(y) * stride_ + static_cast<std::int64_t>(x)] =
      colour | 0xFF000000u;
}
