// Opens one drawing as the desktop's drawing view does and reports, as one line of JSON, how
// long each step took and the process's resident-memory high-water mark:
//
//   view_probe FILE [--repeat N] [--png OUT.png]
//
//   load_seconds         reading the file into a drawing database
//   first_paint_seconds  reading, building the view's scene and index, and painting the extents
//   extents_ms           a redraw at extents (median of N, default 20)
//   zoom_ms              a redraw at one hundredth of the extents' size, centred on the entity
//                        nearest the extents' centre (median of N)
//
// Paints go to a 1600 x 1000 image on Qt's raster engine, as on screen without a GPU. The
// offscreen platform is used when none is set.

#include <sys/resource.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "HostViewRenderer.h"
#include "HostViewScene.h"
#include "HostViewTransform.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

long peakResidentKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;  // kilobytes on Linux
}

double paintMs(HostViewRenderer& renderer, const HostViewScene& scene,
               const HostViewTransform& view, QImage& image) {
  const auto start = Clock::now();
  QPainter painter(&image);
  renderer.paint(painter, scene, view, HostViewRenderer::Options());
  painter.end();
  return secondsSince(start) * 1000.0;
}

double medianMs(int repeat, const std::function<double()>& once) {
  std::vector<double> ms;
  for (int i = 0; i < repeat; ++i) ms.push_back(once());
  std::sort(ms.begin(), ms.end());
  return ms[ms.size() / 2];
}

// The view one hundredth of the extents' size, centred on the drawn entity nearest the middle.
HostViewTransform zoomedIn(const HostViewScene& scene, const HostViewTransform& extents) {
  const HostViewBox box = scene.extents();
  const double cx = (box.minX + box.maxX) / 2, cy = (box.minY + box.maxY) / 2;
  HostViewVec centre{cx, cy};
  double best = -1;
  for (const HostViewEntity& e : scene.entities()) {
    if (!e.alive || e.extents.empty()) continue;
    const double ex = (e.extents.minX + e.extents.maxX) / 2 - cx;
    const double ey = (e.extents.minY + e.extents.maxY) / 2 - cy;
    const double d = ex * ex + ey * ey;
    if (best < 0 || d < best) best = d, centre = {ex + cx, ey + cy};
  }
  HostViewTransform view = extents;
  view.centre = centre;
  view.scale = extents.scale * 100.0;
  return view;
}

}  // namespace

int main(int argc, char** argv) {
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const char* path = nullptr;
  const char* png = nullptr;
  int repeat = 20;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--repeat") == 0 && i + 1 < argc)
      repeat = std::max(1, std::atoi(argv[++i]));
    else if (std::strcmp(argv[i], "--png") == 0 && i + 1 < argc)
      png = argv[++i];
    else if (!path)
      path = argv[i];
    else
      path = nullptr, i = argc;
  }
  if (!path) {
    std::fprintf(stderr, "usage: view_probe FILE [--repeat N] [--png OUT.png]\n");
    return 2;
  }
  QGuiApplication app(argc, argv);
  const long baseline = peakResidentKb();
  QImage image(1600, 1000, QImage::Format_ARGB32_Premultiplied);
  HostViewRenderer renderer;
  try {
    // The load alone, as a converter reads the file, for the ratio; then the view's open.
    {
      const auto start = Clock::now();
      OdDbDatabasePtr db = OdDbDatabase::readFile(path);
      const double load = secondsSince(start);
      std::printf("{\"file\": \"%s\", \"bytes\": %ju, \"load_seconds\": %.4f, ",
                  std::filesystem::path(path).filename().c_str(),
                  static_cast<std::uintmax_t>(std::filesystem::file_size(path)), load);
    }
    const auto start = Clock::now();
    OdDbDatabasePtr db = OdDbDatabase::readFile(path);
    HostViewScene scene(*db);
    const HostViewTransform extents =
        HostViewTransform::fit(scene.extents(), QSizeF(image.size()), 16);
    paintMs(renderer, scene, extents, image);
    const double firstPaint = secondsSince(start);
    if (png) image.save(QString::fromLocal8Bit(png));
    const double extentsMs =
        medianMs(repeat, [&] { return paintMs(renderer, scene, extents, image); });
    const HostViewTransform zoom = zoomedIn(scene, extents);
    const double zoomMs = medianMs(repeat, [&] { return paintMs(renderer, scene, zoom, image); });
    std::size_t notDrawn = 0;
    for (const auto& [type, count] : scene.unsupported()) notDrawn += count;
    std::printf(
        "\"entities\": %zu, \"not_drawn\": %zu, \"first_paint_seconds\": %.4f, "
        "\"extents_ms\": %.2f, \"zoom_ms\": %.3f, \"baseline_rss_kb\": %ld, "
        "\"peak_rss_kb\": %ld}\n",
        scene.entities().size(), notDrawn, firstPaint, extentsMs, zoomMs, baseline,
        peakResidentKb());
  } catch (const OdError& e) {
    std::fprintf(stderr, "view_probe: %s\n", e.what());
    return 1;
  }
  return 0;
}
