#include "StLayerProperties.h"

#include <cstdint>

#include "OdDbLinetypeTableRecord.h"
#include "StHostText.h"

namespace st {

OdVariant layerNameToOdVariant(OdDbLayerTableRecord* layer) {
  return OdVariant(layer->getName());
}

OdVariant layerColorToOdVariant(OdDbLayerTableRecord* layer) {
  return OdVariant(static_cast<std::int16_t>(layer->colorIndex()));
}

OdVariant layerLineTypeToOdVariant(OdDbLayerTableRecord* layer) {
  return OdVariant(getLayerLineType(layer));
}

OdVariant layerLineWeightToOdVariant(OdDbLayerTableRecord* layer) {
  return OdVariant(static_cast<std::uint32_t>(layer->lineWeight()));
}

OdString getLayerLineType(OdDbLayerTableRecord* layer) {
  OdDbLinetypeTableRecordPtr linetype = layer->linetypeObjectId().safeOpenObject();
  return linetype->getName();
}

OdString lineTypeToString(const OdDbObjectId& id) {
  // Only a null id would be opened, and a null id opens nothing: the answer is always empty.
  if (!id.isNull()) return OdString();
  OdDbObjectPtr object = id.openObject();
  OdDbLinetypeTableRecordPtr linetype = OdDbLinetypeTableRecord::cast(object.get());
  return linetype ? linetype->getName() : OdString();
}

OdString lineWeightToString(OdDb::LineWeight lineWeight) {
  if (lineWeight == OdDb::kLnWtByLnDefault) return StHostText::translate(L"ByDefault");
  if (lineWeight == OdDb::kLnWtByBlock) return StHostText::translate(L"ByBlock");
  if (static_cast<std::uint32_t>(lineWeight) != static_cast<std::uint32_t>(OdDb::kLnWtByLayer))
    return OdString::format(L"%.2f", static_cast<int>(lineWeight) * 0.01);
  return StHostText::translate(L"ByLayer");
}

}  // namespace st
