// Painting a drawing's model space through the drawing view's scene and renderer into an image:
// the scene built from the database, a paint at the drawing's extents, and a paint zoomed in on
// a hundredth of the extents' width about their middle.
//
//   view_bench [benchmark flags] [FILE...]   (run under QT_QPA_PLATFORM=offscreen)
//
// Without files it paints a synthetic plan of 200,000 small entities (see writePlan), the
// kind of drawing a view spends its time on: many short lines, arcs, circles, bulged polylines,
// texts and inserts spread over a large area, on twenty layers of different colours.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "HostViewRenderer.h"
#include "HostViewScene.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace fs = std::filesystem;

namespace {
const QSizeF kDevice(1600, 1000);

// A release-12 plan of `count` entities in cells of 10 units, 450 cells a row.
void writePlan(const fs::path& path, std::size_t count) {
  std::ofstream out(path);
  out << "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n";
  out << "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n20\n";
  for (int l = 0; l < 20; ++l)
    out << "0\nLAYER\n2\nL" << l << "\n70\n0\n62\n" << (l % 9) + 1 << "\n6\nCONTINUOUS\n";
  out << "0\nENDTAB\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n2\nDOOR\n70\n0\n10\n0"
         "\n20\n0\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n0.9\n21\n0\n0\nARC\n8\n0\n10\n0\n20\n0"
         "\n40\n0.9\n50\n0\n51\n90\n0\nENDBLK\n8\n0\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
  for (std::size_t i = 0; i < count; ++i) {
    const double x = (i / 5 % 450) * 10.0 + (i % 5), y = (i / 5 / 450) * 10.0 + (i % 3);
    out << "0\n";
    switch (i % 6) {
      case 0:
        out << "LINE\n8\nL" << i % 20 << "\n10\n"
            << x << "\n20\n"
            << y << "\n11\n"
            << x + 4 << "\n21\n"
            << y + 1 << "\n";
        break;
      case 1:
        out << "CIRCLE\n8\nL" << i % 20 << "\n10\n" << x << "\n20\n" << y << "\n40\n1.5\n";
        break;
      case 2:
        out << "ARC\n8\nL" << i % 20 << "\n10\n"
            << x << "\n20\n"
            << y << "\n40\n2\n50\n30\n51\n200\n";
        break;
      case 3:
        out << "POLYLINE\n8\nL" << i % 20 << "\n66\n1\n70\n1\n";
        for (int k = 0; k < 4; ++k)
          out << "0\nVERTEX\n8\nL" << i % 20 << "\n10\n"
              << x + (k == 1 || k == 2) * 3 << "\n20\n"
              << y + (k >= 2) * 2 << "\n42\n"
              << (k == 0 ? 0.3 : 0.0) << "\n";
        out << "0\nSEQEND\n8\nL" << i % 20 << "\n";
        break;
      case 4:
        out << "TEXT\n8\nL" << i % 20 << "\n10\n"
            << x << "\n20\n"
            << y << "\n40\n0.5\n1\nRoom " << i << "\n";
        break;
      default:
        out << "INSERT\n8\nL" << i % 20 << "\n2\nDOOR\n10\n"
            << x << "\n20\n"
            << y << "\n50\n"
            << (i % 4) * 90 << "\n";
    }
  }
  out << "0\nENDSEC\n0\nEOF\n";
}

void build(benchmark::State& state, const fs::path& path) {
  OdDbDatabasePtr db = OdDbDatabase::readFile(path);
  for (auto _ : state) {
    HostViewScene scene(*db);
    benchmark::DoNotOptimize(scene.entities().data());
  }
}

// `zoom` 1 shows the extents, 100 a hundredth of their width.
void paint(benchmark::State& state, const fs::path& path, double zoom) {
  OdDbDatabasePtr db = OdDbDatabase::readFile(path);
  HostViewScene scene(*db);
  HostViewTransform view = HostViewTransform::fit(scene.extents(), kDevice, 10);
  view.scale *= zoom;
  QImage image(kDevice.toSize(), QImage::Format_RGB32);
  HostViewRenderer renderer;
  HostViewRenderer::Stats stats;
  for (auto _ : state) {
    QPainter painter(&image);
    stats = renderer.paint(painter, scene, view, {});
  }
  state.counters["visited"] = static_cast<double>(stats.entitiesVisited);
  state.counters["dots"] = static_cast<double>(stats.entitiesAsDots);
  state.counters["primitives"] = static_cast<double>(stats.primitivesDrawn);
}
}  // namespace

int main(int argc, char** argv) {
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  std::vector<fs::path> files(argv + 1, argv + argc);
  const fs::path plan = fs::temp_directory_path() / "view_bench_plan.dxf";
  if (files.empty()) {
    writePlan(plan, 200000);
    files.push_back(plan);
  }
  for (const fs::path& path : files) {
    try {
      OdDbDatabase::readFile(path);
    } catch (const OdError& e) {
      std::fprintf(stderr, "view_bench: skipping %s: %s\n", path.c_str(), e.what());
      continue;
    }
    const std::string name = path.filename().string();
    benchmark::RegisterBenchmark(("Scene/" + name).c_str(), build, path)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("PaintExtents/" + name).c_str(), paint, path, 1.0)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(("PaintHundredth/" + name).c_str(), paint, path, 100.0)
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::error_code ignored;
  fs::remove(plan, ignored);
  return 0;
}
