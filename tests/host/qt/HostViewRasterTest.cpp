// The direct line rasteriser lights the pixels a painter lights with a thin aliased pen: lines in
// every octant, fractional ends, ends far outside the image, a line of zero length, dots; and it
// is offered only for a painter whose output it can stand in for.
//
// What is compared: every pixel one of them lights has a pixel lit by the other within one
// pixel (the two may round a pixel differently along a line, never stray further), and the two
// light nearly as many pixels.

#include <QImage>
#include <QPainter>
#include <QTest>
#include <cmath>
#include <vector>

#include "HostViewRaster.h"

namespace {
constexpr QRgb kInk = 0xFFFFC040u;

QImage blank(QImage::Format format = QImage::Format_RGB32) {
  QImage image(97, 61, format);
  image.fill(Qt::black);
  return image;
}

// Every lit pixel of `a` has a lit pixel of `b` in its 3 x 3 neighbourhood.
bool within1(const QImage& a, const QImage& b, QString* where) {
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      if (a.pixel(x, y) != kInk) continue;
      bool near = false;
      for (int v = std::max(0, y - 1); v <= std::min(a.height() - 1, y + 1) && !near; ++v)
        for (int u = std::max(0, x - 1); u <= std::min(a.width() - 1, x + 1) && !near; ++u)
          near = b.pixel(u, v) == kInk;
      if (!near) {
        *where = QStringLiteral("(%1, %2)").arg(x).arg(y);
        return false;
      }
    }
  return true;
}

int lit(const QImage& image) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) n += image.pixel(x, y) == kInk;
  return n;
}
}  // namespace

class HostViewRasterTest : public QObject {
  Q_OBJECT

 private slots:
  void drawsWhatAPainterDraws();
  void offeredOnlyForAPlainImagePainter();
};

void HostViewRasterTest::drawsWhatAPainterDraws() {
  std::vector<QLineF> lines;
  // All octants and the axes, from a fractional centre, and the same lines reversed.
  for (int k = 0; k < 24; ++k) {
    const double a = k * M_PI / 12 + 0.1;
    const QLineF l(48.3, 30.6, 48.3 + 25 * std::cos(a), 30.6 + 25 * std::sin(a));
    lines.push_back(l);
    lines.push_back(QLineF(l.p2(), l.p1()));
  }
  lines.push_back(QLineF(3, 5, 90, 5));             // horizontal on a pixel edge
  lines.push_back(QLineF(7.5, 2, 7.5, 58));         // vertical through pixel centres
  lines.push_back(QLineF(-40, -25, 140, 90));       // both ends outside, crossing
  lines.push_back(QLineF(-5, 60.5, 120, 3));        // through the bottom and right borders
  lines.push_back(QLineF(0, 0, 96.99, 60.99));      // corner to corner
  lines.push_back(QLineF(-10, -3, 200, -2));        // wholly above: nothing
  lines.push_back(QLineF(20.4, 40.7, 20.4, 40.7));  // zero length: one pixel
  lines.push_back(QLineF(-1e9, 30, 1e9, 31));       // far past both sides

  for (const QLineF& l : lines) {
    QImage mine = blank(), theirs = blank();
    HostViewRaster(mine).line(l.x1(), l.y1(), l.x2(), l.y2(), kInk);
    QPainter painter(&theirs);
    QPen pen(QColor::fromRgb(kInk), 0);
    pen.setCapStyle(Qt::SquareCap);
    painter.setPen(pen);
    if (l.p1() == l.p2())
      painter.drawPoint(l.p1());
    else
      painter.drawLine(l);
    painter.end();
    QString where;
    const QByteArray name = QStringLiteral("line (%1, %2)-(%3, %4) ")
                                .arg(l.x1())
                                .arg(l.y1())
                                .arg(l.x2())
                                .arg(l.y2())
                                .toUtf8();
    QVERIFY2(within1(mine, theirs, &where), (name + "stray pixel " + where.toUtf8()).constData());
    QVERIFY2(within1(theirs, mine, &where), (name + "missing pixel " + where.toUtf8()).constData());
    QVERIFY2(std::abs(lit(mine) - lit(theirs)) <= 2, name.constData());
  }

  // Dots: the pixel the point falls in; outside and not finite: nothing.
  QImage image = blank(QImage::Format_ARGB32_Premultiplied);
  HostViewRaster raster(image);
  raster.dot(10.7, 3.2, kInk);
  raster.dot(-0.5, 3, kInk);
  raster.dot(97, 3, kInk);
  raster.dot(std::nan(""), 3, kInk);
  raster.line(std::nan(""), 0, 5, 5, kInk);
  QCOMPARE(image.pixel(10, 3), kInk);
  QCOMPARE(lit(image), 1);
}

void HostViewRasterTest::offeredOnlyForAPlainImagePainter() {
  QImage image = blank();
  {
    QPainter painter(&image);
    QCOMPARE(HostViewRaster::target(painter), &image);
    painter.setRenderHint(QPainter::Antialiasing);
    QVERIFY(!HostViewRaster::target(painter));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.translate(1, 0);
    QVERIFY(!HostViewRaster::target(painter));
    painter.resetTransform();
    painter.setClipRect(0, 0, 10, 10);
    QVERIFY(!HostViewRaster::target(painter));
  }
  QImage small(8, 8, QImage::Format_RGB16);
  QPainter painter(&small);
  QVERIFY(!HostViewRaster::target(painter));
}

QTEST_MAIN(HostViewRasterTest)
#include "HostViewRasterTest.moc"
