#include "FloorPlan.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "EntityTags.h"
#include "OdDbAttribute.h"
#include "OdDbAttributeDefinition.h"
#include "OdDbBlockReference.h"
#include "OdDbBlockTable.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDimStyleTable.h"
#include "OdDbDimStyleTableRecord.h"
#include "OdDbDimension.h"
#include "OdDbLeader.h"
#include "OdDbMText.h"
#include "OdDbText.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdError.h"

namespace {

using Point = FloorPlan::Point;
using Rect = FloorPlan::Rect;

constexpr double kPi = 3.14159265358979323846;
constexpr double kScale = 50.0;  // the plotting scale, 1:50: a paper millimetre is 50 here
constexpr double kExterior = 300.0;

const OdString kZero(L"0");
const OdString kWalls(L"A-WALL");
const OdString kDoors(L"A-DOOR");
const OdString kGlazing(L"a-glaz");
const OdString kFurniture(L"Furniture");
const OdString kNotes(L"A-ANNO-TEXT");
const OdString kTopo(L"C-TOPO");
const OdString kRoad(L"C-ROAD");
const OdString kSketch(L"Ébauche");

Point operator+(Point a, Point b) {
  return {a.x + b.x, a.y + b.y};
}
Point operator-(Point a, Point b) {
  return {a.x - b.x, a.y - b.y};
}
Point operator*(Point a, double k) {
  return {a.x * k, a.y * k};
}
// `a` turned a quarter anticlockwise.
Point left(Point a) {
  return {-a.y, a.x};
}
Point unit(Point a) {
  const double length = std::hypot(a.x, a.y);
  return {a.x / length, a.y / length};
}
double degrees(Point direction) {
  return std::atan2(direction.y, direction.x) * 180.0 / kPi;
}

EntityTags line(const OdString& layer, Point a, Point b) {
  EntityTags t("LINE", layer);
  t.add(100, "AcDbLine").point(10, a.x, a.y).point(11, b.x, b.y);
  return t;
}

// A polyline, in its layer's linetype unless `linetype` names another.
EntityTags polyline(const OdString& layer, const std::vector<Point>& points, bool closed,
                    const OdString& linetype = OdString()) {
  EntityTags t("LWPOLYLINE", layer, linetype);
  t.add(100, "AcDbPolyline").add(90, static_cast<int>(points.size())).add(70, closed ? 1 : 0);
  for (Point p : points) t.flatPoint(10, p.x, p.y);
  return t;
}

EntityTags rectangle(const OdString& layer, Rect r, const OdString& linetype = OdString()) {
  return polyline(layer, {{r.x0, r.y0}, {r.x1, r.y0}, {r.x1, r.y1}, {r.x0, r.y1}}, true, linetype);
}

EntityTags circle(const OdString& layer, Point c, double radius) {
  EntityTags t("CIRCLE", layer);
  t.add(100, "AcDbCircle").point(10, c.x, c.y).add(40, radius);
  return t;
}

EntityTags arc(const OdString& layer, Point c, double radius, double from, double to) {
  EntityTags t("ARC", layer);
  t.add(100, "AcDbCircle").point(10, c.x, c.y).add(40, radius);
  t.add(100, "AcDbArc").add(50, from).add(51, to);
  return t;
}

// A whole ellipse: centre, the end of its major axis relative to the centre, minor/major.
EntityTags ellipse(const OdString& layer, Point c, Point major, double ratio) {
  EntityTags t("ELLIPSE", layer);
  t.add(100, "AcDbEllipse").point(10, c.x, c.y).point(11, major.x, major.y);
  t.add(40, ratio).add(41, 0.0).add(42, 2 * kPi);
  return t;
}

// A filled triangle.
EntityTags solid(const OdString& layer, Point a, Point b, Point c) {
  EntityTags t("SOLID", layer);
  t.add(100, "AcDbTrace").point(10, a.x, a.y).point(11, b.x, b.y);
  t.point(12, c.x, c.y).point(13, c.x, c.y);
  return t;
}

// A single-line text; `centred` aligns its middle on `at`.
EntityTags text(const OdString& layer, const OdString& style, Point at, double height,
                const OdString& value, double rotation = 0.0, bool centred = false) {
  EntityTags t("TEXT", layer);
  t.add(100, "AcDbText").point(10, at.x, at.y).add(40, height).add(1, value);
  if (rotation != 0.0) t.add(50, rotation);
  t.add(7, style);
  if (centred) t.add(72, 1).point(11, at.x, at.y);
  t.add(100, "AcDbText");
  if (centred) t.add(73, 2);
  return t;
}

// A multi-line text attached at `attachment` (1-9: top left to bottom right) to `at`, its
// lines running along `direction`.
EntityTags mtext(const OdString& layer, const OdString& style, Point at, double height,
                 int attachment, const OdString& value, Point direction = {1.0, 0.0}) {
  EntityTags t("MTEXT", layer);
  t.add(100, "AcDbMText").point(10, at.x, at.y).add(40, height).add(41, 0.0);
  t.add(71, attachment).add(72, 1).add(1, value).add(7, style);
  t.point(11, direction.x, direction.y);
  return t;
}

// An attribute definition, or with `value` an attribute, left-aligned at `at`.
EntityTags attribute(const char* type, const OdString& style, Point at, double height,
                     const char* tag, const OdString& value, const char* prompt = nullptr) {
  EntityTags t(type, kZero);
  t.add(100, "AcDbText").point(10, at.x, at.y).add(40, height).add(1, value).add(7, style);
  if (prompt) {
    t.add(100, "AcDbAttributeDefinition").add(3, prompt);
  } else {
    t.add(100, "AcDbAttribute");
  }
  t.add(2, tag).add(70, 0);
  return t;
}

// An area in square metres with one decimal, as room labels show it.
OdString squareMetres(Rect r) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.1f", (r.x1 - r.x0) * (r.y1 - r.y0) / 1e6);
  return OdString(std::string(buffer)) + OdString(L" m²");
}

