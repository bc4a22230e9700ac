// Plug-ins driven as the check manager drives them: the base that reports nothing, and a
// plug-in that compares the layers of a drawing with a standards file on disk.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "StDWSPluginImpl.h"
#include "StErrorFlags.h"
#include "TestSupport.h"

namespace {

void addLayer(OdDbDatabase& db, const wchar_t* name) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  table->add(layer.get());
}

// Reports each layer of the drawing that the standards file does not have.
class MissingLayerPlugin : public st::StDWSPluginImplBase<st::StDWSPlugin> {
 public:
  ODRX_DECLARE_MEMBERS(MissingLayerPlugin);

  void setupForAudit(OdDbDatabase* drawing, const OdString&, const OdArray<OdString>&,
                     const OdArray<OdDbDatabase*>& standards) override {
    drawing_ = drawing;
    standard_ = standards[0];
  }
  void start(st::StError*) override {
    errors_.clear();
    OdDbLayerTablePtr known = standard_->getLayerTableId().safeOpenObject();
    OdDbLayerTablePtr layers = drawing_->getLayerTableId().safeOpenObject();
    for (auto it = layers->newIterator(); !it->done(); it->step()) {
      OdString name = it->getRecord()->getName();
      if (known->has(name)) continue;
      errors_.push_back(st::StError::createObject());
      errors_.back()->setObjectId(it->getRecordId());
      errors_.back()->setName(name);
      errors_.back()->setFlags(st::kStErrorAlwaysReported);
    }
    current_ = 0;
  }
  st::StErrorPtr getError() override { return done() ? st::StErrorPtr() : errors_[current_]; }
  void next() override { ++current_; }
  bool done() const override { return current_ >= errors_.size(); }

 private:
  OdDbDatabase* drawing_ = nullptr;
  OdDbDatabase* standard_ = nullptr;
  std::vector<st::StErrorPtr> errors_;
  size_t current_ = 0;
};

ODRX_DEFINE_MEMBERS(MissingLayerPlugin, st::StDWSPlugin);

class BarePlugin : public st::StDWSPluginImplBase<st::StDWSPlugin> {};

class PluginTest : public ::testing::Test {
 protected:
  void SetUp() override {
    st::StError::rxInit();
    st::StDWSPlugin::rxInit();
    MissingLayerPlugin::rxInit();
  }
  void TearDown() override {
    MissingLayerPlugin::rxUninit();
    st::StDWSPlugin::rxUninit();
    st::StError::rxUninit();
  }

  // Sets the plug-in up and walks it as the manager does; the names of the errors it yields.
  static std::vector<std::string> check(st::StDWSPlugin& plugin, OdDbDatabase* drawing,
                                        OdDbDatabase* standard, const OdString& standardFile) {
    plugin.initialize(nullptr);
    plugin.setupForAudit(drawing, L"plan.dxf", {standardFile}, {standard});
    plugin.setObjects({}, true);
    plugin.start(nullptr);
    std::vector<std::string> seen;
    while (!plugin.done()) {
      st::StErrorPtr error = plugin.getError();
      if (error.isNull()) break;
      EXPECT_EQ(plugin.getError().get(), error.get()) << "the error stays current until next";
      seen.push_back(error->name().toUtf8());
      plugin.next();
    }
    EXPECT_TRUE(plugin.getError().isNull());
    return seen;
  }
};

TEST_F(PluginTest, PluginOnTheBaseAloneReportsNothingAndIsDoneAtOnce) {
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  for (st::StDWSPluginPtr plugin :
       {st::StDWSPlugin::createObject(),
        st::StDWSPluginPtr(OdRxObjectImpl<BarePlugin>::createObject())}) {
    EXPECT_TRUE(plugin->done());
    EXPECT_TRUE(check(*plugin, drawing.get(), drawing.get(), L"office.dws").empty());
    EXPECT_TRUE(plugin->getRecommendedFix(nullptr).isNull());
  }
}

TEST_F(PluginTest, PluginMadeByItsClassNameYieldsItsErrorsInOrder) {
  testsupport::TempDir dir;
  const auto standardPath = dir.path() / "office.dws";
  OdDbDatabase::createEmpty()->writeFile(standardPath);
  OdDbDatabasePtr standard = OdDbDatabase::readFile(standardPath);
  addLayer(*standard, L"Walls");
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  for (const wchar_t* name : {L"Notes", L"WALLS", L"Hatch"}) addLayer(*drawing, name);

  st::StDWSPluginPtr plugin = odrxCreateObject(L"MissingLayerPlugin");
  ASSERT_FALSE(plugin.isNull());
  EXPECT_EQ(plugin->isA()->name(), L"MissingLayerPlugin") << "the manager keys plug-ins by this";
  EXPECT_EQ(check(*plugin, drawing.get(), standard.get(), standardPath.c_str()),
            (std::vector<std::string>{"Notes", "Hatch"}));
}

}  // namespace
