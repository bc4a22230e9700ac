#pragma once

#include <QString>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "HostViewGeometry.h"
#include "HostViewIndex.h"
#include "OdDbObjectId.h"

class OdDbDatabase;
class HostViewTables;
class HostViewEntityReader;

// A layer as the view needs it.
struct HostViewLayer {
  QString name;
  bool visible = true;                                 // on and thawed
  std::uint32_t colour = HostViewColour::kForeground;  // RGB or kForeground (colour 7)
  std::int32_t linetype = HostViewLinetype::kContinuous;
};

// A linetype's pattern in drawing units: dashes > 0, gaps < 0, dots 0; empty for continuous.
struct HostViewPattern {
  QString name;
  std::vector<double> dashes;
  double length = 0;  // sum of the absolute lengths
};

// A block's contents: its primitives, in its own coordinates (its base point subtracted).
struct HostViewBlock {
  QString name;
  std::uint32_t first = 0, count = 0;  // range of geometry.primitives
  HostViewBox extents;
};

// A top-level entity of model space.
struct HostViewEntity {
  OdDbObjectId id;
  std::uint32_t first = 0, count = 0;  // range of geometry.primitives
  HostViewBox extents;                 // in model space; empty when nothing is drawn
  std::int32_t layer = 0;
  // An XLINE or a RAY, drawn clipped to whatever the view shows: one Polyline primitive of
  // its base point and the base point plus its unit direction, kClosed when it runs both ways.
  bool unbounded = false;
  bool alive = false;  // false once erased (the slot is kept, the id may come back)
};

// What a view draws of a drawing's model space: the entities as primitives, the blocks they
// insert, the layers and linetypes, and a spatial index over the entities' extents. Built from
// the database at construction and kept current by the refresh calls the view makes when the
// database reports a change. Reads the database only; never writes it.
//
// Geometry is read from each entity's tags and seen from above: planar objects are placed by
// their extrusion direction and elevation, then z is dropped. An entity that cannot be drawn
// (a kind not handled, or tags too broken to place) is left out and counted in unsupported();
// nothing here throws for a malformed entity. The database must outlive the scene.
class HostViewScene {
 public:
  explicit HostViewScene(OdDbDatabase& db);
  ~HostViewScene();

  // An entity of model space was appended, modified, erased or unerased: its primitives, its
  // box in the index and the extents follow. An object that is not a model-space entity (a
  // block's entity, a table record) makes refreshTables() run instead.
  void refreshObject(const OdDbObjectId& id);
  // Layers, linetypes, text styles or blocks changed: layers and patterns are read again, and
  // when blocks or styles changed every entity is rebuilt.
  void refreshTables();
  // Everything again from the database.
  void rebuild();

  const HostViewGeometry& geometry() const { return geometry_; }
  const std::vector<HostViewEntity>& entities() const { return entities_; }
  const std::vector<HostViewBlock>& blocks() const { return blocks_; }
  const std::vector<HostViewLayer>& layers() const { return layers_; }
  const std::vector<HostViewPattern>& patterns() const { return patterns_; }
  const HostViewIndex& index() const { return index_; }
  // The index of layer "0", which block contents on it inherit from their insert.
  std::int32_t layerZero() const { return layerZero_; }
  // The drawing's LTSCALE.
  double linetypeScale() const { return linetypeScale_; }
  // The extents of every drawn entity (rays and construction lines by their base points only);
  // empty when nothing is drawn.
  HostViewBox extents() const;
  // The slot of a model-space entity, or -1 when it is not drawn here.
  std::int64_t entityIndex(const OdDbObjectId& id) const;

  // Entities left out, by DXF type name, with how many of each (nested ones included).
  const std::map<std::string, std::size_t>& unsupported() const { return unsupported_; }
  // "Not drawn: 3 ACAD_TABLE, 1 MESH" style summary; empty when everything was drawn.
  QString unsupportedSummary() const;
  // The slots of the live construction lines and rays, which the index gives for any box.
  const std::vector<std::uint32_t>& unboundedEntities() const { return unbounded_; }

 private:
  // Implementation's own; see the .cpp files.
  void readBlocks();
  void readEntity(std::uint32_t slot, const OdDbObjectId& id);
  // Takes the count of a model-space entity that was not drawn back out of unsupported_, as
  // it is read again or erased.
  void forgetNotDrawn(std::uint32_t slot);
  void compactIfWasteful();

  OdDbDatabase& db_;
  HostViewGeometry geometry_;
  std::vector<HostViewEntity> entities_;
  std::vector<HostViewBlock> blocks_;
  std::vector<HostViewLayer> layers_;
  std::vector<HostViewPattern> patterns_;
  HostViewIndex index_;
  std::int32_t layerZero_ = 0;
  double linetypeScale_ = 1.0;
  std::map<std::string, std::size_t> unsupported_;
  // The model-space slots counted in unsupported_, with the type each was counted under.
  std::unordered_map<std::uint32_t, std::string> notDrawn_;
  std::unordered_map<std::uint64_t, std::uint32_t> slotByHandle_;
  std::unique_ptr<HostViewTables> tables_;
  // One reader for the scene's life: its text layout keeps fonts and measured advances.
  std::unique_ptr<HostViewEntityReader> reader_;
  std::vector<std::uint32_t> unbounded_;  // slots of live construction lines and rays
  std::size_t garbage_ = 0;               // primitives no entity or block refers to any more
};