// A wall along the x or the y axis from `from` to `to`, across from `face` to `face` +
// `thickness`, with gaps for its openings.
struct Wall {
  bool alongX;
  double face;
  double thickness;
  double from, to;
  std::vector<std::pair<double, double>> openings;  // sorted, inside [from, to]
};

// A door: the hinge, the direction the closed leaf runs in, the side it opens to, its width.
struct Door {
  Point hinge, along, opensTo;
  double width;
};

// A window: the corner its block's origin goes to, the direction along the wall, its width; the
// wall lies to the left of that direction.
struct Window {
  Point corner, along;
  double width;
};

struct Room {
  const wchar_t* name;
  Rect inside;
  Point label;
};

// The house: exterior walls 300 thick around 12 m by 9 m, partitions 100 thick.
const std::vector<Wall> kHouseWalls = {
    {true, 0, kExterior, 0, 12000, {{1200, 3000}, {4200, 6000}, {8600, 10200}}},
    {true, 8700, kExterior, 0, 12000, {{3500, 4400}, {5300, 6300}, {7700, 8700}, {10050, 11050}}},
    {false, 0, kExterior, 300, 8700, {{1600, 3400}, {5800, 7600}}},
    {false, 11700, kExterior, 300, 8700, {{3400, 4400}}},
    {true, 4700, 100, 300, 11700, {{5300, 6200}, {10000, 10800}}},
    {false, 7000, 100, 300, 4700, {{1800, 3000}}},
    {false, 4600, 100, 4800, 8700, {{5000, 5900}}},
    {false, 7000, 100, 4800, 8700, {{5000, 5800}}},
    {false, 9300, 100, 4800, 8700, {}},
};

const std::vector<Door> kHouseDoors = {
    {{5300, 8700}, {1, 0}, {0, -1}, 1000},  // the entrance, into the hall
    {{5300, 4700}, {1, 0}, {0, -1}, 900},   // hall to living room
    {{4600, 5000}, {0, 1}, {-1, 0}, 900},   // hall to bedroom
    {{7100, 5000}, {0, 1}, {1, 0}, 800},    // hall to bathroom
    {{10800, 4800}, {-1, 0}, {0, 1}, 800},  // kitchen to utility room
};

const std::vector<Window> kHouseWindows = {
    {{1200, 0}, {1, 0}, 1800},   {{4200, 0}, {1, 0}, 1800},    {{8600, 0}, {1, 0}, 1600},
    {{3500, 8700}, {1, 0}, 900}, {{7700, 8700}, {1, 0}, 1000}, {{10050, 8700}, {1, 0}, 1000},
    {{300, 1600}, {0, 1}, 1800}, {{300, 5800}, {0, 1}, 1800},  {{12000, 3400}, {0, 1}, 1000},
};

