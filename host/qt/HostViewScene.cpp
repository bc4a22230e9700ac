#include "HostViewScene.h"

#include <QStringList>
#include <exception>
#include <limits>

#include "DxfObject.h"
#include "HostViewEntityReader.h"
#include "HostViewTables.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbEntity.h"

namespace {
// The sizes of the arrays, to take back a half-read entity.
struct Mark {
  explicit Mark(const HostViewGeometry& g)
      : points(g.points.size()),
        bulges(g.bulges.size()),
        widths(g.widths.size()),
        reals(g.reals.size()),
        rings(g.ringSizes.size()),
        texts(g.texts.size()),
        inserts(g.inserts.size()),
        primitives(g.primitives.size()) {}
  void rollBack(HostViewGeometry& g) const {
    g.points.resize(points), g.bulges.resize(bulges), g.widths.resize(widths);
    g.reals.resize(reals), g.ringSizes.resize(rings), g.texts.resize(texts);
    g.inserts.resize(inserts), g.primitives.resize(primitives);
  }
  std::size_t points, bulges, widths, reals, rings, texts, inserts, primitives;
};

// What the index holds of an entity: its extents, or everywhere for a line without ends.
HostViewBox indexBox(const HostViewEntity& entity) {
  if (!entity.unbounded) return entity.extents;
  constexpr double inf = std::numeric_limits<double>::infinity();
  return HostViewBox{-inf, -inf, inf, inf};
}

std::string typeOf(const OdDbObject& object) {
  const std::string_view type = object.dxf().type();
  return type.empty() ? std::string("(no type)") : std::string(type);
}

// Moves what the primitive `p` of `from` uses to the end of `to` and returns it re-addressed.
HostViewPrimitive copyPrimitive(const HostViewGeometry& from, HostViewPrimitive p,
                                HostViewGeometry& to) {
  const auto first = static_cast<std::uint32_t>(to.points.size());
  to.points.insert(to.points.end(), from.points.begin() + p.first,
                   from.points.begin() + p.first + p.count);
  if (p.flags & HostViewPrimitive::kBulges) {
    to.bulges.resize(first);
    to.bulges.insert(to.bulges.end(), from.bulges.begin() + p.first,
                     from.bulges.begin() + p.first + p.count);
  }
  if (p.flags & HostViewPrimitive::kWidths) {
    to.widths.resize(first);
    to.widths.insert(to.widths.end(), from.widths.begin() + p.first,
                     from.widths.begin() + p.first + p.count);
  }
  p.first = first;
  switch (p.kind) {
    case HostViewPrimitive::Kind::Polygon: {
      const auto extra = static_cast<std::uint32_t>(to.ringSizes.size());
      to.ringSizes.insert(to.ringSizes.end(), from.ringSizes.begin() + p.extra,
                          from.ringSizes.begin() + p.extra + p.rings);
      p.extra = extra;
      break;
    }
    case HostViewPrimitive::Kind::Ellipse: {
      const auto extra = static_cast<std::uint32_t>(to.reals.size());
      to.reals.insert(to.reals.end(), from.reals.begin() + p.extra,
                      from.reals.begin() + p.extra + 3);
      p.extra = extra;
      break;
    }
    case HostViewPrimitive::Kind::Text:
      to.texts.push_back(from.texts[p.extra]);
      p.extra = static_cast<std::uint32_t>(to.texts.size() - 1);
      break;
    case HostViewPrimitive::Kind::Insert:
      to.inserts.push_back(from.inserts[p.extra]);
      p.extra = static_cast<std::uint32_t>(to.inserts.size() - 1);
      break;
    default:
      break;
  }
  return p;
}
}  // namespace

HostViewScene::HostViewScene(OdDbDatabase& db) : db_(db) {
  rebuild();
}

HostViewScene::~HostViewScene() = default;

void HostViewScene::rebuild() {
  geometry_.clear();
  entities_.clear();
  blocks_.clear();
  layers_.clear();
  patterns_.clear();
  unsupported_.clear();
  notDrawn_.clear();
  slotByHandle_.clear();
  unbounded_.clear();
  garbage_ = 0;
  tables_ = std::make_unique<HostViewTables>();
  tables_->read(db_, layers_, patterns_);
  reader_ = std::make_unique<HostViewEntityReader>(*tables_, layers_, geometry_, unsupported_);
  layerZero_ = tables_->layerZero();
  linetypeScale_ = tables_->linetypeScale();
  readBlocks();

  OdDbObjectPtr object = db_.getModelSpaceId().openObject();
  OdSmartPtr<OdDbBlockTableRecord> model = OdDbBlockTableRecord::cast(object.get());
  if (model) {
    for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step()) {
      const OdDbObjectId id = it->objectId();
      const auto slot = static_cast<std::uint32_t>(entities_.size());
      entities_.emplace_back();
      slotByHandle_[id.getHandle().value()] = slot;
      readEntity(slot, id);
    }
  }
  std::vector<HostViewIndex::Item> items;
  items.reserve(entities_.size());
  for (std::uint32_t slot = 0; slot < entities_.size(); ++slot)
    if (entities_[slot].alive && !entities_[slot].extents.empty())
      items.push_back({slot, indexBox(entities_[slot])});
  index_.build(std::move(items));
}

