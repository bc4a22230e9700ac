// The standard plug-ins in a real check: a headless host loads the module as a host does,
// the module's registry loads the plug-ins by their default registration, and the check
// manager drives them with automatic fixing, a preferred standards file and an ignored
// problem, as the Check Standards dialog would.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdRxDynamicLinker.h"
#include "PluginsTestSupport.h"
#include "StAppServices.h"
#include "StDbReaderWriter.h"
#include "StEnumDWSPlugin.h"
#include "StErrorFlags.h"
#include "StIgnoreMarks.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StManagerReactor.h"
#include "StSettingsStorage.h"

namespace {

namespace fs = std::filesystem;
using Events = std::vector<std::string>;

// Writes down what the manager tells, and keeps the problem shown last as the dialog does.
class Recorder : public st::StManagerReactor {
 public:
  void errorFound(st::StDWSPlugin* plugin, st::StError* error) override {
    OdDbSymbolTableRecordPtr record = error->objectId().safeOpenObject();
    events.push_back("found " + record->getName().toUtf8() + " by " + plugin->name().toUtf8());
    shownPlugin = plugin;
    shownError = error;
  }
  void checkFinished() override { events.push_back("finished"); }
  void checkStatistics(std::uint32_t found, std::uint32_t autoFixed, std::uint32_t fixed,
                       std::uint32_t ignored) override {
    events.push_back("statistics " + std::to_string(found) + " " + std::to_string(autoFixed) + " " +
                     std::to_string(fixed) + " " + std::to_string(ignored));
  }
  void checkStarted() override { events.push_back("started"); }
  Events take() { return std::exchange(events, {}); }

  Events events;
  st::StDWSPlugin* shownPlugin = nullptr;
  st::StErrorPtr shownError;
};

// A headless host over a configuration of its own that registers the standard plug-ins (as
// the default registration does), with the module loaded. The plug-ins' code stays until
// their objects have gone: drawings first, then the services, then the library.
class ModuleRun {
 public:
  ModuleRun() : host(HeadlessHost::Options{configure(dir.path() / "config.json"), nullptr}) {
    host.loadModule(L"StandardsAudit");
  }
  ~ModuleRun() {
    host.app().documents().closeAll();
    st::stReleaseAppServices();
    odrxDynamicLinker()->unloadModule(L"StStandardPlugins");
  }

  testsupport::TempDir dir;
  HeadlessHost host;

