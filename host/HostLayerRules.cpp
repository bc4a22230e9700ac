#include "HostLayerRules.h"

#include <cmath>
#include <cwchar>

#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdResBuf.h"
#include "OdRxClass.h"

namespace {

// "an AcDbText (handle 2F) in *Model_Space": what a person needs to find the object.
OdString describeHolder(const OdDbObjectId& id) {
  OdDbObjectPtr holder = id.openObject();
  const OdString handle = OdString::fromUtf8(id.getHandle().ascii());
  if (holder.isNull()) return OdString(L"object ") + handle;
  OdString text =
      OdString::format(L"an %ls (handle %ls)", holder->isA()->name().c_str(), handle.c_str());
  if (OdDbEntity::cast(holder.get()).isNull()) return text;
  OdDbSymbolTableRecordPtr block =
      OdDbSymbolTableRecord::cast(holder->ownerId().openObject().get());
  if (!block.isNull()) text += OdString(L" in ") + block->getName();
  return text;
}

}  // namespace

OdString HostLayerRules::whyNotDeletable(const OdDbDatabase& db, const OdDbObjectId& layer) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject();
  if (layer.isNull() || layer.database() != &db || !table->has(layer))
    return L"it is not a layer of this drawing";
  OdDbLayerTableRecordPtr record = layer.safeOpenObject();
  const OdString name = record->getName();
  if (layer == db.getLayerZeroId()) return L"it is layer 0";
  if (name.iCompare(L"Defpoints") == 0)
    return L"it is Defpoints, the layer of dimensions' definition points";
  if (currentLayer(db).iCompare(name) == 0) return L"it is the current layer";
  if (record->isDependent()) return L"it belongs to an external reference";

  std::vector<OdDbObjectId> users;
  for (const OdDbDatabase::RecordReference& r : db.recordReferences(OdDbObjectIdArray{layer}))
    if (r.link != OdDbDatabase::RecordLink::kContainer &&
        (users.empty() || users.back() != r.holder))
      users.push_back(r.holder);
  if (users.empty()) return OdString();
  if (users.size() == 1) return describeHolder(users.front()) + L" uses it";
  return OdString::format(L"%d objects use it, the first ", static_cast<int>(users.size())) +
         describeHolder(users.front());
}

const std::vector<OdDb::LineWeight>& HostLayerRules::lineweights() {
  using namespace OdDb;
  static const std::vector<LineWeight> kWeights = {
      kLnWt000, kLnWt005, kLnWt009, kLnWt013, kLnWt015, kLnWt018, kLnWt020, kLnWt025,
      kLnWt030, kLnWt035, kLnWt040, kLnWt050, kLnWt053, kLnWt060, kLnWt070, kLnWt080,
      kLnWt090, kLnWt100, kLnWt106, kLnWt120, kLnWt140, kLnWt158, kLnWt200, kLnWt211};
  return kWeights;
}

OdString HostLayerRules::lineweightText(OdDb::LineWeight weight) {
  if (weight == OdDb::kLnWtByLnDefault) return L"Default";
  if (weight < 0) return OdString::format(L"%d", static_cast<int>(weight));
  return OdString::format(L"%d.%02d", weight / 100, weight % 100);
}

bool HostLayerRules::parseLineweight(const OdString& text, OdDb::LineWeight& weight) {
  if (text.iCompare(L"Default") == 0) {
    weight = OdDb::kLnWtByLnDefault;
    return true;
  }
  if (text.isEmpty()) return false;
  wchar_t* end = nullptr;
  const double mm = std::wcstod(text.c_str(), &end);
  if (*end != L'\0' || !std::isfinite(mm)) return false;
  for (OdDb::LineWeight w : lineweights())
    if (std::fabs(mm * 100.0 - static_cast<int>(w)) < 1e-6) {
      weight = w;
      return true;
    }
  return false;
}

OdString HostLayerRules::currentLayer(const OdDbDatabase& db) {
  OdResBufPtr value = db.getHeaderVariable(L"$CLAYER");
  return value.isNull() ? OdString(L"0") : value->getString();
}
