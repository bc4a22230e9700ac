// The drawing view's readers on real tags read by the kernel: spline curves against
// ezdxf's curves, hatch boundaries by their shape and area and against ezdxf's, text and
// multiline text placed by their alignment, and broken tags.

#include <QFontInfo>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <numbers>
#include <sstream>

#include "DxfReader.h"
#include "HostViewHatch.h"
#include "HostViewSpline.h"
#include "HostViewTextLayout.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdError.h"
#include "TestSupport.h"

namespace fs = std::filesystem;
using Points = std::vector<HostViewVec>;

namespace {
constexpr double kPi = std::numbers::pi;

// The entities of a drawing, kept open with it: the model space of a database, or every
// entity of the file as the kernel reads it (attributes and all, wherever they stand).
struct Drawing {
  OdDbDatabasePtr db;
  std::vector<OdDbEntityPtr> entities;
  std::unique_ptr<DxfDocument> doc;
  std::vector<const DxfObject*> objects;
  const DxfObject& operator[](std::size_t i) const { return *objects.at(i); }
};

Drawing modelSpaceOf(OdDbDatabasePtr db) {
  Drawing d{db, {}, nullptr, {}};
  OdDbBlockTableRecordPtr model =
      OdDbBlockTableRecord::cast(db->getModelSpaceId().openObject().get());
  for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step()) {
    d.entities.push_back(OdDbEntity::cast(it->entity().get()));
    d.objects.push_back(&d.entities.back()->dxf());
  }
  return d;
}

// A drawing of only entities, each written as "TYPE | code | value | code | value ...".
Drawing fromTags(std::initializer_list<std::string> entities) {
  std::string file = "0\nSECTION\n2\nENTITIES\n";
  for (const std::string& e : entities) {
    file += "0\n";
    std::size_t from = 0;
    for (std::size_t bar; (bar = e.find(" | ", from)) != std::string::npos; from = bar + 3)
      file += e.substr(from, bar - from) + "\n";
    file += e.substr(from) + "\n";
  }
  file += "0\nENDSEC\n0\nEOF\n";
  Drawing d;
  d.doc = DxfReader::readBuffer(file, "readers.dxf");
  for (const DxfObject& object : d.doc->findSection("ENTITIES")->objects())
    d.objects.push_back(&object);
  return d;
}

// A drawing ezdxf writes with `script` (msp is its model space); no
// entities when it cannot.
Drawing written(const testsupport::TempDir& dir, const std::string& script) {
  const fs::path file = dir.path() / "written.dxf";
  const auto made = testsupport::ezdxf(
      "doc = ezdxf.new('R2010')\nmsp = doc.modelspace()\n" + script + "\ndoc.saveas(path)\n", file);
  if (made.exitCode != 0) {
    qWarning("ezdxf failed: %s", made.output.c_str());
    return {};
  }
  return modelSpaceOf(OdDbDatabase::readFile(file));
}

// Every spline with control points of `file` as ezdxf flattens it, by handle.
std::map<std::uint64_t, Points> referenceSplines(const fs::path& file) {
  const auto out = testsupport::ezdxf(R"(
doc = ezdxf.readfile(path)
for e in doc.modelspace().query('SPLINE'):
    if len(e.control_points) == 0: continue
    t = e.construction_tool()
    size = max(max(abs(a - b) for a, b in zip(p, t.control_points[0])) for p in t.control_points)
    pts = list(t.flattening(max(size, 1e-9) * 1e-6))
    print(e.dxf.handle, ' '.join('%r %r' % (p.x, p.y) for p in pts))
)",
                                      file);
  std::map<std::uint64_t, Points> curves;
  std::istringstream lines(out.output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream in(line);
    std::string handle;
    in >> handle;
    if (handle.empty() || handle.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos)
      continue;  // not a curve: a warning ezdxf printed
    Points& pts = curves[std::stoull(handle, nullptr, 16)];
    for (double x, y; in >> x >> y;) pts.push_back({x, y});
  }
  return curves;
}

double distanceToPolyline(const HostViewVec& p, const Points& line) {
  double best = std::numeric_limits<double>::max();
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const HostViewVec& a = line[i];
    const double dx = line[i + 1].x - a.x, dy = line[i + 1].y - a.y;
    const double l2 = dx * dx + dy * dy;
    const double t = l2 > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / l2, 0.0, 1.0) : 0;
    best = std::min(best, std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy));
  }
  return best;
}

// The larger of the two one-sided distances between polylines, relative to their size.
double relativeDistance(const Points& a, const Points& b) {
  HostViewBox box;
  for (const HostViewVec& p : b) box.add(p.x, p.y);
  double d = 0;
  for (const HostViewVec& p : a) d = std::max(d, distanceToPolyline(p, b));
  for (const HostViewVec& p : b) d = std::max(d, distanceToPolyline(p, a));
  return d / std::max({box.width(), box.height(), 1e-12});
}

