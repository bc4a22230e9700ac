#include "StUiObjectUsers.h"

#include <exception>
#include <set>
#include <string_view>

#include "DxfObject.h"
#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbSymbolTable.h"
#include "OdDbSymbolTableRecord.h"

namespace stui {

namespace {

// What in an entity names the object, by the object's kind.
enum class Kind { kNone, kLayer, kLinetype, kTextStyle, kDimensionStyle };

Kind kindOf(std::string_view type) {
  if (type == "LAYER") return Kind::kLayer;
  if (type == "LTYPE") return Kind::kLinetype;
  if (type == "STYLE") return Kind::kTextStyle;
  if (type == "DIMSTYLE") return Kind::kDimensionStyle;
  return Kind::kNone;
}

bool isText(std::string_view type) {
  return type == "TEXT" || type == "MTEXT" || type == "ATTDEF";
}

bool isDimensioning(std::string_view type) {
  return type == "DIMENSION" || type == "LEADER" || type == "TOLERANCE";
}

// The text of the first `code` tag, or `otherwise` (what a reader takes for a missing tag)
// when there is none.
OdString textOf(const DxfObject& tags, int code, const wchar_t* otherwise) {
  const std::size_t at = tags.find(code);
  return at != DxfObject::npos ? tags.text(at) : OdString(otherwise);
}

bool same(const OdString& a, const OdString& b) {
  return a.iCompare(b) == 0;
}

// The layers (upper-cased names) whose linetype is `linetype`.
std::set<OdString> layersDrawnWith(OdDbDatabase& db, const OdString& linetype) {
  std::set<OdString> layers;
  OdDbObjectPtr table = db.getLayerTableId().openObject();
  auto* symbols = OdDbSymbolTable::cast(table.get()).get();
  if (!symbols) return layers;
  for (OdDbSymbolTableIteratorPtr it = symbols->newIterator(); !it->done(); it->step()) {
    OdDbObjectPtr layer = it->getRecordId().openObject();
    if (!layer) continue;
    if (same(textOf(layer->dxf(), 6, L"Continuous"), linetype)) {
      OdString key = OdDbSymbolTableRecord::cast(layer.get())->getName();
      layers.insert(key.makeUpper());
    }
  }
  return layers;
}

}  // namespace

OdDbObjectIdArray stObjectUsers(const OdDbObjectId& object) {
  OdDbObjectIdArray users;
  if (object.isNull() || object.isErased()) return users;
  OdDbDatabase* db = object.database();
  OdDbObjectPtr record = object.openObject();
  auto* named = record ? OdDbSymbolTableRecord::cast(record.get()).get() : nullptr;
  if (!db || !named) return users;
  const Kind kind = kindOf(record->dxf().type());
  if (kind == Kind::kNone) return users;
  const OdString name = named->getName();
  const std::set<OdString> byLayer =
      kind == Kind::kLinetype ? layersDrawnWith(*db, name) : std::set<OdString>();

  OdDbObjectPtr space = db->getModelSpaceId().openObject();
  auto* model = space ? OdDbBlockTableRecord::cast(space.get()).get() : nullptr;
  if (!model) return users;
  for (OdDbObjectIteratorPtr it = model->newIterator(); !it->done(); it->step()) {
    try {
      OdDbObjectPtr entity = it->objectId().openObject();
      if (!entity) continue;
      const DxfObject& tags = entity->dxf();
      const std::string_view type = tags.type();
      bool uses = false;
      switch (kind) {
        case Kind::kLayer:
          uses = same(textOf(tags, 8, L"0"), name);
          break;
        case Kind::kLinetype: {
          const OdString linetype = textOf(tags, 6, L"ByLayer");
          if (!same(linetype, L"ByLayer")) {
            uses = same(linetype, name);
          } else {
            OdString layer = textOf(tags, 8, L"0");
            uses = byLayer.count(layer.makeUpper()) > 0;
          }
          break;
        }
        case Kind::kTextStyle:
          uses = isText(type) && same(textOf(tags, 7, L"Standard"), name);
          break;
        case Kind::kDimensionStyle:
          uses = isDimensioning(type) && same(textOf(tags, 3, L"Standard"), name);
          break;
        case Kind::kNone:
          break;
      }
      if (uses) users.append(it->objectId());
    } catch (const std::exception&) {
      // A broken entity shows nothing.
    }
  }
  return users;
}

}  // namespace stui