const std::vector<Room> kHouseRooms = {
    {L"LIVING", {300, 300, 7000, 4700}, {2900, 3700}},
    {L"KITCHEN", {7100, 300, 11700, 4700}, {9100, 2500}},
    {L"BEDROOM", {300, 4800, 4600, 8700}, {2200, 5700}},
    {L"HALL", {4700, 4800, 7000, 8700}, {5850, 6500}},
    {L"BATH", {7100, 4800, 9300, 8700}, {7900, 6900}},
    {L"UTILITY", {9400, 4800, 11700, 8700}, {10550, 6600}},
};

}  // namespace

OdDbObjectId FloorPlan::newBlock(const OdString& name) {
  OdDbBlockTablePtr blocks = db_.getBlockTableId().safeOpenObject(OdDb::kForWrite);
  OdDbBlockTableRecordPtr record = OdDbBlockTableRecord::createObject();
  record->setName(name);
  return blocks->add(record.get());
}

OdDbObjectId FloorPlan::append(const OdDbObjectId& block, const EntityTags& tags) {
  // Each entity is made as the class its type has, as if it had been read from a file.
  auto made = [&](auto entity) {
    entity->initFromTemplate(tags.text());
    return OdDbEntityPtr(entity.get());
  };
  const std::string& type = tags.type();
  OdDbEntityPtr entity = type == "TEXT"        ? made(OdDbText::createObject())
                         : type == "MTEXT"     ? made(OdDbMText::createObject())
                         : type == "ATTDEF"    ? made(OdDbAttributeDefinition::createObject())
                         : type == "INSERT"    ? made(OdDbBlockReference::createObject())
                         : type == "DIMENSION" ? made(OdDbDimension::createObject())
                         : type == "LEADER"    ? made(OdDbLeader::createObject())
                                               : made(OdDbEntity::createObject());
  OdDbBlockTableRecordPtr record = block.safeOpenObject(OdDb::kForWrite);
  return record->appendOdDbEntity(entity.get());
}

OdDbObjectId FloorPlan::insert(const OdString& layer, const OdString& name, Point at, Point u,
                               Point v, double sx, double sy, int columns, double spacing) {
  // A y axis clockwise from the x axis is a mirror image: a negative y scale.
  const Point ccw = left(u);
  const bool mirrored = ccw.x * v.x + ccw.y * v.y < 0;
  EntityTags t("INSERT", layer);
  t.add(100, "AcDbBlockReference").add(2, name).point(10, at.x, at.y);
  t.add(41, sx).add(42, mirrored ? -sy : sy).add(43, 1.0).add(50, degrees(u));
  if (columns > 1) t.add(70, columns).add(71, 1).add(44, spacing).add(45, 0.0);
  return append(model(), t);
}

void FloorPlan::draw() {
  db_.setHeaderVariable(L"$INSUNITS", OdResBuf::newRb(70, 4).get());  // millimetres
  db_.setHeaderVariable(L"$MEASUREMENT", OdResBuf::newRb(70, 1).get());
  db_.setHeaderVariable(L"$LTSCALE", OdResBuf::newRb(40, 20.0).get());
  defineBlocks();
  drawWalls();
  drawOpenings();
  drawFurniture();
  drawRooms();
  drawDimensions();
  drawSite();
  drawSheet();
}