double area(const Points& ring) {
  double twice = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const HostViewVec &a = ring[i], &b = ring[(i + 1) % ring.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return std::abs(twice) / 2;
}

HostViewBox boxOf(const Points& pts) {
  HostViewBox box;
  for (const HostViewVec& p : pts) box.add(p.x, p.y);
  return box;
}

bool near(double a, double b, double tolerance = 1e-9) {
  return std::abs(a - b) <= tolerance * std::max(1.0, std::abs(b));
}

#define QVERIFY_NEAR(a, b, tol)                                                               \
  QVERIFY2(near((a), (b), (tol)), qPrintable(QStringLiteral("%1 = %2, expected %3 (line %4)") \
                                                 .arg(#a)                                     \
                                                 .arg((a), 0, 'g', 12)                        \
                                                 .arg((b), 0, 'g', 12)                        \
                                                 .arg(__LINE__)))
}  // namespace

class HostViewReadersTest : public QObject {
  Q_OBJECT

 private slots:
  void splinesFollowTheirControlPoints();
  void splinesAgreeWithEzdxf();
  void hatchBoundariesAreClosedRings();
  void hatchExtentsAgreeWithEzdxf();
  void textIsPlacedByItsAlignment();
  void multilineTextLosesItsCodesAndKeepsItsBlock();
  void brokenTagsGiveNothingWithoutACrash();
};

void HostViewReadersTest::splinesFollowTheirControlPoints() {
  const Drawing d = fromTags({
      // A clamped cubic over a convex control polygon.
      "SPLINE | 70 | 8 | 71 | 3 | 72 | 9 | 73 | 5 | 40 | 0 | 40 | 0 | 40 | 0 | 40 | 0 | 40 | 1 | "
      "40 | 2 | 40 | 2 | 40 | 2 | 40 | 2 | 10 | 0 | 20 | 0 | 30 | 0 | "
      "10 | 1 | 20 | 2 | 30 | 0 | 10 | 3 | 20 | 3 | 30 | 0 | 10 | 5 | 20 | 2 | 30 | 0 | 10 | 6 | "
      "20 | 0 | 30 | 0",
      // A quarter circle of radius 4 as a rational quadratic; the counts are wrong.
      "SPLINE | 70 | 12 | 71 | 2 | 72 | 99 | 73 | 1 | 40 | 0 | 40 | 0 | 40 | 0 | 40 | 1 | 40 | 1 | "
      "40 | 1 | 41 | 1 | 41 | 0.70710678118654757 | 41 | 1 | 10 | 4 | 20 | 0 | 10 | 4 | 20 | 4 | "
      "10 | 0 | 20 | 4",
      // A periodic cubic written with one knot more than points and not wrapped.
      "SPLINE | 70 | 11 | 71 | 3 | 40 | 0 | 40 | 1 | 40 | 2 | 40 | 3 | 40 | 4 | 10 | 1 | 20 | 0 | "
      "10 | 0 | 20 | 1 | 10 | -1 | 20 | 0 | 10 | 0 | 20 | -1",
      // Fit points only, with end tangents.
      "SPLINE | 70 | 8 | 71 | 3 | 74 | 4 | 11 | 0 | 21 | 0 | 11 | 3 | 21 | 2 | 11 | 6 | 21 | 0 | "
      "11 | 9 | 21 | 2 | 12 | 0 | 22 | 1 | 13 | 1 | 23 | 0",
  });

  const Points cubic = HostViewSpline::points(d[0]);
  QVERIFY(cubic.size() > 16);
  QVERIFY_NEAR(cubic.front().x, 0.0, 1e-12);
  QVERIFY_NEAR(cubic.back().x, 6.0, 1e-12);
  QVERIFY_NEAR(cubic.back().y, 0.0, 1e-12);
  const Points hull = {{0, 0}, {1, 2}, {3, 3}, {5, 2}, {6, 0}};
  for (const HostViewVec& p : cubic) {
    for (std::size_t i = 0; i < hull.size(); ++i) {
      const HostViewVec &a = hull[i], &b = hull[(i + 1) % hull.size()];
      const double side = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
      QVERIFY2(side <= 1e-9, qPrintable(QStringLiteral("%1 %2 outside").arg(p.x).arg(p.y)));
    }
  }

  const Points quarter = HostViewSpline::points(d[1]);
  QVERIFY(quarter.size() > 8);
  for (const HostViewVec& p : quarter) QVERIFY_NEAR(std::hypot(p.x, p.y), 4.0, 1e-12);
  QVERIFY_NEAR(quarter.back().y, 4.0, 1e-12);

  // Closed and symmetric: every point has its mirror images on the curve too.
  const Points loop = HostViewSpline::points(d[2]);
  QVERIFY(loop.size() > 16);
  QVERIFY_NEAR(loop.front().x, loop.back().x, 1e-12);
  QVERIFY_NEAR(loop.front().y, loop.back().y, 1e-12);
  Points mirrored;
  for (const HostViewVec& p : loop) mirrored.push_back({-p.y, p.x});
  QVERIFY(relativeDistance(loop, mirrored) < 1e-3);

  const Points fitted = HostViewSpline::points(d[3]);
  const Points fit = {{0, 0}, {3, 2}, {6, 0}, {9, 2}};
  for (const HostViewVec& f : fit) QVERIFY(distanceToPolyline(f, fitted) < 1e-12);
  // Leaves along its start tangent (straight up) and ends along its end tangent (right).
  QVERIFY(std::abs(fitted[1].x) < 0.2 * std::abs(fitted[1].y));
  const HostViewVec& last = fitted[fitted.size() - 2];
  QVERIFY(std::abs(fitted.back().y - last.y) < 0.2 * std::abs(fitted.back().x - last.x));
}

void HostViewReadersTest::splinesAgreeWithEzdxf() {
  testsupport::TempDir dir;
  const Drawing d = written(dir, R"(
pts = [(0, 0), (2, 5), (4, -1), (7, 3), (9, 0), (12, 4), (14, 1)]
msp.add_open_spline(pts)
msp.add_open_spline(pts, degree=2)
msp.add_rational_spline(pts, [1, 3, 0.5, 2, 1, 0.25, 1])
s = msp.add_spline()
s.set_closed([(x, y, 0) for x, y in pts[:5]])
s = msp.add_spline()
s.set_uniform(pts)
msp.add_spline([(0, 0), (3, 4), (8, 3), (10, -2), (15, 0)])
s = msp.add_spline([(0, 0), (3, 4), (8, 3), (10, -2), (15, 0)])
s.dxf.start_tangent = (1, 2, 0)
s.dxf.end_tangent = (1, -1, 0)
)");
  QCOMPARE(d.objects.size(), std::size_t(7));
  const auto reference = referenceSplines(dir.path() / "written.dxf");
  QCOMPARE(reference.size(), std::size_t(5));
  for (std::size_t i = 0; i < 5; ++i) {
    const Points mine = HostViewSpline::points(d[i]);
    QVERIFY2(relativeDistance(mine, reference.at(d[i].handle())) < 2e-3,
             qPrintable(QString::number(i)));
  }
  // Through fit points: the same curve given its end tangents; without them the reference
  // guesses them its own way.
  const auto fitted = testsupport::ezdxf(R"(
for e in ezdxf.readfile(path).modelspace().query('SPLINE')[-2:]:
    print(' '.join('%r %r' % (p.x, p.y) for p in e.construction_tool().flattening(1e-5)))
)",
                                         dir.path() / "written.dxf");
  std::istringstream fittedLines(fitted.output);
  for (std::size_t i : {5, 6}) {
    Points theirs;
    std::string line;
    std::getline(fittedLines, line);
    std::istringstream in(line);
    for (double x, y; in >> x >> y;) theirs.push_back({x, y});
    const double apart = relativeDistance(HostViewSpline::points(d[i]), theirs);
    QVERIFY2(apart < (i == 5 ? 0.01 : 1e-3), qPrintable(QString::number(apart)));
  }

  const fs::path corpus = testsupport::corpusDir();
  if (corpus.empty()) QSKIP("the shared corpus of drawings is absent");
  for (const char* name :
       {"r14_godxf_issue53_splines.dxf", "r2010_qcad_example00_hatch_spline.dxf"}) {
    const Drawing real = modelSpaceOf(OdDbDatabase::readFile(corpus / name));
    const auto curves = referenceSplines(corpus / name);
    std::size_t compared = 0;
    for (const OdDbEntityPtr& e : real.entities) {
      auto found = curves.find(e->dxf().handle());
      if (e->dxf().type() != "SPLINE" || found == curves.end()) continue;
      QVERIFY2(relativeDistance(HostViewSpline::points(e->dxf()), found->second) < 2e-3, name);
      ++compared;
    }
    QVERIFY2(compared > 0 && compared == curves.size(), name);
  }
}