void HostViewScene::readBlocks() {
  const std::vector<HostViewTables::Block>& defs = tables_->blocks();
  blocks_.assign(defs.size(), HostViewBlock());
  HostViewEntityReader& reader = *reader_;
  for (std::size_t b = 0; b < defs.size(); ++b) {
    HostViewBlock& block = blocks_[b];
    block.name = defs[b].name;
    block.first = static_cast<std::uint32_t>(geometry_.primitives.size());
    if (defs[b].layout) continue;
    try {
      OdDbObjectPtr object = defs[b].record.openObject();
      OdSmartPtr<OdDbBlockTableRecord> record = OdDbBlockTableRecord::cast(object.get());
      if (!record) continue;
      for (OdDbObjectIteratorPtr it = record->newIterator(); !it->done(); it->step()) {
        const Mark mark(geometry_);
        OdDbObjectPtr entity;
        try {
          entity = it->entity();
          OdSmartPtr<OdDbEntity> e = OdDbEntity::cast(entity.get());
          if (e) reader.read(*e, true);
        } catch (const std::exception&) {
          mark.rollBack(geometry_);
          ++unsupported_[entity ? typeOf(*entity) : std::string("(unreadable)")];
        }
      }
    } catch (const std::exception&) {
      // A block whose record cannot be opened draws as empty.
    }
    block.count = static_cast<std::uint32_t>(geometry_.primitives.size()) - block.first;
    // Contents are kept relative to the base point, where an insert places them.
    const HostViewVec base = defs[b].base;
    if (base.x == 0 && base.y == 0) continue;
    for (std::uint32_t i = block.first; i < block.first + block.count; ++i) {
      HostViewPrimitive& p = geometry_.primitives[i];
      switch (p.kind) {
        case HostViewPrimitive::Kind::Ellipse:  // its second point is an axis, not a place
          geometry_.points[p.first].x -= base.x, geometry_.points[p.first].y -= base.y;
          break;
        case HostViewPrimitive::Kind::Text:
          geometry_.texts[p.extra].origin.x -= base.x, geometry_.texts[p.extra].origin.y -= base.y;
          break;
        case HostViewPrimitive::Kind::Insert:
          geometry_.inserts[p.extra].transform.tx -= base.x;
          geometry_.inserts[p.extra].transform.ty -= base.y;
          break;
        default:
          for (std::uint32_t k = p.first; k < p.first + p.count; ++k)
            geometry_.points[k].x -= base.x, geometry_.points[k].y -= base.y;
      }
    }
  }

  // Extents inside out; a block that inserts itself, directly or not, counts without itself.
  std::vector<std::uint8_t> state(blocks_.size(), 0);  // 0 to do, 1 under way, 2 done
  auto extentsOf = [&](auto&& self, std::size_t b) -> void {
    if (state[b] != 0) return;
    state[b] = 1;
    const HostViewBlock& block = blocks_[b];
    for (std::uint32_t i = block.first; i < block.first + block.count; ++i) {
      const HostViewPrimitive& p = geometry_.primitives[i];
      if (p.kind != HostViewPrimitive::Kind::Insert) continue;
      const std::int32_t inner = geometry_.inserts[p.extra].block;
      if (inner >= 0 && static_cast<std::size_t>(inner) < blocks_.size())
        self(self, static_cast<std::size_t>(inner));
    }
    blocks_[b].extents =
        HostViewEntityReader::extents(geometry_, block.first, block.count, blocks_);
    state[b] = 2;
  };
  for (std::size_t b = 0; b < blocks_.size(); ++b) extentsOf(extentsOf, b);
}

void HostViewScene::forgetNotDrawn(std::uint32_t slot) {
  const auto found = notDrawn_.find(slot);
  if (found == notDrawn_.end()) return;
  const auto counted = unsupported_.find(found->second);
  if (counted != unsupported_.end() && --counted->second == 0) unsupported_.erase(counted);
  notDrawn_.erase(found);
}

