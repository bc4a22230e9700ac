// Writes a drawing whose layers no standard has and a standards file of as many layers, for
// measuring how stcheck ranks and reports the candidate fixes of non-standard names.
//
//   make_name_bench DRAWING STANDARD [--layers N]
//
// The standard's layers are "LAYER_0001"...; the drawing's alternate between "Layer-0001"...
// (each equal to one standard name ignoring case and separators, so recommended) and
// "Wall-Hatch-0002"... (close to none), each with an entity on it.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>

#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"

int main(int argc, char** argv) {
  CLI::App app("Writes a drawing of non-standard layers and a standard of as many",
               "make_name_bench");
  std::string drawingPath;
  std::string standardPath;
  int layers = 3000;
  app.add_option("drawing", drawingPath, "the drawing to write")->required();
  app.add_option("standard", standardPath, "the standards file to write")->required();
  app.add_option("--layers", layers, "layers in each")->check(CLI::Range(1, 9999));
  CLI11_PARSE(app, argc, argv);
  try {
    OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
    OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
    OdDbObjectIdArray ids;
    {
      OdDbLayerTablePtr standardLayers =
          standard->getLayerTableId().safeOpenObject(OdDb::kForWrite);
      OdDbLayerTablePtr drawingLayers = drawing->getLayerTableId().safeOpenObject(OdDb::kForWrite);
      for (int i = 1; i <= layers; ++i) {
        OdDbLayerTableRecordPtr model = OdDbLayerTableRecord::createObject();
        model->setName(OdString::format(L"LAYER_%04d", i));
        model->setColorIndex(static_cast<short>(1 + i % 255));
        standardLayers->add(model.get());
        OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
        layer->setName(OdString::format(i % 2 ? L"Layer-%04d" : L"Wall-Hatch-%04d", i));
        layer->setColorIndex(static_cast<short>(1 + (i + 7) % 255));
        ids.push_back(drawingLayers->add(layer.get()));
      }
    }
    OdDbBlockTableRecordPtr space = drawing->getModelSpaceId().safeOpenObject(OdDb::kForWrite);
    for (const OdDbObjectId& id : ids) {
      OdDbEntityPtr point = OdDbEntity::createObject();
      space->appendOdDbEntity(point.get());
      point->setLayer(id);
    }
    space = OdDbBlockTableRecordPtr();
    standard->writeFile(standardPath);
    drawing->writeFile(drawingPath);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "make_name_bench: %s\n", e.what());
    return 1;
  }
  return 0;
}
