#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "HostViewGeometry.h"
#include "HostViewTextLayout.h"

class DxfObject;
class OdDbEntity;
class HostViewTables;
struct HostViewBlock;
struct HostViewLayer;

// Turns one entity's tags into primitives appended to a geometry: the geometry of every kind
// the view draws, seen from above, with its colour, layer and linetype as stored (by layer and
// by block resolved when painted). Holds references to what the scene owns, which must outlive
// it. read() may throw for tags the kernel cannot read; the caller rolls the arrays back.
class HostViewEntityReader {
 public:
  HostViewEntityReader(HostViewTables& tables, std::vector<HostViewLayer>& layers,
                       HostViewGeometry& geometry, std::map<std::string, std::size_t>& unsupported);

  // Appends the primitives of `entity`. Inside a block (`inBlock`) an attribute definition
  // draws nothing (its insert's attributes do); in model space it shows its tag. An invisible
  // entity appends nothing and is no failure. False, with the type counted in unsupported(),
  // when the kind is not drawn or its tags place nothing.
  bool read(const OdDbEntity& entity, bool inBlock);
  // After read(): the entity was a construction line or a ray. Its primitive is a Polyline of
  // its base point and the base point plus its direction; kClosed marks a line running both
  // ways.
  bool unbounded() const { return unbounded_; }
  // After read(): the layer the entity is on.
  std::int32_t layer() const { return look_.layer; }

  // The box around primitives [first, first + count) of `geometry`, inserts by the extents of
  // their blocks. Infinite lines count by their base points.
  static HostViewBox extents(const HostViewGeometry& geometry, std::uint32_t first,
                             std::uint32_t count, const std::vector<HostViewBlock>& blocks);

 private:
  bool readKind(const OdDbEntity& entity, const DxfObject& tags, bool inBlock);
  void readLook(const DxfObject& tags);
  HostViewPrimitive& begin(HostViewPrimitive::Kind kind);
  void polyline(const std::vector<HostViewVec>& points, bool closed);
  void ellipse(const HostViewVec& centre, const HostViewVec& major, double ratio, double start,
               double end);
  bool planarArc(const DxfObject& tags, double cx, double cy, double r, double start, double end);
  bool text(const DxfObject& tags, bool mtext, bool showTag);
  bool insert(const OdDbEntity& entity, const DxfObject& tags);
  bool polylineEntity(const OdDbEntity& entity, const DxfObject& tags);
  bool lwpolyline(const DxfObject& tags);
  bool hatch(const DxfObject& tags);
  bool leader(const DxfObject& tags);
  bool wipeout(const DxfObject& tags);

  HostViewTables& tables_;
  std::vector<HostViewLayer>& layers_;
  HostViewGeometry& g_;
  std::map<std::string, std::size_t>& unsupported_;
  HostViewTextLayout layout_;
  HostViewPrimitive look_;  // the colour, layer and linetype of the entity being read
  bool unbounded_ = false;
};
