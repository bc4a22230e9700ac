#include "HostQtDrawingPainter.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <numbers>

#include "DxfObject.h"
#include "HostQtText.h"
#include "OdAtomicFile.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdDbLayerTableRecord.h"
#include "OdError.h"

namespace {
constexpr double kPi = std::numbers::pi;
// Arcs become chords of at most this angle: smooth enough on a page, few enough to paint.
constexpr double kChordAngle = kPi / 36.0;

struct Vertex {
  double x = 0, y = 0;
  double bulge = 0;  // tan(quarter of the arc's angle) to the next vertex; 0 for a straight edge
};

// The reals of the first tags with codes `codes` in `obj`, or false when one is missing or not
// a finite number.
template <std::size_t N>
bool readReals(const DxfObject& obj, const int (&codes)[N], double (&values)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    const std::size_t at = obj.find(codes[i]);
    if (at == DxfObject::npos) return false;
    values[i] = obj.real(at);
    if (!std::isfinite(values[i])) return false;
  }
  return true;
}

double realOr(const DxfObject& obj, int code, double dflt) {
  const std::size_t at = obj.find(code);
  if (at == DxfObject::npos) return dflt;
  const double value = obj.real(at);
  return std::isfinite(value) ? value : dflt;
}

long long integerOr(const DxfObject& obj, int code, long long dflt) {
  const std::size_t at = obj.find(code);
  return at == DxfObject::npos ? dflt : obj.integer(at);
}

// The plane of a planar object (its object coordinate system): the extrusion direction
// (210/220/230) and the axes the arbitrary-axis rule gives it, at the object's elevation. Maps
// the object's own x, y to the drawing's, seen from above.
struct Plane {
  double ax[3] = {1, 0, 0};
  double ay[3] = {0, 1, 0};
  double n[3] = {0, 0, 1};
  double z = 0;

  // The plane of `obj`, at the elevation of group `elevationCode`.
  static Plane of(const DxfObject& obj, int elevationCode) {
    Plane p;
    p.z = realOr(obj, elevationCode, 0.0);
    double n[3] = {realOr(obj, 210, 0.0), realOr(obj, 220, 0.0), realOr(obj, 230, 1.0)};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (!(length > 1e-12) || !std::isfinite(length)) return p;
    for (double& c : n) c /= length;
    // Near the drawing's z axis the x axis is world y cross n, else world z cross n.
    double a[3];
    if (std::abs(n[0]) < 1.0 / 64 && std::abs(n[1]) < 1.0 / 64) {
      a[0] = n[2], a[1] = 0, a[2] = -n[0];
    } else {
      a[0] = -n[1], a[1] = n[0], a[2] = 0;
    }
    const double al = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    for (int i = 0; i < 3; ++i) {
      p.n[i] = n[i];
      p.ax[i] = a[i] / al;
    }
    p.ay[0] = p.n[1] * p.ax[2] - p.n[2] * p.ax[1];
    p.ay[1] = p.n[2] * p.ax[0] - p.n[0] * p.ax[2];
    p.ay[2] = p.n[0] * p.ax[1] - p.n[1] * p.ax[0];
    return p;
  }

  QPointF map(double x, double y) const {
    return QPointF(x * ax[0] + y * ay[0] + z * n[0], x * ax[1] + y * ay[1] + z * n[1]);
  }
};

// One channel of the hue ring: 0 to 1 over the 24 hues of 15 degrees.
double hueChannel(int hue, int offset) {
  const int h = (hue + offset) % 24;
  if (h < 4) return 1.0;
  if (h < 8) return 1.0 - (h - 4) / 4.0;
  if (h < 16) return 0.0;
  if (h < 20) return (h - 16) / 4.0;
  return 1.0;
}
}  // namespace