void HostViewReadersTest::hatchBoundariesAreClosedRings() {
  testsupport::TempDir dir;
  const Drawing d = written(dir, R"(
h = msp.add_hatch()
h.paths.add_polyline_path([(0, 0, 0), (10, 0, 1), (10, 10, 0), (0, 10, 0)], is_closed=True)
h.paths.add_polyline_path([(2, 2), (4, 2), (4, 4), (2, 4)], is_closed=True)
h = msp.add_hatch()
h.set_pattern_fill('ANSI31', scale=0.5)
p = h.paths.add_edge_path()
p.add_line((0, 0), (10, 0))
p.add_arc((10, 5), 5, -90, 90)
p.add_line((10, 10), (0, 10))
p.add_arc((0, 5), 5, -90, 90, ccw=False)
h = msp.add_hatch()
h.set_pattern_fill('ANSI31')
p = h.paths.add_edge_path()
p.add_ellipse((50, 0), (10, 0), 0.5, 0, 180)
p.add_line((40, 0), (60, 0))
p = h.paths.add_edge_path()
p.add_ellipse((50, 20), (10, 0), 0.5, 0, 180, ccw=False)
p.add_line((60, 20), (40, 20))
p = h.paths.add_edge_path()
p.add_line((15, 30), (0, 30))
p.add_spline(control_points=[(0, 30), (5, 40), (10, 40), (15, 30)],
             fit_points=[(0, 30), (7.5, 37.5), (15, 30)])
)");
  QCOMPARE(d.objects.size(), std::size_t(3));
  HostViewHatch::Boundary b;
  QVERIFY(HostViewHatch::read(d[0], b));
  QVERIFY(b.solid);
  QCOMPARE(b.rings.size(), std::size_t(2));
  QVERIFY_NEAR(area(b.rings[0]), 100 + kPi * 12.5, 2e-3);
  QVERIFY_NEAR(boxOf(b.rings[0]).maxX, 15.0, 1e-9);
  QVERIFY_NEAR(area(b.rings[1]), 4.0, 1e-9);

  // The clockwise arc bulges into the square (through 5, 5), not out of it.
  QVERIFY(HostViewHatch::read(d[1], b));
  QVERIFY(!b.solid);
  QCOMPARE(b.rings.size(), std::size_t(1));
  QVERIFY_NEAR(area(b.rings[0]), 100.0, 2e-3);
  QVERIFY_NEAR(boxOf(b.rings[0]).minX, 0.0, 1e-9);
  QVERIFY_NEAR(boxOf(b.rings[0]).maxX, 15.0, 1e-9);
  QVERIFY(distanceToPolyline({5, 5}, b.rings[0]) < 1e-9);

  // Half ellipses, the clockwise one over its top; a line closed by a spline edge that
  // carries fit data, which the path's count of source objects follows.
  QVERIFY(HostViewHatch::read(d[2], b));
  QCOMPARE(b.rings.size(), std::size_t(3));
  QVERIFY_NEAR(area(b.rings[0]), kPi * 25, 2e-3);
  QVERIFY_NEAR(boxOf(b.rings[0]).minY, 0.0, 1e-9);
  QVERIFY_NEAR(area(b.rings[1]), kPi * 25, 2e-3);
  QVERIFY_NEAR(boxOf(b.rings[1]).maxY, 25.0, 1e-9);
  QVERIFY_NEAR(boxOf(b.rings[2]).maxY, 37.5, 1e-9);
  QVERIFY_NEAR(area(b.rings[2]), 75.0, 5e-3);  // x = 15 t, y = 30 + 30 t (1 - t)
}

