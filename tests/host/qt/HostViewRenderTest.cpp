// The drawing view's scene and renderer on real drawings: one drawing holding every kind the
// view draws, painted into an image through a known view and checked pixel by pixel, and every
// readable drawing of the corpus painted at its extents.

#include <QImage>
#include <QPainter>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <unordered_set>

#include "DxfDocument.h"
#include "HostViewRenderer.h"
#include "HostViewScene.h"
#include "OdDbDatabase.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbObject.h"
#include "OdDbSymbolTable.h"
#include "OdError.h"
#include "QtHostSupport.h"

namespace fs = std::filesystem;

namespace {
// Each entity in its own place of a 60 by 40 units field; the checks below look where each
// must and must not leave ink.
const char* kDrawing = R"(
doc = ezdxf.new('R2010')
doc.layers.add('Frozen', color=1).freeze()
doc.layers.add('Blue', color=5)
doc.styles.new('FIXED', dxfattribs={'font': 'DejaVuSans.ttf', 'height': 5})
doc.linetypes.add('LONGDASH', pattern=[2.0, 1.5, -0.5], description='long dash')
inner = doc.blocks.new('INNER')
inner.add_circle((0, 0), 1, dxfattribs={'color': 0})
outer = doc.blocks.new('OUTER', base_point=(5, 5))
outer.add_blockref('INNER', (5, 5), dxfattribs={'color': 0})
loop = doc.blocks.new('LOOP')
loop.add_blockref('LOOP', (1, 1))
loop.add_line((0, 0), (0, 0.5))
tick = doc.blocks.new('TICK')
tick.add_line((0, 0), (0, 1))
label = doc.blocks.new('LABEL')
label.add_attdef('NAME', (0, 3), text='ZZZ', dxfattribs={'height': 1})
zero = doc.blocks.new('ZERO')
zero.add_circle((0, 0), 1)
msp = doc.modelspace()
msp.add_line((1, 1), (9, 1), dxfattribs={'color': 1})
msp.add_line((1, 2.5), (9, 2.5), dxfattribs={'layer': 'Frozen'})
msp.add_line((1, 4), (9, 4))
msp.add_lwpolyline([(12, 5, 0, 0, 1), (18, 5)], format='xyseb', dxfattribs={'color': 3})
msp.add_circle((25, 4), 2, dxfattribs={'color': 250})
msp.add_arc((35, 4), 3, 0, 90)
msp.add_ellipse((5, 10), major_axis=(4, 0), ratio=0.5)
msp.add_text('HHHH', height=2, rotation=90, dxfattribs={'insert': (15, 8)})
hatch = msp.add_hatch(color=5)
hatch.paths.add_polyline_path([(20, 8), (26, 8), (26, 14), (20, 14)])
msp.add_blockref('OUTER', (30, 11), dxfattribs={'color': 6})
msp.add_blockref('LOOP', (58, 1))
msp.add_solid([(40, 8), (46, 8), (40, 12), (46, 12)], dxfattribs={'color': 4})
msp.add_open_spline([(50, 8), (52, 12), (54, 8), (56, 12)])
msp.add_blockref('TICK', (1, 18)).grid(size=(1, 3), spacing=(1, 2))
msp.add_line((10, 18), (30, 18), dxfattribs={'linetype': 'LONGDASH'})
msp.add_3dface([(1, 21), (9, 21), (9, 27), (1, 27)], dxfattribs={'invisible': 1})
msp.add_lwpolyline([(12, 24), (18, 24)], dxfattribs={'const_width': 1})
msp.add_mtext('MT', dxfattribs={'insert': (22, 26), 'char_height': 2})
ref = msp.add_blockref('LABEL', (30, 24))
ref.add_attrib('NAME', 'XY', (30, 24), dxfattribs={'height': 1})
msp.add_point((12, 28))
msp.add_ray((20, 28), (1, 0))
msp.add_xline((0, 29), (1, 0))
msp.add_leader([(42, 22), (48, 22), (50, 24)])
msp.add_linear_dim(base=(45, 33), p1=(42, 30), p2=(52, 30)).render()
msp.add_mesh().vertices = [(54, 30, 0), (56, 30, 0), (55, 32, 0)]
msp.add_line((50, 35), (58, 35))
msp.add_wipeout([(52, 34), (54, 34), (54, 36), (52, 36)])
msp.add_line((53, 34.5), (53, 37))
msp.add_blockref('ZERO', (45, 37), dxfattribs={'layer': 'Blue'})
msp.add_blockref('ZERO', (49, 37), dxfattribs={'layer': 'Frozen'})
msp.add_attdef('TAG', (40, 36), dxfattribs={'height': 1})
msp.add_arc((30, 39.5 - 1e8), 1e8, 10, 175)
msp.add_text('II', height=1, dxfattribs={'insert': (56, 24), 'style': 'FIXED'})
doc.saveas(path)
)";

