#include "HostViewTables.h"

#include <QString>
#include <exception>
#include <unordered_set>

#include "DxfDocument.h"
#include "DxfObject.h"
#include "HostQtText.h"
#include "HostViewPalette.h"
#include "HostViewScene.h"
#include "HostViewTags.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTableRecord.h"
#include "OdDbSymbolTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "OdResBuf.h"

namespace {
// Calls `f` with every live record of the table `tableId` (none when the table is missing).
template <typename F>
void forEachRecord(const OdDbObjectId& tableId, F&& f) {
  OdDbObjectPtr object = tableId.isNull() ? OdDbObjectPtr() : tableId.openObject();
  OdSmartPtr<OdDbSymbolTable> table = OdDbSymbolTable::cast(object.get());
  if (!table) return;
  for (OdDbSymbolTableIteratorPtr it = table->newIterator(); !it->done(); it->step()) {
    try {
      OdDbSymbolTableRecordPtr record = it->getRecord();
      if (record) f(*record);
    } catch (const std::exception&) {
      // A record the kernel cannot open is left out; entities naming it get the defaults.
    }
  }
}

// Puts `value` at the index `byName` keeps for `name` (a record read again keeps its index,
// so primitives that name it stay right), or appends it there.
template <typename T>
void keepAt(std::unordered_map<std::wstring, std::int32_t>& byName, std::vector<T>& values,
            const std::wstring& name, T&& value) {
  auto found = byName.find(name);
  if (found == byName.end()) {
    byName.emplace(name, static_cast<std::int32_t>(values.size()));
    values.push_back(std::move(value));
  } else {
    values[found->second] = std::move(value);
  }
}

double headerReal(const OdDbDatabase& db, const wchar_t* name, double dflt) {
  try {
    OdResBufPtr value = db.getHeaderVariable(name);
    if (!value) return dflt;
    const double v = value->getDouble();
    return std::isfinite(v) && v > 0 ? v : dflt;
  } catch (const std::exception&) {
    return dflt;
  }
}

// FNV-1a over the tags of an object.
void digestTags(std::uint64_t& h, const DxfObject& tags) {
  auto mix = [&h](const void* data, std::size_t size) {
    const auto* p = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i) h = (h ^ p[i]) * 0x100000001b3ull;
  };
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const int code = tags.code(i);
    mix(&code, sizeof code);
    const std::string_view raw = tags.rawValue(i);
    mix(raw.data(), raw.size());
  }
}
}  // namespace

std::wstring HostViewTables::key(const OdString& name) {
  OdString upper = name;
  upper.makeUpper();
  return upper.str();
}

