#include "OdDbRecordLinks.h"

#include "DxfObject.h"

namespace {

bool isPointerCode(int code) {
  return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 ||
         code == 481 || code == 1005;
}

bool namesDimensionStyle(std::string_view type) {
  return type == "DIMENSION" || type == "ARC_DIMENSION" || type == "LARGE_RADIAL_DIMENSION" ||
         type == "LEADER" || type == "TOLERANCE";
}

// The table a name tag of `code` is looked up in, or kTableKinds when the tag names nothing.
OdDbDatabaseImpl::TableKind nameTable(OdDbRecordLinks::Place place, std::string_view type,
                                      int code) {
  using Impl = OdDbDatabaseImpl;
  switch (place) {
    case OdDbRecordLinks::kBlocksOrEntities:
      if (code == 8) return Impl::kLayer;
      if (code == 6) return Impl::kLtype;
      if (code == 7) return Impl::kStyle;
      if (code == 3 && namesDimensionStyle(type)) return Impl::kDimstyle;
      return Impl::kTableKinds;
    case OdDbRecordLinks::kTables:
      return code == 6 && type == "LAYER" ? Impl::kLtype : Impl::kTableKinds;
    case OdDbRecordLinks::kObjects:
      // An XRECORD's groups keep their meaning (layer states list layers and linetypes by
      // name); layer filters and indexes list layers.
      if (type == "XRECORD") {
        if (code == 8) return Impl::kLayer;
        if (code == 6) return Impl::kLtype;
        if (code == 7) return Impl::kStyle;
        return Impl::kTableKinds;
      }
      if (code == 8 && (type == "LAYER_FILTER" || type == "LAYER_INDEX")) return Impl::kLayer;
      return code == 6 && type == "MLINESTYLE" ? Impl::kLtype : Impl::kTableKinds;
    case OdDbRecordLinks::kOther:
      break;
  }
  return Impl::kTableKinds;
}

}  // namespace

OdDbRecordLinks::Place OdDbRecordLinks::placeOf(std::string_view sectionName) {
  if (sectionName == "TABLES") return kTables;
  if (sectionName == "BLOCKS" || sectionName == "ENTITIES") return kBlocksOrEntities;
  if (sectionName == "OBJECTS") return kObjects;
  return kOther;
}

void OdDbRecordLinks::scan(const DxfObject& obj, Place place, std::vector<Link>& out) {
  // An entity's type matters only for a group 3: it is read when one comes, as there are
  // millions of entities and few of them are dimensions.
  std::string_view type;
  if (place != kBlocksOrEntities) {
    type = obj.type();
    if (type == "TABLE" || type.empty()) return;
  }
  bool ownerSeen = false;
  bool xdata = false;
  int markers = 0;
  const std::size_t n = obj.size();
  for (std::size_t i = 1; i < n; ++i) {
    const int code = obj.code(i);
    if (code == 102 && !xdata) {
      if (obj.rawValue(i).find('{') == std::string_view::npos) continue;
      for (++i; i < n && obj.code(i) != 102; ++i)
        if (isPointerCode(obj.code(i)))
          out.push_back({i, kContainer, OdDbDatabaseImpl::kTableKinds});
      continue;
    }
    if (code == 1001) xdata = true;
    if (code == 100) ++markers;
    if (isPointerCode(code)) {
      if (code == 330 && !ownerSeen && markers < 2 && !xdata) {
        ownerSeen = true;
        out.push_back({i, kContainer, OdDbDatabaseImpl::kTableKinds});
      } else {
        out.push_back({i, kPointer, OdDbDatabaseImpl::kTableKinds});
      }
      continue;
    }
    if (xdata) continue;
    if (code != 3 && code != 6 && code != 7 && code != 8) continue;
    if (type.empty() && (place != kBlocksOrEntities || code == 3)) type = obj.type();
    const OdDbDatabaseImpl::TableKind table = nameTable(place, type, code);
    if (table != OdDbDatabaseImpl::kTableKinds) out.push_back({i, kName, table});
  }
}