 private:
  static fs::path configure(const fs::path& file) {
    auto tree = HostConfigTree::open(file);
    HostConfigTree::Path library{"cmddata", "StandardsAudit", "Plugins", "StStandardPlugins"};
    tree->createKey({"cmddata"}, "StandardsAudit");
    tree->createKey({"cmddata", "StandardsAudit"}, "Plugins");
    tree->createKey({"cmddata", "StandardsAudit", "Plugins"}, "StStandardPlugins");
    tree->setValue(library, "PluginDll", OdVariant(OdString(L"StStandardPlugins.dll")));
    for (const char* name : {"StDWSDimstylePlugin", "StDWSLayerPlugin", "StDWSLinetypePlugin",
                             "StDWSTextstylePlugin"}) {
      tree->createKey(library, name);
      HostConfigTree::Path plugin = library;
      plugin.push_back(name);
      tree->setValue(plugin, "PluginClassName", OdVariant(OdString::fromUtf8(name)));
      tree->setValue(plugin, "PluginInUse", OdVariant(std::int32_t{1}));
    }
    return file;
  }
};

TEST(CheckThroughModule, FixesAutomaticallyFromThePreferredFileAndSkipsTheIgnoredUntilUnmarked) {
  ModuleRun run;
  const fs::path office = run.dir.path() / "office.dws";
  const fs::path site = run.dir.path() / "site.dws";
  {
    OdDbDatabasePtr db = OdDbDatabase::createEmpty();
    plugintest::addLayer(*db, L"Walls", 1);
    plugintest::addLayer(*db, L"Hatch-Fill", 8);
    db->writeFile(office);
    db = OdDbDatabase::createEmpty();
    plugintest::addLayer(*db, L"Walls", 5);
    db->writeFile(site);
  }
  const fs::path planFile = run.dir.path() / "plan.dxf";
  {
    OdDbDatabasePtr db = OdDbDatabase::createEmpty();
    plugintest::addLayer(*db, L"Walls", 2);
    plugintest::addLayer(*db, L"hatch_fill", 6);
    plugintest::addLayer(*db, L"Notes", 7);
    plugintest::addText(*db, L"hatch_fill", L"fill");
    plugintest::addText(*db, L"Notes", L"note");
    st::StDbReaderWriterPtr list = st::StDbReaderWriter::createObject();
    list->setDatabase(db.get());
    list->writeStandardFiles({OdString(office.c_str()), OdString(site.c_str())});
    db->writeFile(planFile);
  }
  stSettingsStorage()->setAutoFixProperties(true);
  stSettingsStorage()->setShowIgnoredProblems(false);
  stSettingsStorage()->setPreferredFile(OdString(site.c_str()));

  OdDbDatabasePtr plan = run.host.openDrawing(planFile)->database();
  st::StManager* manager = st::stManagerCache()->getManager(plan.get());
  ASSERT_NE(manager, nullptr) << run.host.output();
  std::vector<std::string> plugins;
  for (st::StEnumDWSPluginPtr it = manager->getPlugins(); !it->current().isNull(); it->next())
    plugins.push_back(it->current()->isA()->name().toUtf8());
  EXPECT_EQ(plugins, (std::vector<std::string>{"StDWSDimstylePlugin", "StDWSLayerPlugin",
                                               "StDWSLinetypePlugin", "StDWSTextstylePlugin"}));
  Recorder recorder;
  manager->addReactor(&recorder);
  auto walk = [&](auto&& onShown) {
    manager->startCheck();
    for (int guard = 0; guard < 20 && recorder.events.back().rfind("statistics", 0) != 0; ++guard) {
      onShown();
      manager->nextError();
    }
    Events events = recorder.take();
    manager->resetCheck();
    return events;
  };

  // Walls and hatch_fill are fixed without being shown; Notes, with nothing to recommend, is
  // shown and the user marks it ignored.
  Events events = walk([&] {
    recorder.shownError->setFlags(recorder.shownError->flags() | st::kStErrorIgnored);
    st::writeObjectIgnoredMark(recorder.shownError->objectId(), st::getLogin());
  });
  EXPECT_EQ(events, (Events{"started", "found Notes by Layers", "finished", "statistics 3 2 0 1"}))
      << run.host.output();
  OdDbLayerTablePtr layers = plan->getLayerTableId().safeOpenObject();
  EXPECT_EQ(OdDbLayerTableRecordPtr(layers->getAt(L"Walls").safeOpenObject())->colorIndex(), 5)
      << "from the preferred file";
  EXPECT_TRUE(layers->getAt(L"hatch_fill").isNull());
  ASSERT_FALSE(layers->getAt(L"Hatch-Fill").isNull());

  // The ignored problem is not reported again while its mark stays.
  EXPECT_EQ(walk([] {}), (Events{"started", "finished", "statistics 0 0 0 0"}));

  // Unmarked, it is shown again; the user replaces it with the office's Hatch-Fill.
  st::eraseObjectIgnoredMark(layers->getAt(L"Notes"));
  layers.release();
  events = walk([&] {
    OdArray<st::StFixPtr> fixes;
    int recommended = 0;
    recorder.shownPlugin->getAllFixes(recorder.shownError.get(), fixes, recommended);
    EXPECT_EQ(recommended, -1);
    for (const st::StFixPtr& fix : fixes)
      if (fix->name() == L"Hatch-Fill")
        recorder.shownPlugin->fixError(recorder.shownError.get(), fix.get());
  });
  EXPECT_EQ(events, (Events{"started", "found Notes by Layers", "finished", "statistics 1 0 1 0"}));
  EXPECT_EQ(walk([] {}), (Events{"started", "finished", "statistics 0 0 0 0"}));
  manager->removeReactor(&recorder);

  plan->writeFile(run.dir.path() / "fixed.dxf");
  auto result = plugintest::ezdxf(
      "doc = ezdxf.readfile(path)\n"
      "print(sorted(l.dxf.name for l in doc.layers if l.dxf.name != 'Defpoints'))\n"
      "print(doc.layers.get('Walls').color, [e.dxf.layer for e in doc.modelspace()])\n",
      run.dir.path() / "fixed.dxf");
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(result.output, "['0', 'Hatch-Fill', 'Walls']\n5 ['Hatch-Fill', 'Hatch-Fill']\n");
}

}  // namespace