void HostViewScene::readEntity(std::uint32_t slot, const OdDbObjectId& id) {
  forgetNotDrawn(slot);
  HostViewEntity& entity = entities_[slot];
  garbage_ += entity.count;
  entity = HostViewEntity();
  entity.id = id;
  entity.first = static_cast<std::uint32_t>(geometry_.primitives.size());
  HostViewEntityReader& reader = *reader_;
  const Mark mark(geometry_);
  OdDbObjectPtr object;
  try {
    object = id.openObject();
    OdSmartPtr<OdDbEntity> e = OdDbEntity::cast(object.get());
    if (!e) return;
    if (!reader.read(*e, false)) notDrawn_.emplace(slot, typeOf(*e));
    entity.layer = reader.layer();
    entity.unbounded = reader.unbounded();
    entity.alive = true;
  } catch (const std::exception&) {
    mark.rollBack(geometry_);
    const std::string type = object ? typeOf(*object) : std::string("(unreadable)");
    ++unsupported_[type];
    notDrawn_.emplace(slot, type);
  }
  entity.count = static_cast<std::uint32_t>(geometry_.primitives.size()) - entity.first;
  if (entity.unbounded) {
    // Only the base point counts towards extents; the line itself is everywhere.
    const HostViewVec& base = geometry_.points[geometry_.primitives[entity.first].first];
    entity.extents.add(base.x, base.y);
    unbounded_.push_back(slot);
  } else {
    entity.extents = HostViewEntityReader::extents(geometry_, entity.first, entity.count, blocks_);
  }
}

void HostViewScene::refreshObject(const OdDbObjectId& id) {
  if (id.isNull() || id.database() != &db_) return;
  OdDbObjectPtr object = id.openObject(OdDb::kForRead, true);
  OdSmartPtr<OdDbEntity> entity = OdDbEntity::cast(object.get());
  if (!entity) {
    refreshTables();
    return;
  }
  const OdDbObjectId owner = entity->ownerId();
  if (owner != db_.getModelSpaceId()) {
    // A vertex or an attribute changes the entity that holds it.
    OdDbObjectPtr holder =
        owner.isNull() ? OdDbObjectPtr() : owner.openObject(OdDb::kForRead, true);
    OdSmartPtr<OdDbEntity> outer = OdDbEntity::cast(holder.get());
    if (outer && outer->ownerId() == db_.getModelSpaceId())
      refreshObject(owner);
    else
      refreshTables();
    return;
  }
  const std::uint64_t handle = id.getHandle().value();
  auto found = slotByHandle_.find(handle);
  std::uint32_t slot;
  if (found == slotByHandle_.end()) {
    if (entity->isErased()) return;
    slot = static_cast<std::uint32_t>(entities_.size());
    entities_.emplace_back();
    slotByHandle_.emplace(handle, slot);
  } else {
    slot = found->second;
  }
  std::erase(unbounded_, slot);
  if (entity->isErased()) {
    forgetNotDrawn(slot);
    garbage_ += entities_[slot].count;
    entities_[slot].count = 0;
    entities_[slot].alive = false;
    entities_[slot].extents = HostViewBox();
    index_.remove(slot);
  } else {
    readEntity(slot, id);
    if (entities_[slot].alive)
      index_.insert(slot, indexBox(entities_[slot]));
    else
      index_.remove(slot);
  }
  compactIfWasteful();
}

void HostViewScene::refreshTables() {
  const std::uint64_t before = tables_->blocksAndStylesDigest();
  const bool kept = tables_->read(db_, layers_, patterns_);
  if (!kept || tables_->blocksAndStylesDigest() != before) {
    rebuild();
    return;
  }
  layerZero_ = tables_->layerZero();
  linetypeScale_ = tables_->linetypeScale();
}

void HostViewScene::compactIfWasteful() {
  if (garbage_ * 2 <= geometry_.primitives.size()) return;
  HostViewGeometry compact;
  compact.primitives.reserve(geometry_.primitives.size() - garbage_);
  auto move = [&](std::uint32_t& first, std::uint32_t count) {
    const auto start = static_cast<std::uint32_t>(compact.primitives.size());
    for (std::uint32_t i = first; i < first + count; ++i)
      compact.primitives.push_back(copyPrimitive(geometry_, geometry_.primitives[i], compact));
    first = start;
  };
  for (HostViewBlock& block : blocks_) move(block.first, block.count);
  for (HostViewEntity& entity : entities_) move(entity.first, entity.count);
  geometry_ = std::move(compact);
  garbage_ = 0;
}

HostViewBox HostViewScene::extents() const {
  HostViewBox box;
  for (const HostViewEntity& entity : entities_)
    if (entity.alive) box.add(entity.extents);
  return box;
}

std::int64_t HostViewScene::entityIndex(const OdDbObjectId& id) const {
  auto found = slotByHandle_.find(id.getHandle().value());
  if (found == slotByHandle_.end() || !entities_[found->second].alive) return -1;
  return found->second;
}

QString HostViewScene::unsupportedSummary() const {
  QStringList parts;
  for (const auto& [type, count] : unsupported_)
    parts << QStringLiteral("%1 %2").arg(count).arg(QString::fromStdString(type));
  return parts.isEmpty() ? QString()
                         : QStringLiteral("Not drawn: ") + parts.join(QStringLiteral(", "));
}