unsigned HostQtDrawingPainter::aciToRgb(int index) {
  static constexpr unsigned kBasic[10] = {0xFFFFFF, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                          0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
  static constexpr unsigned kGreys[6] = {0x333333, 0x505050, 0x696969,
                                         0x828282, 0xBEBEBE, 0xFFFFFF};
  if (index >= 1 && index <= 9) return kBasic[index];
  if (index >= 250 && index <= 255) return kGreys[index - 250];
  if (index < 10 || index > 249) return 0xFFFFFF;
  // 24 hues of ten shades: five brightnesses, each full and half saturated.
  static constexpr double kValue[5] = {255.0, 0.65 * 255, 0.5 * 255, 0.3 * 255, 0.15 * 255};
  const int hue = (index - 10) / 10;
  const double value = kValue[(index % 10) / 2];
  const bool half = index % 2 == 1;
  const double low = half ? value / 2.0 : 0.0;
  auto channel = [&](int offset) {
    return static_cast<unsigned>(std::floor(low + (value - low) * hueChannel(hue, offset)));
  };
  // Red leads the ring, green follows a third behind, blue two thirds.
  return channel(0) << 16 | channel(16) << 8 | channel(8);
}

namespace {
// Colour 7, by block (0: blocks are not followed), and an index no palette has contrast with
// the background.
unsigned indexColour(int index, unsigned foreground) {
  if (index < 1 || index > 255 || index == 7) return foreground;
  return HostQtDrawingPainter::aciToRgb(index);
}

struct LayerLook {
  bool visible = true;
  unsigned rgb = 0;
};

unsigned entityColour(const OdDbEntity& entity, const DxfObject& tags,
                      std::map<std::wstring, LayerLook>& layers, bool& visible,
                      unsigned foreground) {
  const OdString name = entity.layer();
  auto found = layers.find(name.str());
  if (found == layers.end()) {
    LayerLook look{true, foreground};
    if (OdDbObjectPtr object = entity.layerId().openObject()) {
      if (OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::cast(object.get())) {
        look.visible = !layer->isOff() && !layer->isFrozen();
        const std::int32_t trueColor = layer->trueColor();
        const short index = layer->colorIndex();
        look.rgb = trueColor >= 0 ? static_cast<unsigned>(trueColor) & 0xFFFFFF
                                  : indexColour(index, foreground);
      }
    }
    found = layers.emplace(name.str(), look).first;
  }
  visible = found->second.visible && integerOr(tags, 60, 0) == 0;
  const std::size_t trueColor = tags.find(420);
  if (trueColor != DxfObject::npos)
    return static_cast<unsigned>(tags.integer(trueColor)) & 0xFFFFFF;
  const short index = entity.colorIndex();
  return index == 256 ? found->second.rgb : indexColour(index, foreground);
}
}  // namespace

HostQtDrawingPainter::HostQtDrawingPainter(OdDbDatabase& db) {
  const QString file = toQString(db.getFilename());
  title_ = file.isEmpty() ? QStringLiteral("Untitled") : QFileInfo(file).completeBaseName();

  double minX = std::numeric_limits<double>::max(), minY = minX;
  double maxX = std::numeric_limits<double>::lowest(), maxY = maxX;
  std::map<std::wstring, LayerLook> layers;

  auto segment = [&](const Plane& plane, double x1, double y1, double x2, double y2, unsigned rgb) {
    const QPointF a = plane.map(x1, y1), b = plane.map(x2, y2);
    add(a.x(), a.y(), b.x(), b.y(), rgb);
  };
  // Vertices in the plane's coordinates; a bulge turns the edge after its vertex into an arc.
  auto polyline = [&](const Plane& plane, const std::vector<Vertex>& vertices, bool closed,
                      unsigned rgb) {
    const std::size_t n = vertices.size();
    const std::size_t edges = closed ? n : (n ? n - 1 : 0);
    for (std::size_t i = 0; i < edges; ++i) {
      const Vertex& a = vertices[i];
      const Vertex& b = vertices[(i + 1) % n];
      if (a.bulge == 0 || !std::isfinite(a.bulge)) {
        segment(plane, a.x, a.y, b.x, b.y, rgb);
        continue;
      }
      // The arc through a and b whose angle is 4 atan(bulge), counter-clockwise when positive.
      const double angle = 4.0 * std::atan(a.bulge);
      const double dx = b.x - a.x, dy = b.y - a.y;
      const double chord = std::hypot(dx, dy);
      if (chord == 0) continue;
      const double radius = chord / (2.0 * std::sin(angle / 2.0));
      const double toCentre = radius * std::cos(angle / 2.0);
      const double cx = a.x + dx / 2.0 - dy / chord * toCentre;
      const double cy = a.y + dy / 2.0 + dx / chord * toCentre;
      const double start = std::atan2(a.y - cy, a.x - cx);
      const int steps = std::max(1, static_cast<int>(std::ceil(std::abs(angle) / kChordAngle)));
      const double r = std::abs(radius);
      double px = a.x, py = a.y;
      for (int s = 1; s <= steps; ++s) {
        const double t = start + angle * s / steps;
        const double qx = s == steps ? b.x : cx + r * std::cos(t);
        const double qy = s == steps ? b.y : cy + r * std::sin(t);
        segment(plane, px, py, qx, qy, rgb);
        px = qx;
        py = qy;
      }
    }
  };
  // Counter-clockwise from `from` to `to` (radians) in the plane.
  auto arc = [&](const Plane& plane, double cx, double cy, double r, double from, double to,
                 unsigned rgb) {
    if (!(r > 0)) return;
    double sweep = std::fmod(to - from, 2 * kPi);
    if (sweep <= 0) sweep += 2 * kPi;
    const int steps = std::max(4, static_cast<int>(std::ceil(sweep / kChordAngle)));
    double px = cx + r * std::cos(from), py = cy + r * std::sin(from);
    for (int s = 1; s <= steps; ++s) {
      const double t = from + sweep * s / steps;
      const double qx = cx + r * std::cos(t), qy = cy + r * std::sin(t);
      segment(plane, px, py, qx, qy, rgb);
      px = qx;
      py = qy;
    }
  };

  OdDbBlockTableRecordPtr model =
      OdDbBlockTableRecord::cast(db.getModelSpaceId().openObject().get());
  if (!model) return;
  for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step()) {
    try {
      OdDbEntityPtr entity = OdDbEntity::cast(it->entity().get());
      if (!entity) continue;
      const DxfObject& tags = entity->dxf();
      const std::string_view type = tags.type();
      bool visible = true;
      const unsigned rgb = entityColour(*entity, tags, layers, visible, kForeground);
      if (!visible) continue;
      if (type == "LINE") {
        double v[4];
        if (readReals(tags, {10, 20, 11, 21}, v)) add(v[0], v[1], v[2], v[3], rgb);
      } else if (type == "POINT") {
        double v[2];
        if (readReals(tags, {10, 20}, v)) add(v[0], v[1], v[0], v[1], rgb);
      } else if (type == "CIRCLE") {
        double v[3];
        if (readReals(tags, {10, 20, 40}, v))
          arc(Plane::of(tags, 30), v[0], v[1], v[2], 0, 2 * kPi, rgb);
      } else if (type == "ARC") {
        double v[5];
        if (readReals(tags, {10, 20, 40, 50, 51}, v))
          arc(Plane::of(tags, 30), v[0], v[1], v[2], v[3] * kPi / 180, v[4] * kPi / 180, rgb);
      } else if (type == "LWPOLYLINE") {
        std::vector<Vertex> vertices;
        for (std::size_t i = 0; i < tags.size(); ++i) {
          const int code = tags.code(i);
          if (code == 10)
            vertices.push_back({tags.real(i), 0, 0});
          else if (code == 20 && !vertices.empty())
            vertices.back().y = tags.real(i);
          else if (code == 42 && !vertices.empty())
            vertices.back().bulge = tags.real(i);
        }
        polyline(Plane::of(tags, 38), vertices, (integerOr(tags, 70, 0) & 1) != 0, rgb);
      } else if (type == "POLYLINE") {
        const long long flags = integerOr(tags, 70, 0);
        if (flags & (16 | 64)) continue;  // meshes: their vertices are no outline
        std::vector<Vertex> vertices;
        for (const OdDbObjectId& id : entity->subEntityIds()) {
          OdDbObjectPtr sub = id.openObject();
          if (!sub) continue;
          const DxfObject& vt = sub->dxf();
          if (vt.type() != "VERTEX") continue;
          if (integerOr(vt, 70, 0) & 16) continue;  // a spline's frame, not its curve
          double v[2];
          if (readReals(vt, {10, 20}, v)) vertices.push_back({v[0], v[1], realOr(vt, 42, 0)});
        }
        // A 3D polyline's vertices are the drawing's own points; a 2D one's lie in its plane.
        const Plane plane = (flags & 8) ? Plane() : Plane::of(tags, 30);
        polyline(plane, vertices, (flags & 1) != 0, rgb);
      }
    } catch (const std::exception&) {
      // An entity the kernel cannot read is left out of the picture.
    }
  }
  for (const Segment& s : segments_) {
    minX = std::min({minX, s.x1, s.x2});
    maxX = std::max({maxX, s.x1, s.x2});
    minY = std::min({minY, s.y1, s.y2});
    maxY = std::max({maxY, s.y1, s.y2});
  }
  if (!segments_.empty()) extents_ = QRectF(QPointF(minX, minY), QPointF(maxX, maxY));
}