void HostViewReadersTest::hatchExtentsAgreeWithEzdxf() {
  const fs::path corpus = testsupport::corpusDir();
  if (corpus.empty()) QSKIP("the shared corpus of drawings is absent");
  // Polyline paths with bulges, edge paths of every kind in both turning directions, hatches
  // in blocks; flat ones only, where the plane's coordinates are the drawing's.
  const char* const script = R"(
from ezdxf import path as paths
doc = ezdxf.readfile(path)
for e in doc.entitydb.values():
    if e.dxftype() != 'HATCH' or not e.dxf.extrusion.isclose((0, 0, 1)): continue
    try:
        pts = [v for p in paths.from_hatch(e) for v in p.flattening(1e-4)]
    except Exception:
        continue
    if pts:
        print(e.dxf.handle, min(v.x for v in pts), min(v.y for v in pts),
              max(v.x for v in pts), max(v.y for v in pts))
)";
  std::size_t compared = 0;
  for (const char* name :
       {"r2010_qcad_example00_hatch_spline.dxf", "r2018_godxf_test_hatch.dxf",
        "r2000_zcad_cyrillic_cp1251_48layers.dxf", "r2013_viewerex_chinese_utf8_landscape.dxf",
        "r2007_godxf_texts_in_block.dxf", "r14_dxf2gcode_uap212718_33layers.dxf",
        "r2018_acsharp_sample_ascii.dxf"}) {
    const auto out = testsupport::ezdxf(script, corpus / name);
    std::map<std::uint64_t, HostViewBox> theirs;
    std::istringstream lines(out.output);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream in(line);
      std::string handle;
      HostViewBox box;
      if (in >> handle >> box.minX >> box.minY >> box.maxX >> box.maxY)
        theirs[std::stoull(handle, nullptr, 16)] = box;
    }
    QVERIFY2(!theirs.empty(), (name + (": " + out.output)).c_str());
    std::unique_ptr<DxfDocument> doc = DxfReader::readFile(corpus / name);
    doc->forEachObject([&](const DxfObject& tags) {
      auto found = theirs.find(tags.handle());
      if (tags.type() != "HATCH" || found == theirs.end()) return;
      HostViewHatch::Boundary b;
      HostViewBox mine;
      if (HostViewHatch::read(tags, b))
        for (const Points& ring : b.rings) mine.add(boxOf(ring));
      const HostViewBox& box = found->second;
      const double slack = 2e-3 * std::max({box.width(), box.height(), 1e-9});
      const bool same =
          std::abs(mine.minX - box.minX) <= slack && std::abs(mine.minY - box.minY) <= slack &&
          std::abs(mine.maxX - box.maxX) <= slack && std::abs(mine.maxY - box.maxY) <= slack;
      if (!same)
        qWarning("%s hatch %llX: %g %g %g %g, reference %g %g %g %g", name,
                 static_cast<unsigned long long>(tags.handle()), mine.minX, mine.minY, mine.maxX,
                 mine.maxY, box.minX, box.minY, box.maxX, box.maxY);
      QVERIFY(same);
      ++compared;
    });
  }
  QVERIFY(compared > 100);
}

