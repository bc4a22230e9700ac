// The document reactor over real drawings in a headless host: managers follow the documents
// as they become current and close, and watch what is typed on the command line.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "EntryTestSupport.h"
#include "StAppServices.h"
#include "StDocManagerReactor.h"
#include "StEnumDWSPlugin.h"
#include "StError.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StManagerReactor.h"
#include "StPluginRegistrator.h"

namespace {

namespace fs = std::filesystem;
using entrytest::ModuleHost;

int g_noStandards = 0;

std::vector<std::string> pluginClasses(st::StManager* manager) {
  std::vector<std::string> names;
  for (st::StEnumDWSPluginPtr it = manager->getPlugins(); !it->current().isNull(); it->next())
    names.push_back(it->current()->isA()->name().toUtf8());
  return names;
}

TEST(StDocManagerReactor, ManagersFollowTheDocuments) {
  ModuleHost m({"EngineLayerPlugin"});
  st::StDocManagerReactor::setNoStandardsHook([] { ++g_noStandards; });
  g_noStandards = 0;
  const std::vector<fs::path> office{entrytest::writeDrawing(m.dir.path() / "office.dws")};
  const std::vector<fs::path> none;
  HostDocument* plan =
      m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "plan.dxf", &office));
  st::StManagerCache* cache = st::stManagerCache();
  ASSERT_NE(cache, nullptr);
  OdDbDatabasePtr planDb = plan->database();
  st::StManager* manager = cache->getManager(planDb.get());
  ASSERT_NE(manager, nullptr) << m.output();
  EXPECT_EQ(pluginClasses(manager), std::vector<std::string>{"EngineLayerPlugin"});

  // No list at all: the "no standards" state; an empty list: no manager either.
  HostDocument* bare = m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "bare.dxf"));
  EXPECT_EQ(g_noStandards, 1);
  EXPECT_FALSE(cache->hasManager(bare->database()));
  HostDocument* empty =
      m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "empty.dxf", &none));
  EXPECT_EQ(g_noStandards, 1);
  EXPECT_FALSE(cache->hasManager(empty->database()));

  // Current again: the same manager, refreshed from the registry.
  st::stPluginRegistrator()->setPluginNotInUse(L"EngineLayerPlugin");
  ASSERT_TRUE(m.host.makeCurrent(plan));
  EXPECT_EQ(cache->getManager(planDb.get()), manager);
  EXPECT_TRUE(pluginClasses(manager).empty());

  ASSERT_TRUE(m.host.closeDrawing(plan));
  EXPECT_FALSE(cache->hasManager(planDb.get()));
  EXPECT_TRUE(m.host.closeDrawing(empty));
  st::StDocManagerReactor::setNoStandardsHook(nullptr);
}

// Writes down the objects announced as new violations, by name.
class ViolationLog : public st::StManagerReactor {
 public:
  void newViolation(st::StDWSPlugin*, st::StError* error) override {
    OdDbSymbolTableRecordPtr record = error->objectId().safeOpenObject();
    names.push_back(record->getName().toUtf8());
  }
  std::vector<std::string> names;
};

TEST(StDocManagerReactor, ALayerTypedOnTheCommandLineIsANewViolation) {
  ModuleHost m(entrytest::kStandardPlugins);
  const std::vector<fs::path> office{fs::path(STAUDIT_SOURCE_DIR) / "examples" /
                                     "office-standards.dws"};
  HostDocument* plan =
      m.host.openDrawing(entrytest::writeDrawing(m.dir.path() / "plan.dxf", &office));
  st::StManager* manager = st::stManagerCache()->getManager(plan->database());
  ASSERT_NE(manager, nullptr) << m.output();
  ViolationLog log;
  manager->addReactor(&log);
  m.host.submit(L"-LAYER NEW NotStandard\n");
  manager->removeReactor(&log);
  EXPECT_EQ(log.names, std::vector<std::string>{"NotStandard"}) << m.output();
}

}  // namespace
