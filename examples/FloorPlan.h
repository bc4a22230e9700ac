#pragma once

#include <vector>

#include "OdDbDatabase.h"
#include "OdDbObjectId.h"
#include "OdString.h"

class EntityTags;

// Draws the example floor plan into a drawing, in millimetres at a plotting scale of 1:50: a
// single-storey house of 12 m by 9 m with filled walls, doors and windows in their openings,
// furniture and fixtures, room names with their areas, dimensions, a leader, the plot
// boundary, the street, a sketch, and the sheet with its title block.
//
// Everything goes on the layers and in the linetypes, text styles and dimension styles the
// drawing already has, standard or not: A-WALL, A-DOOR, a-glaz, Furniture, A-ANNO-TEXT,
// C-TOPO, C-ROAD and Ébauche; DASHED and HIDDEN; Office-Notes, Office-Titles and Notes-Arial;
// Office-Dim and My-Dims. Doors, windows, furniture and the title block are blocks, inserted
// rotated, mirrored, scaled or as arrays; each dimension shows an anonymous block of its own
// (*D1, *D2...) holding its lines, arrowheads and text, as viewers draw dimensions from it.
class FloorPlan {
 public:
  struct Point {
    double x, y;
  };
  struct Rect {
    double x0, y0, x1, y1;
  };

  // The drawing is not owned and must outlive the object.
  explicit FloorPlan(OdDbDatabase& db) : db_(db) {}

  // Draws the whole plan into model space. Throws OdError when the drawing lacks a record
  // named above or refuses an entity.
  void draw();

 private:
  // A new, empty block named `name`.
  OdDbObjectId newBlock(const OdString& name);
  OdDbObjectId model() const { return db_.getModelSpaceId(); }
  // Appends the entity `tags` describe to `block`, as the class its type has.
  OdDbObjectId append(const OdDbObjectId& block, const EntityTags& tags);

  void defineBlocks();
  void drawWalls();
  void drawOpenings();
  void drawFurniture();
  void drawRooms();
  void drawDimensions();
  void drawSite();
  void drawSheet();

  // A rotated dimension from `a` to `b` whose dimension line runs `offset` away from them (to
  // the right of a→b for a positive offset), in dimension style `style` drawn at 1:50.
  void dimension(Point a, Point b, double offset, const OdString& style);
  // An insert of `name` at `at`, turned so that the block's x axis runs along `u` and its y
  // axis along `v` (a perpendicular of `u`, mirroring when clockwise), scaled by `sx`, `sy`;
  // with `columns` > 1 an array of that many copies `spacing` apart along `u`.
  OdDbObjectId insert(const OdString& layer, const OdString& name, Point at, Point u, Point v,
                      double sx = 1.0, double sy = 1.0, int columns = 1, double spacing = 0.0);

  OdDbDatabase& db_;
  std::vector<Rect> walls_;  // the wall pieces between openings, filled by one hatch
  int dimensions_ = 0;       // anonymous dimension blocks made so far
};