const QColor kBackground(33, 40, 48);

// The view of the field: 10 pixels a unit, the origin at the bottom left corner.
HostViewTransform field(double scale = 10) {
  HostViewTransform view;
  view.centre = {30, 20};
  view.scale = scale;
  view.device = QSizeF(600, 400);
  return view;
}

QImage render(const HostViewScene& scene, const HostViewTransform& view,
              const std::unordered_set<std::uint32_t>* highlighted = nullptr,
              QColor background = kBackground) {
  QImage image(view.device.toSize(), QImage::Format_RGB32);
  QPainter painter(&image);
  HostViewRenderer renderer;
  HostViewRenderer::Options options;
  options.background = background;
  options.highlighted = highlighted;
  renderer.paint(painter, scene, view, options);
  return image;
}

// The colours within `radius` pixels of the drawing point (x, y) that are not the background.
std::vector<QColor> inkNear(const QImage& image, const HostViewTransform& view, double x, double y,
                            int radius = 1) {
  std::vector<QColor> ink;
  const QPointF at = view.toDevice(x, y);
  for (int dy = -radius; dy <= radius; ++dy) {
    for (int dx = -radius; dx <= radius; ++dx) {
      const int px = static_cast<int>(std::floor(at.x())) + dx;
      const int py = static_cast<int>(std::floor(at.y())) + dy;
      if (!image.rect().contains(px, py)) continue;
      const QColor c = image.pixelColor(px, py);
      if (c != kBackground) ink.push_back(c);
    }
  }
  return ink;
}
bool inked(const QImage& image, const HostViewTransform& view, double x, double y, int radius = 1) {
  return !inkNear(image, view, x, y, radius).empty();
}
bool hasColour(const QImage& image, const HostViewTransform& view, double x, double y,
               QColor want) {
  for (const QColor& c : inkNear(image, view, x, y, 2))
    if (std::abs(c.red() - want.red()) < 8 && std::abs(c.green() - want.green()) < 8 &&
        std::abs(c.blue() - want.blue()) < 8)
      return true;
  return false;
}
// Some ink inside the drawing box [x0, x1] x [y0, y1].
bool inkInBox(const QImage& image, const HostViewTransform& view, double x0, double y0, double x1,
              double y1) {
  const QPointF a = view.toDevice(x0, y1), b = view.toDevice(x1, y0);
  for (int py = static_cast<int>(a.y()); py <= static_cast<int>(b.y()); ++py)
    for (int px = static_cast<int>(a.x()); px <= static_cast<int>(b.x()); ++px)
      if (image.rect().contains(px, py) && image.pixelColor(px, py) != kBackground) return true;
  return false;
}
}  // namespace

class HostViewRenderTest : public QObject {
  Q_OBJECT

 private slots:
  void drawsEveryKindWhereItBelongs();
  void paintsEveryReadableCorpusDrawing();
};