void HostQtDrawingPainter::add(double x1, double y1, double x2, double y2, unsigned rgb) {
  if (std::isfinite(x1) && std::isfinite(y1) && std::isfinite(x2) && std::isfinite(y2))
    segments_.push_back({x1, y1, x2, y2, rgb});
}

void HostQtDrawingPainter::paint(QPainter& painter, const QRectF& target,
                                 bool darkBackground) const {
  if (segments_.empty() || target.isEmpty()) return;
  const double width = extents_.width(), height = extents_.height();
  // A drawing that is one point, or one straight line, still gets a finite scale.
  double scale = 1.0;
  if (width > 0 && height > 0)
    scale = std::min(target.width() / width, target.height() / height);
  else if (width > 0)
    scale = target.width() / width;
  else if (height > 0)
    scale = target.height() / height;
  const QPointF centre = extents_.center();
  const QPointF middle = target.center();
  auto map = [&](double x, double y) {
    return QPointF(middle.x() + (x - centre.x()) * scale, middle.y() - (y - centre.y()) * scale);
  };

  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, true);
  const QColor foreground = darkBackground ? Qt::white : Qt::black;
  QPen pen(foreground, 0);
  pen.setCosmetic(true);
  pen.setCapStyle(Qt::RoundCap);
  unsigned current = kForeground;
  painter.setPen(pen);
  for (const Segment& s : segments_) {
    if (s.rgb != current) {
      current = s.rgb;
      pen.setColor(current == kForeground ? foreground : QColor::fromRgb(current));
      painter.setPen(pen);
    }
    if (s.x1 == s.x2 && s.y1 == s.y2)
      painter.drawPoint(map(s.x1, s.y1));
    else
      painter.drawLine(map(s.x1, s.y1), map(s.x2, s.y2));
  }
  painter.restore();
}

bool HostQtDrawingPainter::writePdf(const QString& path, QString& error) const {
  QByteArray bytes;
  {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(title_);
    writer.setCreator(QStringLiteral("standards-audit"));
    const bool wide = extents_.width() >= extents_.height();
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
                                     wide ? QPageLayout::Landscape : QPageLayout::Portrait,
                                     QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter));
    QPainter painter;
    if (!painter.begin(&writer)) {
      error = QStringLiteral("cannot plot to %1: the PDF could not be started").arg(path);
      return false;
    }
    const QRect page = writer.pageLayout().paintRectPixels(writer.resolution());
    paint(painter, QRectF(0, 0, page.width(), page.height()), false);
    painter.end();
  }
  try {
    // File names are bytes on this system; Qt knows how it encodes them.
    OdAtomicFile file(std::filesystem::path(QFile::encodeName(path).toStdString()));
    file.write(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    file.commit();
  } catch (const OdError& e) {
    error = QString::fromUtf8(e.what());  // names the file and the system's reason
    return false;
  } catch (const std::exception& e) {
    error = QStringLiteral("cannot write %1: %2").arg(path, QString::fromUtf8(e.what()));
    return false;
  }
  return true;
}
