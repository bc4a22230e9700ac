// Plug-ins that the manager tests create by class name through the plug-in registry.
//
// EngineLayerPlugin reports every layer whose colour differs from the layer of the same name
// in the first standards drawing, as a fixable problem whose recommended fix sets the
// standard colour. EngineBarePlugin overrides nothing. Both register with initApp and go
// with uninitApp, so the library can be unloaded between tests.

#include <vector>

#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdRxModule.h"
#include "StDWSPluginImplBase.h"
#include "StErrorFlags.h"

namespace {

class EngineLayerPlugin : public st::StDWSPluginImplBase<st::StDWSPlugin> {
 public:
  ODRX_DECLARE_MEMBERS(EngineLayerPlugin);

  EngineLayerPlugin() : StDWSPluginImplBase(L"Layers", L"", L"1", L"", L"") {
    classNames_.append(L"AcDbLayerTableRecord");
  }

  void setupForAudit(OdDbDatabase* drawing, const OdString&, const OdArray<OdString>&,
                     const OdArray<OdDbDatabase*>& standards) override {
    drawing_ = drawing;
    standard_ = standards.isEmpty() ? nullptr : standards[0];
  }
  void setObjects(const OdArray<OdDbObjectId>& objects, bool wholeDrawing) override {
    objects_ = objects;
    wholeDrawing_ = wholeDrawing;
  }
  // Stands before the first error; next() moves onto it.
  void start(st::StError*) override {
    errors_.clear();
    position_ = -1;
    if (!drawing_ || !standard_) return;
    OdArray<OdDbObjectId> layers = objects_;
    if (wholeDrawing_) {
      layers.clear();
      OdDbLayerTablePtr table = drawing_->getLayerTableId().safeOpenObject();
      for (auto it = table->newIterator(); !it->done(); it->step())
        layers.append(it->getRecordId());
    }
    OdDbLayerTablePtr standardLayers = standard_->getLayerTableId().safeOpenObject();
    for (const OdDbObjectId& id : layers) {
      OdDbLayerTableRecordPtr layer = id.safeOpenObject();
      OdDbObjectId standardId = standardLayers->getAt(layer->getName());
      if (standardId.isNull()) continue;
      OdDbLayerTableRecordPtr standard = standardId.safeOpenObject();
      if (standard->colorIndex() == layer->colorIndex()) continue;
      st::StErrorPtr error = st::StError::createObject();
      error->setObjectId(id);
      error->setName(layer->getName());
      error->setFlags(st::kStErrorFixable);
      error->addProperty(L"Color", OdVariant(std::int32_t{layer->colorIndex()}));
      error->setTag(static_cast<std::uint64_t>(standard->colorIndex()));
      errors_.push_back(error);
    }
  }
  st::StErrorPtr getError() override {
    return done() || position_ < 0 ? st::StErrorPtr() : errors_[position_];
  }
  void next() override { ++position_; }
  bool done() const override { return position_ >= static_cast<long>(errors_.size()); }
  void clear() override {
    errors_.clear();
    position_ = -1;
  }
  st::StFixPtr getRecommendedFix(st::StError* error) override {
    st::StFixPtr fix = st::StFix::createObject();
    fix->setName(error->name());
    fix->setPropertyValue(L"Color", OdVariant(static_cast<std::int32_t>(error->tag())));
    return fix;
  }
  void fixError(st::StError* error, st::StFix* fix) override {
    OdVariant color;
    if (!fix->propertyValue(L"Color", color)) return;
    OdDbLayerTableRecordPtr layer = error->objectId().safeOpenObject(OdDb::kForWrite);
    layer->setColorIndex(static_cast<short>(color.getInt32()));
    error->setFlags(error->flags() | st::kStErrorFixed);
  }

 private:
  OdDbDatabase* drawing_ = nullptr;
  OdDbDatabase* standard_ = nullptr;
  OdArray<OdDbObjectId> objects_;
  bool wholeDrawing_ = true;
  std::vector<st::StErrorPtr> errors_;
  long position_ = -1;
};

ODRX_DEFINE_MEMBERS(EngineLayerPlugin, st::StDWSPlugin);

class EngineBarePlugin : public st::StDWSPluginImplBase<st::StDWSPlugin> {
 public:
  ODRX_DECLARE_MEMBERS(EngineBarePlugin);
};

ODRX_DEFINE_MEMBERS(EngineBarePlugin, st::StDWSPlugin);

class EngineTestPlugins : public OdRxModule {
 public:
  void initApp() override {
    EngineLayerPlugin::rxInit();
    EngineBarePlugin::rxInit();
  }
  void uninitApp() override {
    EngineBarePlugin::rxUninit();
    EngineLayerPlugin::rxUninit();
  }
};

}  // namespace

ODRX_DEFINE_MODULE(EngineTestPlugins);