void HostViewRenderTest::drawsEveryKindWhereItBelongs() {
  testsupport::TempDir dir;
  const fs::path file = dir.path() / "kinds.dxf";
  const auto made = testsupport::ezdxf(kDrawing, file);
  QVERIFY2(made.exitCode == 0, made.output.c_str());
  OdDbDatabasePtr db = OdDbDatabase::readFile(file);
  HostViewScene scene(*db);
  QCOMPARE(scene.unsupportedSummary(), QStringLiteral("Not drawn: 1 MESH"));

  const HostViewTransform view = field();
  const QImage image = render(scene, view);
  image.save("/tmp/staudit-qt-shots/view-kinds.png");

  // Lines: the red one, none on a frozen layer.
  QVERIFY(hasColour(image, view, 5, 1, Qt::red));
  QVERIFY(!inked(image, view, 5, 2.5, 2));
  QVERIFY(inked(image, view, 5, 4));
  // A bulge of 1 from (12, 5) to (18, 5) is the half circle below the chord, nothing on it.
  QVERIFY(hasColour(image, view, 15, 2, Qt::green));
  QVERIFY(!inked(image, view, 15, 5, 2));
  // Colour 250 is too dark on this background: the circle shows in the foreground.
  QVERIFY(hasColour(image, view, 27, 4, Qt::white));
  QVERIFY(!inked(image, view, 25, 4, 3));
  // The arc runs over its first quarter only; the ellipse has its two radii.
  QVERIFY(inked(image, view, 35 + 3 * M_SQRT1_2, 4 + 3 * M_SQRT1_2));
  QVERIFY(!inked(image, view, 35 - 3 * M_SQRT1_2, 4 - 3 * M_SQRT1_2, 2));
  QVERIFY(inked(image, view, 9, 10) && inked(image, view, 5, 12));
  QVERIFY(!inked(image, view, 5, 10, 3));
  // Text turned a quarter: ink left of its insertion point going up, none where it would lie
  // unturned.
  QVERIFY(inkInBox(image, view, 13.2, 9, 14.8, 12));
  QVERIFY(!inkInBox(image, view, 16, 8.3, 19, 9.7));
  // The solid hatch is filled inside; a solid's corners 3 and 4 are crosswise (filled at the
  // middle of its left side, which an hourglass would miss).
  QVERIFY(hasColour(image, view, 23, 11, Qt::blue));
  QVERIFY(hasColour(image, view, 40.5, 10, Qt::cyan));
  // Nested inserts whose contents are by block take the outer insert's magenta; the base point
  // of the outer block is subtracted.
  QVERIFY(hasColour(image, view, 31, 11, Qt::magenta));
  QVERIFY(!inked(image, view, 30, 11, 3));
  // A block inserting itself draws its own line once, and the paint ends.
  QVERIFY(inked(image, view, 58, 1.25));
  // The spline runs from its first control point to its last.
  QVERIFY(inked(image, view, 50, 8, 2) && inked(image, view, 56, 12, 2));
  // An insert array of one row and three columns, two units apart.
  for (double x : {1.0, 3.0, 5.0}) QVERIFY(inked(image, view, x, 18.5));
  QVERIFY(!inked(image, view, 2, 18.5, 2) && !inked(image, view, 7, 18.5, 2));
  // The dashed line has its gaps at 10 pixels a unit...
  QVERIFY(inked(image, view, 10.75, 18, 0));
  QVERIFY(!inked(image, view, 11.75, 18, 1) && !inked(image, view, 13.75, 18, 1));
  // ...and is solid at one pixel a unit, where the pattern spans two pixels.
  {
    const HostViewTransform far = field(1);
    const QImage small = render(scene, far);
    for (double x = 11; x < 29; x += 1) QVERIFY(inked(small, far, x, 18, 0));
    // Text two pixels high is a line along its baseline.
    QVERIFY(inked(small, far, 15, 11, 0) && !inked(small, far, 14, 11, 0));
  }
  // The 3D face hides its first edge only.
  QVERIFY(!inked(image, view, 5, 21, 2));
  QVERIFY(inked(image, view, 9, 24) && inked(image, view, 5, 27));
  // A polyline one unit wide is filled across its width.
  QVERIFY(inked(image, view, 15, 24.4, 0) && inked(image, view, 15, 23.6, 0));
  QVERIFY(!inked(image, view, 15, 25, 1));
  // MTEXT hangs below its insertion point.
  QVERIFY(inkInBox(image, view, 22, 24, 25, 26));
  // The insert's attribute shows; the definition in its block does not.
  QVERIFY(inkInBox(image, view, 30, 24, 32, 25));
  QVERIFY(!inkInBox(image, view, 30.2, 27.2, 32, 27.7));
  // A point, a ray one way, a construction line both ways across the whole view.
  QVERIFY(inked(image, view, 12, 28));
  QVERIFY(inked(image, view, 35, 28) && !inked(image, view, 10, 28, 2));
  QVERIFY(inked(image, view, 0.2, 29) && inked(image, view, 59.8, 29));
  // The leader's line, and the dimension drawn from its block.
  QVERIFY(inked(image, view, 45, 22));
  QVERIFY(inked(image, view, 47, 33, 2));
  // Block contents on layer 0 take the insert's layer: its colour, and its being frozen.
  QVERIFY(hasColour(image, view, 46, 37, Qt::blue));
  QVERIFY(!inked(image, view, 50, 37, 2));
  // A text of a style with a fixed height is drawn at the height it stores.
  QVERIFY(inkInBox(image, view, 56, 24, 57.5, 25) && !inkInBox(image, view, 56, 25.6, 58, 27));
  // An attribute definition in model space shows its tag.
  QVERIFY(inkInBox(image, view, 40, 36, 42, 37));
  // A wipeout hides the line drawn before it, not the one drawn after.
  QVERIFY(inked(image, view, 51, 35) && !inked(image, view, 52.5, 35, 1));
  QVERIFY(inked(image, view, 53, 35.5));

  // An arc of a circle a hundred million units across, touching y = 39.5 at x = 30: seen from
  // a hundred thousand pixels a unit it runs along that row, not off by its chords' error.
  {
    HostViewTransform close;
    close.centre = {30, 39.5};
    close.scale = 1e5;
    close.device = QSizeF(200, 100);
    const QImage near = render(scene, close);
    QVERIFY(inked(near, close, 30, 39.5) && inked(near, close, 30.0009, 39.5));
    QVERIFY(!inked(near, close, 30, 39.5003, 2) && !inked(near, close, 30, 39.4997, 2));
  }
  // On a light background colour 7 turns black; the red line stays red.
  const QImage light = render(scene, view, nullptr, Qt::white);
  QVERIFY(hasColour(light, view, 9, 10, Qt::black) && hasColour(light, view, 5, 1, Qt::red));
  // A highlighted entity is drawn over the rest in the highlight colour.
  const std::unordered_set<std::uint32_t> highlighted{0};
  QVERIFY(hasColour(render(scene, view, &highlighted), view, 5, 1, QColor(80, 160, 255)));

  // Erased in the drawing: gone from the scene, the index and the picture. Made invisible
  // (60 = 1): still in the scene, not drawn.
  const OdDbObjectId first = scene.entities()[0].id, third = scene.entities()[2].id;
  first.safeOpenObject(OdDb::kForWrite)->erase();
  scene.refreshObject(first);
  QCOMPARE(scene.entityIndex(first), std::int64_t(-1));
  {
    OdDbObjectPtr line = third.safeOpenObject(OdDb::kForWrite);
    DxfObject& tags = line->dxf();
    tags.insertTag(tags.find(8) + 1, tags.document().makeInteger(60, 1));
  }
  scene.refreshObject(third);
  QCOMPARE(scene.entityIndex(third), std::int64_t(2));
  // Thawed in the layer table: its line shows.
  {
    OdDbObjectPtr table = db->getLayerTableId().openObject();
    const OdDbObjectId frozen = OdDbSymbolTable::cast(table.get())->getAt(OdString(L"Frozen"));
    OdDbObjectPtr layer = frozen.safeOpenObject(OdDb::kForWrite);
    OdDbLayerTableRecord::cast(layer.get())->setIsFrozen(false);
    scene.refreshObject(frozen);
  }
  // Read again and again, an entity's old primitives are compacted away, never piling up.
  const std::size_t primitives = scene.geometry().primitives.size();
  const OdDbObjectId outer = scene.entities()[9].id, loop = scene.entities()[10].id;
  for (int i = 0; i < 100; ++i) scene.refreshObject(outer), scene.refreshObject(loop);
  QVERIFY(scene.geometry().primitives.size() <= 2 * primitives + 1);
  // What cannot be drawn is counted once however often it is read again, and not once erased.
  const auto mesh = std::find_if(scene.entities().begin(), scene.entities().end(), [](auto& e) {
    return e.alive && e.id.openObject()->dxf().type() == "MESH";
  });
  QVERIFY(mesh != scene.entities().end());
  const OdDbObjectId meshId = mesh->id;
  for (int i = 0; i < 3; ++i) scene.refreshObject(meshId);
  QCOMPARE(scene.unsupportedSummary(), QStringLiteral("Not drawn: 1 MESH"));
  meshId.safeOpenObject(OdDb::kForWrite)->erase();
  scene.refreshObject(meshId);
  QCOMPARE(scene.unsupportedSummary(), QString());
  const QImage after = render(scene, view);
  QVERIFY(!inked(after, view, 5, 1, 2) && !inked(after, view, 5, 4, 2));
  QVERIFY(inked(after, view, 5, 2.5) && inked(after, view, 9, 10));
  QVERIFY(hasColour(after, view, 31, 11, Qt::magenta) && inked(after, view, 58, 1.25));
  QVERIFY(inkInBox(after, view, 30, 24, 32, 25) && inked(after, view, 35, 28));
}