void FloorPlan::defineBlocks() {
  // A door 1000 wide, hinged at the origin, closing along +x and open along +y: the leaf
  // (drawn solid whatever its layer's linetype) and its swing.
  OdDbObjectId door = newBlock(L"DOOR");
  append(door, rectangle(kZero, {0, 0, 40, 1000}, L"Continuous"));
  append(door, arc(kZero, {0, 0}, 1000, 0, 90));
  // A window 1000 long in a wall 300 thick: the reveals and a double glazing line.
  OdDbObjectId window = newBlock(L"WINDOW");
  append(window, rectangle(kZero, {0, 0, 1000, 300}));
  append(window, line(kZero, {0, 130}, {1000, 130}));
  append(window, line(kZero, {0, 170}, {1000, 170}));

  OdDbObjectId bed = newBlock(L"BED");  // a double bed, head at the top
  append(bed, rectangle(kZero, {0, 0, 1600, 2000}));
  append(bed, rectangle(kZero, {150, 1650, 750, 1900}));
  append(bed, rectangle(kZero, {850, 1650, 1450, 1900}));
  append(bed, line(kZero, {0, 1450}, {1600, 1450}));
  OdDbObjectId table = newBlock(L"TABLE");
  append(table, rectangle(kZero, {0, 0, 1600, 900}));
  OdDbObjectId chair = newBlock(L"CHAIR");  // facing +y, its back at the bottom
  append(chair, rectangle(kZero, {0, 0, 450, 450}));
  append(chair, rectangle(kZero, {0, 0, 450, 80}));
  OdDbObjectId sofa = newBlock(L"SOFA");  // back at the top, arms at both ends
  append(sofa, rectangle(kZero, {0, 0, 2200, 900}));
  append(sofa, line(kZero, {0, 700}, {2200, 700}));
  append(sofa, line(kZero, {200, 0}, {200, 700}));
  append(sofa, line(kZero, {2000, 0}, {2000, 700}));
  append(sofa, line(kZero, {1100, 0}, {1100, 700}));
  OdDbObjectId wc = newBlock(L"WC");  // cistern against the wall at y = 0
  append(wc, rectangle(kZero, {-250, 0, 250, 200}));
  append(wc, ellipse(kZero, {0, 480}, {0, 280}, 0.65));
  OdDbObjectId basin = newBlock(L"BASIN");
  append(basin, rectangle(kZero, {-300, 0, 300, 450}));
  append(basin, ellipse(kZero, {0, 250}, {200, 0}, 0.7));
  append(basin, circle(kZero, {0, 60}, 25));
  OdDbObjectId bath = newBlock(L"BATH");
  append(bath, rectangle(kZero, {0, 0, 1700, 750}));
  append(bath, rectangle(kZero, {75, 75, 1625, 675}));
  append(bath, circle(kZero, {1500, 375}, 30));
  OdDbObjectId sink = newBlock(L"SINK");  // two bowls in a counter 500 deep
  append(sink, rectangle(kZero, {0, 0, 1000, 500}));
  append(sink, rectangle(kZero, {50, 50, 475, 450}));
  append(sink, rectangle(kZero, {525, 50, 950, 450}));
  append(sink, circle(kZero, {262.5, 250}, 30));
  append(sink, circle(kZero, {737.5, 250}, 30));
  OdDbObjectId hob = newBlock(L"HOB");
  append(hob, rectangle(kZero, {0, 0, 600, 520}));
  for (Point c : {Point{150, 130}, Point{450, 130}, Point{150, 390}, Point{450, 390}})
    append(hob, circle(kZero, c, c.y < 200 ? 90 : 70));
  OdDbObjectId washer = newBlock(L"WASHER");
  append(washer, rectangle(kZero, {0, 0, 600, 600}));
  append(washer, circle(kZero, {300, 300}, 220));
}

void FloorPlan::drawWalls() {
  for (const Wall& w : kHouseWalls) {
    double at = w.from;
    auto piece = [&](double end) {
      if (end <= at) return;
      walls_.push_back(w.alongX ? Rect{at, w.face, end, w.face + w.thickness}
                                : Rect{w.face, at, w.face + w.thickness, end});
    };
    for (auto [begin, end] : w.openings) {
      piece(begin);
      at = end;
    }
    piece(w.to);
  }
  for (const Rect& r : walls_) append(model(), rectangle(kWalls, r));
  // One solid fill for every piece, a boundary path each.
  EntityTags fill("HATCH", kWalls);
  fill.add(100, "AcDbHatch").point(10, 0.0, 0.0).point(210, 0.0, 0.0, 1.0);
  fill.add(2, "SOLID").add(70, 1).add(71, 0).add(91, static_cast<int>(walls_.size()));
  for (const Rect& r : walls_) {
    fill.add(92, 3).add(72, 0).add(73, 1).add(93, 4);
    for (Point p : {Point{r.x0, r.y0}, Point{r.x1, r.y0}, Point{r.x1, r.y1}, Point{r.x0, r.y1}})
      fill.flatPoint(10, p.x, p.y);
    fill.add(97, 0);
  }
  fill.add(75, 0).add(76, 1).add(98, 1).flatPoint(10, walls_[0].x0, walls_[0].y0);
  append(model(), fill);
}

void FloorPlan::drawOpenings() {
  for (const Door& d : kHouseDoors) {
    const double k = d.width / 1000.0;
    insert(kDoors, L"DOOR", d.hinge, d.along, d.opensTo, k, k);
  }
  for (const Window& w : kHouseWindows)
    insert(kGlazing, L"WINDOW", w.corner, w.along, left(w.along), w.width / 1000.0, 1.0);
}