bool HostViewTables::read(OdDbDatabase& db, std::vector<HostViewLayer>& layers,
                          std::vector<HostViewPattern>& patterns) {
  bool kept = true;

  // Linetypes first: layers name theirs.
  std::unordered_set<std::wstring> seen;
  forEachRecord(db.getLinetypeTableId(), [&](OdDbSymbolTableRecord& record) {
    const std::wstring name = key(record.getName());
    if (name == L"BYLAYER" || name == L"BYBLOCK" || name == L"CONTINUOUS") return;
    OdSmartPtr<OdDbLinetypeTableRecord> linetype = OdDbLinetypeTableRecord::cast(&record);
    HostViewPattern pattern;
    pattern.name = toQString(record.getName());
    if (linetype) {
      for (double dash : linetype->dashes()) {
        if (!std::isfinite(dash)) continue;
        pattern.dashes.push_back(dash);
        pattern.length += std::abs(dash);
      }
    }
    // A pattern of nothing but dots or of no length draws as continuous.
    if (!(pattern.length > 0)) pattern.dashes.clear(), pattern.length = 0;
    seen.insert(name);
    keepAt(linetypeByName_, patterns, name, std::move(pattern));
  });
  for (const auto& [name, index] : linetypeByName_) {
    if (seen.count(name)) continue;
    patterns[index].dashes.clear(), patterns[index].length = 0;
    kept = false;
  }

  seen.clear();
  layerBySpelling_.clear();
  forEachRecord(db.getLayerTableId(), [&](OdDbSymbolTableRecord& record) {
    OdSmartPtr<OdDbLayerTableRecord> layer = OdDbLayerTableRecord::cast(&record);
    if (!layer) return;
    HostViewLayer look;
    look.name = toQString(layer->getName());
    look.visible = !layer->isOff() && !layer->isFrozen();
    const std::int32_t trueColour = layer->trueColor();
    look.colour = HostViewPalette::entityColour(layer->colorIndex(), trueColour);
    if (!HostViewColour::isRgb(look.colour)) look.colour = HostViewColour::kForeground;
    look.linetype = linetype(layer->linetypeName());
    if (look.linetype < 0) look.linetype = HostViewLinetype::kContinuous;
    const std::wstring name = key(layer->getName());
    seen.insert(name);
    keepAt(layerByName_, layers, name, std::move(look));
  });
  for (const std::wstring& name : tableLayers_) {
    if (seen.count(name)) continue;
    layers[layerByName_[name]].visible = false;
    kept = false;
  }
  tableLayers_ = std::move(seen);
  layerZero_ = layer(OdString(L"0"), layers);

  styleByName_.clear();
  std::uint64_t digest = 0xcbf29ce484222325ull;
  forEachRecord(db.getTextStyleTableId(), [&](OdDbSymbolTableRecord& record) {
    OdSmartPtr<OdDbTextStyleTableRecord> style = OdDbTextStyleTableRecord::cast(&record);
    if (!style) return;
    digestTags(digest, style->dxf());
    HostViewTextStyle look;
    const OdString typeface = style->typeface();
    look.family =
        HostViewTextLayout::familyFor(toQString(typeface.isEmpty() ? style->fileName() : typeface));
    const double width = style->xScale(), oblique = style->obliquingAngle();
    const double height = style->textSize();
    look.widthFactor = std::isfinite(width) && width > 0 ? width : 1.0;
    look.oblique = std::isfinite(oblique) ? oblique : 0.0;
    look.fixedHeight = std::isfinite(height) && height > 0 ? height : 0.0;
    styleByName_[key(style->getName())] = look;
  });
  auto standard = styleByName_.find(L"STANDARD");
  defaultStyle_ = standard != styleByName_.end() ? standard->second : HostViewTextStyle();

  // Blocks: a release-12 record is its BLOCK entity; later ones keep the base point on the
  // BLOCK entity of the blocks section, found by name.
  std::unordered_map<std::wstring, HostViewVec> bases;
  const DxfDocument* doc = nullptr;
  blocks_.clear();
  blockByName_.clear();
  forEachRecord(db.getBlockTableId(), [&](OdDbSymbolTableRecord& record) {
    OdSmartPtr<OdDbBlockTableRecord> block = OdDbBlockTableRecord::cast(&record);
    if (!block) return;
    Block b;
    b.name = toQString(block->getName());
    b.record = block->objectId();
    b.layout = block->isLayout();
    const DxfObject& tags = block->dxf();
    if (tags.type() == "BLOCK") {
      b.base = {HostViewTags::realOr(tags, 10, 0), HostViewTags::realOr(tags, 20, 0)};
    } else {
      if (!doc) {
        doc = &block->dxfDocument();
        if (const DxfSection* section = doc->findSection("BLOCKS")) {
          for (const DxfObject& obj : section->objects()) {
            if (obj.type() != "BLOCK") continue;
            const std::size_t name = obj.find(2);
            if (name == DxfObject::npos) continue;
            bases.emplace(key(obj.text(name)), HostViewVec{HostViewTags::realOr(obj, 10, 0),
                                                           HostViewTags::realOr(obj, 20, 0)});
          }
        }
      }
      auto found = bases.find(key(block->getName()));
      if (found != bases.end()) b.base = found->second;
    }
    digestTags(digest, tags);
    digest ^= std::hash<double>()(b.base.x) * 31 + std::hash<double>()(b.base.y);
    if (!b.layout) {
      for (OdDbObjectIteratorPtr it = block->newIterator(); !it->done(); it->step()) {
        try {
          OdDbObjectPtr entity = it->entity();
          if (!entity) continue;
          digestTags(digest, entity->dxf());
          if (OdSmartPtr<OdDbEntity> e = OdDbEntity::cast(entity.get()))
            for (const OdDbObjectId& sub : e->subEntityIds())
              if (OdDbObjectPtr s = sub.openObject()) digestTags(digest, s->dxf());
        } catch (const std::exception&) {
        }
      }
    }
    blockByName_.emplace(key(block->getName()), static_cast<std::int32_t>(blocks_.size()));
    blocks_.push_back(std::move(b));
  });
  digest_ = digest;

  linetypeScale_ = headerReal(db, L"$LTSCALE", 1.0);
  arrowSize_ = headerReal(db, L"$DIMASZ", 0.18) * headerReal(db, L"$DIMSCALE", 1.0);
  return kept;
}

std::int32_t HostViewTables::layer(const OdString& name, std::vector<HostViewLayer>& layers) {
  // Most entities spell their layer as the table does: try that before folding case.
  auto found = layerBySpelling_.find(name.str());
  if (found != layerBySpelling_.end()) return found->second;
  const std::wstring upper = key(name);
  found = layerByName_.find(upper);
  if (found != layerByName_.end()) {
    layerBySpelling_.emplace(name.str(), found->second);
    return found->second;
  }
  HostViewLayer look;
  look.name = toQString(name);
  const auto index = static_cast<std::int32_t>(layers.size());
  layers.push_back(std::move(look));
  layerByName_.emplace(upper, index);
  layerBySpelling_.emplace(name.str(), index);
  return index;
}

std::int32_t HostViewTables::linetype(const OdString& name) const {
  if (name.isEmpty()) return HostViewLinetype::kByLayer;
  const std::wstring upper = key(name);
  if (upper == L"BYLAYER") return HostViewLinetype::kByLayer;
  if (upper == L"BYBLOCK") return HostViewLinetype::kByBlock;
  auto found = linetypeByName_.find(upper);
  return found == linetypeByName_.end() ? HostViewLinetype::kContinuous : found->second;
}

const HostViewTextStyle& HostViewTables::style(const OdString& name) const {
  auto found = styleByName_.find(key(name));
  return found == styleByName_.end() ? defaultStyle_ : found->second;
}

std::int32_t HostViewTables::block(const OdString& name) const {
  auto found = blockByName_.find(key(name));
  return found == blockByName_.end() ? -1 : found->second;
}