void HostViewRenderTest::paintsEveryReadableCorpusDrawing() {
  const auto files = testsupport::corpusDrawings();
  if (files.empty()) QSKIP("the corpus of drawings is absent");
  int painted = 0;
  for (const fs::path& file : files) {
    // Broken drawings the kernel reads anyway are painted too; files it refuses are its own
    // tests' business.
    OdDbDatabasePtr db;
    try {
      db = OdDbDatabase::readFile(file);
    } catch (const OdError&) {
      continue;
    }
    HostViewScene scene(*db);
    // Whatever the readers made of the file's splines, hatches, texts and the rest: numbers.
    const HostViewGeometry& g = scene.geometry();
    auto finite = [](const HostViewVec& p) { return std::isfinite(p.x) && std::isfinite(p.y); };
    QVERIFY2(std::all_of(g.points.begin(), g.points.end(), finite), file.c_str());
    QVERIFY2(std::all_of(g.texts.begin(), g.texts.end(),
                         [&](const HostViewText& t) {
                           return finite(t.origin) && t.height > 0 && std::isfinite(t.advance);
                         }),
             file.c_str());
    const HostViewTransform view = HostViewTransform::fit(scene.extents(), QSizeF(800, 600), 10);
    QImage image(800, 600, QImage::Format_RGB32);
    QPainter painter(&image);
    HostViewRenderer renderer;
    const HostViewRenderer::Stats stats = renderer.paint(painter, scene, view, {});
    painter.end();
    const QString summary = scene.unsupportedSummary();
    qInfo("%s: %zu entities, %zu visited, %zu as dots%s%s", file.filename().c_str(),
          scene.entities().size(), stats.entitiesVisited, stats.entitiesAsDots,
          summary.isEmpty() ? "" : "; ", qPrintable(summary));
    if (qEnvironmentVariableIsSet("STAUDIT_VIEW_SHOTS"))
      image.save(QStringLiteral("/tmp/staudit-qt-shots/view-%1.png")
                     .arg(QString::fromStdString(file.stem().string())));
    ++painted;
    // Circles of no radius are counted, not drawn.
    if (file.filename() == "bad_ezdxf_circle_radius_le_0.dxf")
      QCOMPARE(summary, QStringLiteral("Not drawn: 2 CIRCLE"));
  }
  QVERIFY(painted > 0);
}

QTEST_MAIN(HostViewRenderTest)
#include "HostViewRenderTest.moc"