void FloorPlan::drawFurniture() {
  const Point east{1, 0}, west{-1, 0}, north{0, 1}, south{0, -1};
  insert(kFurniture, L"SOFA", {1300, 1200}, north, west);
  insert(kFurniture, L"TABLE", {4200, 1800}, east, north);
  // Three chairs on each side of the table, each row one insert of three columns.
  insert(kFurniture, L"CHAIR", {4275, 1250}, east, north, 1.0, 1.0, 3, 500);
  insert(kFurniture, L"CHAIR", {5725, 3250}, west, south, 1.0, 1.0, 3, 500);
  insert(kFurniture, L"BED", {1400, 6700}, east, north);

  // The kitchen: an L of worktop with the sink under the window and the hob, wall units
  // over the worktop shown hidden, and a leader saying so.
  append(
      model(),
      polyline(kFurniture,
               {{7700, 300}, {11700, 300}, {11700, 3200}, {11100, 3200}, {11100, 900}, {7700, 900}},
               true));
  insert(kFurniture, L"SINK", {8900, 350}, east, north);
  insert(kFurniture, L"HOB", {11650, 1800}, north, west);
  append(model(), rectangle(kFurniture, {11350, 900, 11700, 3200}, L"HIDDEN"));
  EntityTags leader("LEADER", kNotes);
  leader.add(100, "AcDbLeader").add(3, OdString(L"My-Dims")).add(71, 1).add(72, 0).add(73, 3);
  leader.add(74, 0).add(75, 0).add(40, 0.0).add(41, 0.0).add(76, 3);
  for (Point p : {Point{11350, 2900}, Point{10400, 3700}, Point{10000, 3700}})
    leader.point(10, p.x, p.y);
  append(model(), leader);
  append(model(), mtext(kNotes, L"Notes-Arial", {9950, 3700}, 150, 6, L"Wall units over"));

  insert(kFurniture, L"BATH", {7100, 7950}, east, north);
  insert(kFurniture, L"WC", {9300, 6900}, north, west);
  insert(kFurniture, L"BASIN", {9300, 5900}, north, west);
  insert(kFurniture, L"WASHER", {9600, 8050}, east, north, 1.0, 1.0, 2, 700);
}

void FloorPlan::drawRooms() {
  for (const Room& room : kHouseRooms)
    append(model(),
           mtext(kNotes, L"Office-Notes", room.label, 250, 5,
                 OdString(room.name) + L"\\P{\\H0.7x;" + squareMetres(room.inside) + L"}"));
  append(model(), text(kNotes, L"Notes-Arial", {5800, 9350}, 200, L"ENTRANCE", 0.0, true));
}

void FloorPlan::drawDimensions() {
  const OdString chain(L"My-Dims"), overall(L"Office-Dim");
  dimension({0, 0}, {7050, 0}, 700, chain);
  dimension({7050, 0}, {12000, 0}, 700, chain);
  dimension({0, 0}, {12000, 0}, 1400, overall);
  dimension({0, 0}, {0, 4750}, -700, chain);
  dimension({0, 4750}, {0, 9000}, -700, chain);
  dimension({0, 0}, {0, 9000}, -1400, overall);
}

void FloorPlan::dimension(Point a, Point b, double offset, const OdString& style) {
  // Sizes are the style's, times the plotting scale; the text style is the style's too.
  OdDbDimStyleTablePtr styles = db_.getDimStyleTableId().safeOpenObject();
  OdDbDimStyleTableRecordPtr record = styles->getAt(style).safeOpenObject();
  auto size = [&](int code, double dflt) {
    OdResBufPtr value = record->getDimVar(code);
    return (value.isNull() ? dflt : value->getDouble()) * kScale;
  };
  const double textHeight = size(140, 2.5), arrow = size(41, 2.5);
  const double offsetFromOrigin = size(42, 0.625), extension = size(44, 1.25);
  const double gap = size(147, 0.625);
  OdDbTextStyleTableRecordPtr textStyle = record->dimtxsty().safeOpenObject();
  const OdString textStyleName = textStyle->getName();

  const Point d = unit(b - a), n{d.y, -d.x}, up = left(d);  // along, towards the line, text up
  const Point p = a + n * offset, q = b + n * offset;       // the dimension line
  char name[16];
  std::snprintf(name, sizeof name, "*D%d", ++dimensions_);
  OdDbObjectId block = newBlock(OdString(std::string(name)));
  for (auto [from, to] : {std::pair{a, p}, std::pair{b, q}})
    append(block, line(kZero, from + n * offsetFromOrigin, to + n * extension));
  append(block, line(kZero, p, q));
  append(block, solid(kZero, p, p + d * arrow + n * (arrow / 6), p + d * arrow - n * (arrow / 6)));
  append(block, solid(kZero, q, q - d * arrow + n * (arrow / 6), q - d * arrow - n * (arrow / 6)));
  const double measured = std::hypot(b.x - a.x, b.y - a.y);
  char value[32];
  std::snprintf(value, sizeof value, "%.0f", measured);
  const Point middle = (p + q) * 0.5;
  append(block, mtext(kZero, textStyleName, middle + up * gap, textHeight, 8,
                      OdString(std::string(value)), d));

  const Point textMiddle = middle + up * (gap + textHeight / 2);
  EntityTags t("DIMENSION", kNotes);
  t.add(100, "AcDbDimension").add(2, OdString(std::string(name))).point(10, q.x, q.y);
  t.point(11, textMiddle.x, textMiddle.y).add(70, 32).add(71, 5).add(42, measured).add(3, style);
  t.add(100, "AcDbAlignedDimension").point(13, a.x, a.y).point(14, b.x, b.y);
  t.add(50, degrees(d)).add(100, "AcDbRotatedDimension");
  append(model(), t);
}

