#include "StDWSLayerPlugin.h"

#include "OdDbDictionary.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbLinetypeTable.h"
#include "StDrawingRelease.h"
#include "StIcon.h"
#include "StLayerProperties.h"
#include "StRecordCloning.h"
#include "StRecordLookup.h"
#include "StVariantText.h"

namespace st {

ODRX_DEFINE_MEMBERS(StDWSLayerPlugin, StDWSPlugin);

namespace {

// The plot style dictionary of a drawing, or null.
OdDbDictionaryPtr plotStyles(OdDbDatabase* db) {
  OdDbDictionaryPtr root =
      OdDbDictionary::cast(db->getNamedObjectsDictionaryId().openObject().get());
  if (root.isNull()) return OdDbDictionaryPtr();
  return OdDbDictionary::cast(root->getAt(L"ACAD_PLOTSTYLENAME", OdDb::kForRead).get());
}

// A layer's plot style by name: plot styles are objects of each drawing, so only their names
// compare across drawings.
OdString plotStyleName(OdDbLayerTableRecord& layer) {
  const OdDbObjectId id = layer.plotStyleNameId();
  if (id.isNull()) return OdString();
  OdDbDictionaryPtr styles = plotStyles(layer.database());
  return styles.isNull() ? OdString() : styles->nameAt(id);
}

// A layer that names none has the drawing's default plot style.
OdString plotStyleOrNormal(OdDbLayerTableRecord& layer) {
  const OdString name = plotStyleName(layer);
  return name.isEmpty() ? OdString(L"Normal") : name;
}

// The colour as compared: the true colour where both drawings can store one, else the index.
OdVariant colorValue(OdDbLayerTableRecord& layer, bool trueColors) {
  const std::int32_t rgb = trueColors ? layer.trueColor() : -1;
  return rgb >= 0 ? OdVariant(rgb) : layerColorToOdVariant(&layer);
}

// Whether `a` and `b` (either may be null) are both of a release that stores what `release`
// added.
bool bothStore(const OdDbDatabase* a, const OdDbDatabase* b, int release) {
  return (!a || storesRelease(a, release)) && (!b || storesRelease(b, release));
}

}  // namespace

StDWSLayerPlugin::StDWSLayerPlugin()
    : StSymbolTablePlugin(L"Layers",
                          L"Checks that the layers of a drawing are those of its standards "
                          L"and have their colour, linetype, lineweight, plotting, plot style "
                          L"and transparency.",
                          L"layer", L"Layer", L"AcDbLayerTableRecord") {}

OdDbObjectId StDWSLayerPlugin::tableOf(OdDbDatabase* db) const {
  return db ? db->getLayerTableId() : OdDbObjectId();
}

// Layer "0" and the layer dimensions put their definition points on are every drawing's.
bool StDWSLayerPlugin::isReserved(const OdString& name) const {
  return name == L"0" || name.iCompare(L"Defpoints") == 0;
}

void StDWSLayerPlugin::readProperties(OdDbSymbolTableRecord& record, StPropertyList& out) const {
  auto& layer = static_cast<OdDbLayerTableRecord&>(record);
  // Properties of later releases only where both the drawing checked and the record's own
  // drawing store them; a value left out compares as the default the accessors give.
  OdDbDatabase* own = layer.database();
  out.emplace_back(L"Color", colorValue(layer, bothStore(drawing(), own, kReleaseR2004)));
  out.emplace_back(L"Linetype", OdVariant(layer.linetypeName()));
  if (!bothStore(drawing(), own, kReleaseR2000)) return;
  out.emplace_back(L"Lineweight", layerLineWeightToOdVariant(&layer));
  out.emplace_back(L"Plot", OdVariant(layer.isPlottable()));
  // Plot styles by name, and only where both drawings have named plot styles: a drawing
  // without them would be told of a difference no fix can remove.
  if (drawing() && !plotStyles(drawing()).isNull() && own && !plotStyles(own).isNull())
    out.emplace_back(L"Plot style", OdVariant(plotStyleOrNormal(layer)));
  out.emplace_back(L"Transparency", OdVariant(layer.transparency()));
}

bool StDWSLayerPlugin::applyStandard(const OdDbObjectId& record, const OdDbObjectId& standard) {
  OdDbLayerTableRecordPtr model = standard.safeOpenObject();
  OdDbDatabase* db = record.database();
  // Only what differs is written, so that a fix leaves the layer's other tags as they were.
  OdDbObjectId linetype;
  {
    OdDbLayerTableRecordPtr layer = record.safeOpenObject();
    if (!compareOdVariant(OdVariant(layer->linetypeName()), OdVariant(model->linetypeName()))) {
      linetype = getRecord(db->getLinetypeTableId(), model->linetypeName());
      if (linetype.isNull() && stCloneLinetypeTableRecord(db, standard.database(),
                                                          model->linetypeName(), linetype) != eOk)
        return false;
    }
  }
  // What the drawing's or the standard's release cannot store is left as it is.
  const bool trueColors = bothStore(db, standard.database(), kReleaseR2004);
  OdDbLayerTableRecordPtr layer = record.safeOpenObject(OdDb::kForWrite);
  if (!compareOdVariant(colorValue(*layer, trueColors), colorValue(*model, trueColors))) {
    layer->setColorIndex(model->colorIndex());
    if (trueColors && model->trueColor() >= 0) layer->setTrueColor(model->trueColor());
  }
  if (!linetype.isNull()) layer->setLinetypeObjectId(linetype);
  if (!bothStore(db, standard.database(), kReleaseR2000)) return true;
  if (layer->lineWeight() != model->lineWeight()) layer->setLineWeight(model->lineWeight());
  if (layer->isPlottable() != model->isPlottable()) layer->setIsPlottable(model->isPlottable());
  const OdString style = plotStyleOrNormal(*model);
  if (!plotStyles(standard.database()).isNull() &&
      !compareOdVariant(OdVariant(plotStyleOrNormal(*layer)), OdVariant(style))) {
    // A plot style the drawing does not have cannot be given; the rest still is.
    OdDbDictionaryPtr styles = plotStyles(db);
    const OdDbObjectId id = styles.isNull() ? OdDbObjectId() : styles->getAt(style);
    if (!id.isNull()) layer->setPlotStyleName(id);
  }
  if (layer->transparency() != model->transparency()) layer->setTransparency(model->transparency());
  return true;
}

StIconHandle StDWSLayerPlugin::icon() const {
  static const char* const kRows[StIcon::kSize] = {
      "................", "................", "......####......", "....##....##....",
      "..##........##..", "##............##", "..##........##..", "..#.##....##.#..",
      "##....####....##", "..##........##..", "....##....##....", "......####......",
      "................", "................", "................", "................",
  };
  return stCreateIcon(kRows, 0xFF2F6FBF);
}

}  // namespace st
