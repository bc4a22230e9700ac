// Check and automatic fix by the standard plug-ins on a generated drawing of many
// non-standard layers and many entities, against the time to load the same drawing:
//
//   plugins_bench [benchmark flags]
//
// The drawing (PLUGINS_BENCH_LAYERS layers named "Layer-0001"..., default 2000, and
// PLUGINS_BENCH_ENTITIES points spread over them, default 1000000) and its standards file
// (the same layers named "LAYER_0001"..., so that each drawing layer has one confident
// replacement) are made with the kernel and saved in the current folder, then:
//   Load            reads the drawing;
//   Check           reads it (not timed), then walks every error of the layer plug-in;
//   CheckAndAutoFix the same, applying each error's recommended fix as automatic fixing does:
//                   every layer is replaced, every entity moved, every old layer erased.
// The plug-in library is loaded through the kernel's linker, as the module loads it.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "OdDbBlockTableRecord.h"
#include "OdDbDatabase.h"
#include "OdDbEntity.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdRxClass.h"
#include "OdRxDynamicLinker.h"
#include "StDWSPlugin.h"
#include "StErrorFlags.h"

namespace {

namespace fs = std::filesystem;

const fs::path kDrawing = "plugins_bench_plan.dxf";
const fs::path kStandard = "plugins_bench_office.dws";

long setting(const char* name, long fallback) {
  const char* value = std::getenv(name);
  return value ? std::strtol(value, nullptr, 10) : fallback;
}

OdString layerName(const wchar_t* format, long index) {
  return OdString::format(format, static_cast<int>(index));
}

// Makes the drawing and its standards file, unless the current folder holds those of the
// same size from an earlier run.
void generate(long layers, long entities) {
  const fs::path params = "plugins_bench.params";
  const std::string wanted = std::to_string(layers) + " " + std::to_string(entities);
  if (fs::exists(kDrawing) && fs::exists(kStandard) && fs::exists(params)) {
    std::ifstream in(params);
    std::string had;
    std::getline(in, had);
    if (had == wanted) return;
  }
  OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  OdDbObjectIdArray ids;
  {
    OdDbLayerTablePtr standardLayers = standard->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    OdDbLayerTablePtr drawingLayers = drawing->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    for (long i = 1; i <= layers; ++i) {
      OdDbLayerTableRecordPtr model = OdDbLayerTableRecord::createObject();
      model->setName(layerName(L"LAYER_%04d", i));
      standardLayers->add(model.get());
      model->setColorIndex(static_cast<short>(1 + i % 255));
      OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
      layer->setName(layerName(L"Layer-%04d", i));
      ids.push_back(drawingLayers->add(layer.get()));
      layer->setColorIndex(static_cast<short>(1 + (i + 7) % 255));
    }
  }
  OdDbBlockTableRecordPtr space = drawing->getModelSpaceId().safeOpenObject(OdDb::kForWrite);
  for (long i = 0; i < entities; ++i) {
    OdDbEntityPtr point = OdDbEntity::createObject();
    space->appendOdDbEntity(point.get());
    point->setLayer(ids[static_cast<unsigned>(i % layers)]);
  }
  space = OdDbBlockTableRecordPtr();
  standard->writeFile(kStandard);
  drawing->writeFile(kDrawing);
  std::ofstream(params) << wanted << "\n";
}

st::StDWSPluginPtr layerPlugin() {
  return st::StDWSPluginPtr(odrxCreateObject(L"StDWSLayerPlugin"));
}

// Walks every error as the check manager does; with `fix`, applies each recommended fix.
void check(benchmark::State& state, bool fix) {
  std::int64_t errors = 0;
  std::int64_t fixed = 0;
  for (auto _ : state) {
    state.PauseTiming();
    OdDbDatabasePtr drawing = OdDbDatabase::readFile(kDrawing);
    OdDbDatabasePtr standard = OdDbDatabase::readFile(kStandard);
    st::StDWSPluginPtr plugin = layerPlugin();
    state.ResumeTiming();
    plugin->initialize(nullptr);
    plugin->setupForAudit(drawing.get(), drawing->getFilename(), {OdString(L"office.dws")},
                          {standard.get()});
    plugin->setObjects({}, true);
    plugin->start(nullptr);
    for (plugin->next(); !plugin->done(); plugin->next()) {
      st::StErrorPtr error = plugin->getError();
      ++errors;
      if (!fix) continue;
      st::StFixPtr recommended = plugin->getRecommendedFix(error.get());
      if (recommended.isNull()) continue;
      plugin->fixError(error.get(), recommended.get());
      if (error->flags() & st::kStErrorFixed) ++fixed;
    }
    state.PauseTiming();
    plugin = st::StDWSPluginPtr();
    drawing = OdDbDatabasePtr();
    standard = OdDbDatabasePtr();
    state.ResumeTiming();
  }
  state.counters["errors"] = static_cast<double>(errors) / static_cast<double>(state.iterations());
  state.counters["fixed"] = static_cast<double>(fixed) / static_cast<double>(state.iterations());
}

void BM_Load(benchmark::State& state) {
  for (auto _ : state) {
    OdDbDatabasePtr drawing = OdDbDatabase::readFile(kDrawing);
    benchmark::DoNotOptimize(drawing.get());
  }
}
void BM_Check(benchmark::State& state) {
  check(state, false);
}
void BM_CheckAndAutoFix(benchmark::State& state) {
  check(state, true);
}

// One run each: a fix of the whole drawing takes some times as long as loading it, and the
// drawing is read afresh for every run.
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Check)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_CheckAndAutoFix)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const long layers = setting("PLUGINS_BENCH_LAYERS", 2000);
  const long entities = setting("PLUGINS_BENCH_ENTITIES", 1000000);
  std::printf("drawing of %ld layers and %ld entities\n", layers, entities);
  std::fflush(stdout);
  generate(layers, entities);
  // The engine classes the plug-ins derive from, as the module registers them.
  st::StError::rxInit();
  st::StFix::rxInit();
  st::StDWSPlugin::rxInit();
  odrxDynamicLinker()->loadModule(L"StStandardPlugins", false);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