void HostViewReadersTest::textIsPlacedByItsAlignment() {
  const Drawing d = fromTags({
      "TEXT | 10 | 1 | 20 | 2 | 40 | 2.5 | 1 | Left",
      "TEXT | 10 | 0 | 20 | 0 | 11 | 50 | 21 | 10 | 40 | 2 | 72 | 1 | 1 | Centre",
      "TEXT | 10 | 0 | 20 | 0 | 11 | 50 | 21 | 20 | 40 | 2 | 72 | 2 | 1 | Right",
      "TEXT | 10 | 0 | 20 | 30 | 11 | 20 | 21 | 30 | 40 | 2 | 72 | 3 | 1 | Aligned",
      "TEXT | 10 | 0 | 20 | 40 | 11 | 0 | 21 | 60 | 40 | 2 | 72 | 5 | 1 | Fit",
      "TEXT | 10 | 0 | 20 | 0 | 11 | 50 | 21 | 50 | 40 | 2 | 72 | 4 | 1 | Middle",
      "TEXT | 10 | 0 | 20 | 0 | 11 | 50 | 21 | 60 | 40 | 2 | 50 | 90 | 72 | 2 | 73 | 3 | 1 | Top "
      "right",
      "TEXT | 10 | 0 | 20 | 0 | 40 | 1 | 1 | 45%%d %%c10 %%p1 100%%% %%uU%%u %%065 %%z",
      "ATTRIB | 10 | 0 | 20 | 0 | 11 | 0 | 21 | 80 | 40 | 2 | 1 | V | 2 | TAG | 70 | 0 | 73 | 1 | "
      "74 | 3",
      "ATTDEF | 10 | 0 | 20 | 0 | 40 | 2 | 1 |  | 3 | Prompt | 2 | TAG | 70 | 0",
      "TEXT | 10 | 1 | 20 | 2 | 40 | 2.5 | 41 | 0.5 | 1 | Left",
      R"(ATTRIB | 10 | 0 | 20 | 0 | 40 | 2 | 1 |  | 2 | TAG | 70 | 0 | 74 | 3 | 101 | Embedded )"
      R"(Object | 10 | 5 | 20 | 6 | 40 | 2 | 71 | 1 | 1 | two\Plines)",
      R"(ATTRIB | 10 | 0 | 20 | 0 | 40 | 2 | 1 |  | 2 | TAG | 70 | 0 | 230 | -1 | 101 | Embedded )"
      R"(Object | 10 | 5 | 20 | 6 | 40 | 2 | 71 | 1 | 1 | below)",
  });
  HostViewTextLayout layout;
  const QString family = HostViewTextLayout::familyFor(QStringLiteral("DejaVuSans.ttf"));
  QCOMPARE(family, QStringLiteral("DejaVu Sans"));
  const HostViewTextStyle style{family, 1.0, 0.0, 0.0};
  auto one = [&](std::size_t i, const HostViewTextStyle& s) {
    const std::vector<HostViewText> lines = layout.text(d[i], s);
    if (lines.size() != 1) qFatal("entity %zu gave %zu lines", i, lines.size());
    return lines[0];
  };

  HostViewText t = one(0, style);
  QCOMPARE(t.text, QStringLiteral("Left"));
  QVERIFY_NEAR(t.origin.x, 1.0, 1e-12);
  QVERIFY_NEAR(t.origin.y, 2.0, 1e-12);
  QVERIFY_NEAR(t.height, 2.5, 1e-12);
  QVERIFY(t.advance > 2.5);
  QVERIFY_NEAR(t.advance, layout.advance(QStringLiteral("Left"), family) * 2.5, 1e-12);
  t = one(1, style);
  QVERIFY_NEAR(t.origin.x, 50 - t.advance / 2, 1e-12);
  QVERIFY_NEAR(t.origin.y, 10.0, 1e-12);
  t = one(2, style);
  QVERIFY_NEAR(t.origin.x, 50 - t.advance, 1e-12);
  t = one(3, style);
  QVERIFY_NEAR(t.advance, 20.0, 1e-12);
  QVERIFY_NEAR(t.height * layout.advance(t.text, family), 20.0, 1e-12);
  QVERIFY_NEAR(t.origin.y, 30.0, 1e-12);
  t = one(4, style);  // fit: stretched, not taller, along its two points
  QVERIFY_NEAR(t.height, 2.0, 1e-12);
  QVERIFY_NEAR(t.direction, kPi / 2, 1e-12);
  QVERIFY_NEAR(t.widthFactor * 2 * layout.advance(t.text, family), 20.0, 1e-12);
  t = one(5, style);
  QVERIFY_NEAR(t.origin.x, 50 - t.advance / 2, 1e-12);
  QVERIFY_NEAR(t.origin.y, 49.0, 1e-12);
  t = one(6, style);  // turned a quarter: its top is towards -x
  QVERIFY_NEAR(t.origin.x, 52.0, 1e-12);
  QVERIFY_NEAR(t.origin.y, 60 - t.advance, 1e-12);
  QCOMPARE(one(7, style).text, QString::fromUtf8("45° ⌀10 ±1 100% U A %%z"));
  QVERIFY_NEAR(one(8, style).origin.y, 78.0, 1e-12);  // 74 is an attribute's vertical
  QCOMPARE(one(9, style).text, QStringLiteral("TAG"));
  // A multiline attribute shows the text embedded in it.
  const std::vector<HostViewText> embedded = layout.text(d[11], style);
  QCOMPARE(embedded.size(), std::size_t(2));
  QCOMPARE(embedded[1].text, QStringLiteral("lines"));
  QVERIFY_NEAR(embedded[0].origin.y, 4.0, 1e-12);
  QVERIFY_NEAR(one(12, style).origin.x, -5.0, 1e-12);  // in its plane, seen from below

  // A style's fixed height wins; its width factor counts where the text gives none.
  const HostViewTextStyle fixed{family, 0.8, 0.25, 5.0};
  t = one(0, fixed);
  QVERIFY_NEAR(t.height, 5.0, 1e-12);
  QVERIFY_NEAR(t.widthFactor, 0.8, 1e-12);
  QVERIFY_NEAR(t.oblique, 0.25, 1e-12);
  QVERIFY_NEAR(t.advance, layout.advance(t.text, family) * 4, 1e-12);
  QVERIFY_NEAR(one(10, fixed).widthFactor, 0.5, 1e-12);

  // Font files to installed families: by name, else monospace for the plain shape fonts.
  QCOMPARE(HostViewTextLayout::familyFor(QStringLiteral("C:\\Fonts\\DEJAVUSANSMONO.TTF")),
           QStringLiteral("DejaVu Sans Mono"));
  for (const char* shape : {"txt", "txt.shx", "monotxt.shx"})
    QVERIFY(
        QFontInfo(QFont(HostViewTextLayout::familyFor(QString::fromLatin1(shape)))).fixedPitch());
  for (const char* other : {"romans.shx", "arial.ttf", "gbcbig.shx"}) {
    const QString f = HostViewTextLayout::familyFor(QString::fromLatin1(other));
    QVERIFY2(!f.isEmpty() && !QFontInfo(QFont(f)).fixedPitch(), other);
  }
  QCOMPARE(HostViewTextLayout::familyFor(QString()), QString());
}