void FloorPlan::drawSite() {
  append(model(), polyline(kTopo, {{-2500, -2500}, {15000, -2500}, {16000, 11500}, {-2500, 11500}},
                           true, L"DASHED"));
  append(model(), text(kTopo, L"Notes-Arial", {6750, 11700}, 250, L"PLOT BOUNDARY", 0.0, true));
  append(model(), line(kRoad, {-3700, -6000}, {-3700, 14000}));
  append(model(), line(kRoad, {-5200, -6000}, {-5200, 14000}));
  append(model(), text(kRoad, L"Notes-Arial", {-4450, 4500}, 300, L"STREET", 90.0, true));
  // A terrace the team is still thinking about, on the sketch layer.
  append(model(),
         polyline(kSketch, {{12000, 5200}, {14500, 5200}, {14500, 8200}, {12000, 8200}}, false));
  append(model(), text(kSketch, L"Notes-Arial", {12300, 6600}, 250, L"terrasse ?"));
}

void FloorPlan::drawSheet() {
  // An A2 sheet drawn in paper millimetres: the border, and the title block in its corner
  // with a field for each thing that changes from drawing to drawing.
  struct Field {
    const char* tag;
    const char* prompt;
    const wchar_t* label;
    Point at;
    double height;
    const wchar_t* value;
  };
  const Field fields[] = {
      {"TITLE", "Drawing title", L"TITLE", {396, 35}, 6, L"GROUND FLOOR PLAN"},
      {"NUMBER", "Drawing number", L"DRAWING No.", {396, 5}, 4, L"A-101"},
      {"SCALE", "Scale", L"SCALE", {441, 5}, 4, L"1:50"},
      {"DATE", "Date", L"DATE", {486, 5}, 4, L"2026-03-14"},
      {"DRAWN", "Drawn by", L"DRAWN BY", {531, 5}, 4, L"alice"},
  };
  const OdString notes(L"Office-Notes"), titles(L"Office-Titles");
  OdDbObjectId sheet = newBlock(L"SHEET-A2");
  append(sheet, rectangle(kZero, {0, 0, 574, 400}));
  append(sheet, rectangle(kZero, {394, 0, 574, 50}));
  append(sheet, line(kZero, {394, 30}, {574, 30}));
  for (double x : {439.0, 484.0, 529.0}) append(sheet, line(kZero, {x, 0}, {x, 30}));
  for (const Field& f : fields) {
    const bool title = f.height > 5;
    append(sheet, text(kZero, notes, {f.at.x, title ? 46.0 : 26.0}, 2, f.label));
    append(sheet,
           attribute("ATTDEF", title ? titles : notes, f.at, f.height, f.tag, L"", f.prompt));
  }

  const Point origin{-6500, -6000};
  OdDbObjectId placed = insert(kNotes, L"SHEET-A2", origin, {1, 0}, {0, 1}, kScale, kScale);
  OdDbBlockReferencePtr reference = placed.safeOpenObject(OdDb::kForWrite);
  for (const Field& f : fields) {
    OdDbAttributePtr value = OdDbAttribute::createObject();
    value->initFromTemplate(attribute("ATTRIB", f.height > 5 ? titles : notes,
                                      origin + f.at * kScale, f.height * kScale, f.tag, f.value)
                                .text());
    reference->appendAttribute(value.get());
  }
}