void HostViewReadersTest::multilineTextLosesItsCodesAndKeepsItsBlock() {
  HostViewTextLayout layout;
  const QString family = HostViewTextLayout::familyFor(QStringLiteral("DejaVuSans.ttf"));
  const HostViewTextStyle style{family, 1.0, 0.0, 0.0};
  // Wide enough for one word, not two.
  const double width = 1.1 * layout.advance(QStringLiteral("www"), family);
  const Drawing d = fromTags({
      R"(MTEXT | 10 | 100 | 20 | 100 | 40 | 2 | 71 | 5 | 3 | {\fArial|b1|i0|c0;\C1;Room} | 1 | )"
      R"(\P\H2.5x;12.5 m\S2^;)",
      R"(MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 71 | 1 | 1 | \A1;\W0.8;\Q15;\T1.1;\pxqc;\Lun\l\Oov\o)"
      R"(\Kst\k a\~b \\ \{x\} {\fArial;z} \S1#2; \S1/4; %%d)",
      "MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 41 | " + std::to_string(width) +
          " | 44 | 2 | 11 | 0 | 21 | 1 | 31 | 0 | 71 | 7 | 1 | www www ww",
      "MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 1 | ",
      "MTEXT | 10 | 10 | 20 | 5 | 40 | 1 | 11 | -1 | 21 | 0 | 210 | 0 | 220 | 0 | 230 | -1 | 1 | m",
  });

  // Middle centre: each line centred on the insertion point, the block's middle on it.
  std::vector<HostViewText> lines = layout.mtext(d[0], style);
  QCOMPARE(lines.size(), std::size_t(2));
  QCOMPARE(lines[0].text, QStringLiteral("Room"));
  QCOMPARE(lines[1].text, QStringLiteral("12.5 m2"));
  for (const HostViewText& line : lines) QVERIFY_NEAR(line.origin.x, 100 - line.advance / 2, 1e-12);
  QVERIFY_NEAR(lines[0].origin.y - lines[1].origin.y, 2 * 5.0 / 3, 1e-12);
  QVERIFY_NEAR(lines[0].origin.y + 2 - 100, 100 - lines[1].origin.y, 1e-12);

  lines = layout.mtext(d[1], style);
  QCOMPARE(lines.size(), std::size_t(1));
  QCOMPARE(lines[0].text, QString::fromUtf8("unovst a\u00A0b \\ {x} z 1/2 1/4 °"));
  QVERIFY_NEAR(lines[0].origin.x, 0.0, 1e-12);  // top left: the first baseline a height down
  QVERIFY_NEAR(lines[0].origin.y, -1.0, 1e-12);

  // Wrapped word by word, turned a quarter by its direction, lines twice as far apart, the
  // last line's descenders on the insertion point (bottom left).
  lines = layout.mtext(d[2], style);
  QCOMPARE(lines.size(), std::size_t(3));
  QCOMPARE(lines[2].text, QStringLiteral("ww"));
  const double descent = layout.descent(family);
  QVERIFY(descent > 0.1 && descent < 0.5);
  for (std::size_t i = 0; i < 3; ++i) {
    QVERIFY_NEAR(lines[i].direction, kPi / 2, 1e-12);
    QVERIFY_NEAR(lines[i].origin.x, -(2.0 - static_cast<double>(i)) * 10 / 3 - descent, 1e-9);
    QVERIFY_NEAR(lines[i].origin.y, 0.0, 1e-9);
  }
  QVERIFY(layout.mtext(d[3], style).empty());
  // Seen from below, in the drawing's coordinates: along its direction, lines stacked down.
  lines = layout.mtext(d[4], style);
  QCOMPARE(lines.size(), std::size_t(1));
  QVERIFY_NEAR(lines[0].origin.x, 10.0, 1e-12);
  QVERIFY_NEAR(lines[0].origin.y, 4.0, 1e-12);
  QVERIFY_NEAR(lines[0].direction, kPi, 1e-12);
}

void HostViewReadersTest::brokenTagsGiveNothingWithoutACrash() {
  const Drawing d = fromTags({
      // Splines: a knot short, knots going back, a point without y, a weight below zero, a
      // point that is no number beside a single fit point, degrees 0 and 99.
      "SPLINE | 71 | 3 | 40 | 0 | 40 | 0 | 40 | 0 | 40 | 0 | 40 | 1 | 40 | 1 | 40 | 1 | 10 | 0 | "
      "20 | 0 | 10 | 1 | 20 | 1 | 10 | 2 | 20 | 0 | 10 | 3 | 20 | 1",
      "SPLINE | 71 | 1 | 40 | 0 | 40 | 0 | 40 | 1 | 40 | 0.5 | 10 | 0 | 20 | 0 | 10 | 1 | 20 | 1",
      "SPLINE | 71 | 1 | 40 | 0 | 40 | 0 | 40 | 1 | 40 | 1 | 10 | 0 | 10 | 1 | 20 | 1",
      "SPLINE | 70 | 4 | 71 | 1 | 40 | 0 | 40 | 0 | 40 | 1 | 40 | 1 | 41 | 1 | 41 | -1 | 10 | 0 | "
      "20 | 0 | 10 | 1 | 20 | 1",
      "SPLINE | 71 | 1 | 40 | 0 | 40 | 0 | 40 | 1 | 40 | 1 | 10 | nan | 20 | 0 | 10 | 1 | 20 | 1 | "
      "11 | 0 | 21 | 0",
      "SPLINE | 71 | 0 | 40 | 0 | 40 | 1 | 10 | 0 | 20 | 0",
      "SPLINE | 71 | 99 | 40 | 0 | 40 | 1 | 10 | 0 | 20 | 0",
      // Hatches: no path count; a polyline path cut short; an edge path cut short and one of
      // an unknown edge before a good path; a vertex that is no number.
      "HATCH | 2 | SOLID | 70 | 1 | 92 | 2 | 72 | 0 | 73 | 1 | 93 | 3 | 10 | 0 | 20 | 0 | 10 | 1 | "
      "20 | 0 | 10 | 1 | 20 | 1",
      "HATCH | 2 | X | 70 | 0 | 91 | 1 | 92 | 2 | 72 | 0 | 73 | 1 | 93 | 4 | 10 | 0 | 20 | 0 | 10 "
      "| "
      "1 | 20 | 0",
      "HATCH | 2 | X | 70 | 0 | 91 | 3 | 92 | 1 | 93 | 2 | 72 | 1 | 10 | 0 | 20 | 0 | 11 | 10 | 21 "
      "| 0 | 72 | 2 | 10 | 10 | 20 | 5 | 50 | 0 | 51 | 90 | 92 | 1 | 93 | 1 | 72 | 9 | 10 | 0 | 20 "
      "| 0 | 92 | 2 | 72 | 0 | 73 | 1 | 93 | 3 | 10 | 0 | 20 | 0 | 10 | 4 | 20 | 0 | 10 | 4 | 20 | "
      "3 | 97 | 1 | 330 | 1F | 75 | 1",
      "HATCH | 2 | X | 70 | 0 | 91 | 1000000 | 92 | 2 | 93 | 3 | 10 | 0 | 20 | nan | 10 | 4 | 20 | "
      "0 | 10 | 4 | 20 | 3",
      // Texts: no point, no height, a point that is no number; aligned without its second
      // point stays at its first.
      "TEXT | 40 | 1 | 1 | x",
      "TEXT | 10 | 0 | 20 | 0 | 1 | x",
      "TEXT | 10 | nan | 20 | 0 | 40 | 1 | 1 | x",
      "TEXT | 10 | 3 | 20 | 4 | 40 | 1 | 72 | 3 | 1 | x",
      // Multiline texts with codes cut short, a height that is no number, an attachment
      // that is none.
      R"(MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 1 | a\S1^2)",
      R"(MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 1 | b\H2)",
      R"(MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 1 | c\)",
      "MTEXT | 10 | 0 | 20 | 0 | 40 | nan | 1 | d",
      "MTEXT | 10 | 0 | 20 | 0 | 40 | 1 | 71 | 42 | 1 | e",
      // A polygon with its version where a hatch says solid: not solid.
      "MPOLYGON | 70 | 1 | 2 | X | 71 | 0 | 91 | 1 | 92 | 2 | 72 | 0 | 73 | 1 | 93 | 3 | 10 | 0 | "
      "20 | 0 | 10 | 4 | 20 | 0 | 10 | 4 | 20 | 3",
  });
  for (std::size_t i = 0; i < 7; ++i)
    QVERIFY2(HostViewSpline::points(d[i]).empty(), qPrintable(QString::number(i)));

  HostViewHatch::Boundary b;
  QVERIFY(!HostViewHatch::read(d[7], b));
  QVERIFY(b.solid && b.rings.empty());
  QVERIFY(!HostViewHatch::read(d[8], b));
  QVERIFY(HostViewHatch::read(d[9], b));
  QCOMPARE(b.rings.size(), std::size_t(1));
  QVERIFY_NEAR(area(b.rings[0]), 6.0, 1e-12);
  QVERIFY(!HostViewHatch::read(d[10], b));
  QVERIFY(HostViewHatch::read(d[20], b));
  QVERIFY(!b.solid && b.rings.size() == 1);

  HostViewTextLayout layout;
  const HostViewTextStyle style;
  for (std::size_t i = 11; i < 14; ++i)
    QVERIFY2(layout.text(d[i], style).empty(), qPrintable(QString::number(i)));
  const std::vector<HostViewText> aligned = layout.text(d[14], style);
  QVERIFY(aligned.size() == 1 && aligned[0].origin.x == 3 && aligned[0].origin.y == 4);
  const char* const shown[] = {"a1/2", "b2", "c", nullptr, "e"};
  for (std::size_t i = 0; i < 5; ++i) {
    const std::vector<HostViewText> lines = layout.mtext(d[15 + i], style);
    QCOMPARE(lines.size(), std::size_t(shown[i] ? 1 : 0));
    if (shown[i]) QCOMPARE(lines[0].text, QString::fromLatin1(shown[i]));
  }
}

QTEST_MAIN(HostViewReadersTest)
#include "HostViewReadersTest.moc"
