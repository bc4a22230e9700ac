// The check manager driven as the Check Standards dialog drives it: the order of events, the
// four counts under each rule, automatic fixing, ignored problems, resets, silent mode with
// the error accumulator, and the standards files read through the host.

#include <gtest/gtest.h>

#include "ManagerTestSupport.h"
#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "StDbReaderWriter.h"
#include "StErrorAccumulatorImpl.h"
#include "StManagerImpl.h"

namespace managertest {

ODRX_DEFINE_MEMBERS(ScriptedPlugin, st::StDWSPlugin);
ODRX_DEFINE_MEMBERS(LaterScriptedPlugin, ScriptedPlugin);

namespace {

using Events = std::vector<std::string>;
constexpr std::uint32_t kFixable = st::kStErrorFixable;
constexpr std::uint32_t kIgnored = st::kStErrorIgnored;
constexpr std::uint32_t kAlways = st::kStErrorAlwaysReported;

class ManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    manager = st::StManager::createObject();
    manager->addReactor(&recorder);
  }
  void TearDown() override { manager->removeReactor(&recorder); }

  OdSmartPtr<ScriptedPlugin> addScripted(std::vector<ScriptedError> errors) {
    OdSmartPtr<ScriptedPlugin> plugin = ScriptedPlugin::createObject();
    plugin->script(std::move(errors));
    EXPECT_TRUE(manager->registerPlugin(plugin.get()));
    return plugin;
  }
  st::StManagerImpl& impl() { return static_cast<st::StManagerImpl&>(*manager); }

  // The events of a whole run in which the user presses Next at every problem shown.
  Events runToTheEnd() {
    impl().clearCheckState();  // as the dialog leaves the manager after a check
    manager->startCheck();
    for (int guard = 0; guard < 100 && recorder.events.back().rfind("statistics", 0) != 0; ++guard)
      manager->nextError();
    return recorder.take();
  }

  ModuleHost module;
  Recorder recorder;
  st::StManagerPtr manager;
};

TEST_F(ManagerTest, NoPluginsOrOnlyBarePluginsFinishAtOnceWithFourZeros) {
  module.host();
  EXPECT_TRUE(manager->isCheckComplete());
  manager->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "finished", "statistics 0 0 0 0"}));

  EXPECT_TRUE(manager->registerPlugin(st::StDWSPlugin::createObject().get()));
  EXPECT_FALSE(manager->registerPlugin(st::StDWSPlugin::createObject().get()))
      << "one plug-in per class";
  manager->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "finished", "statistics 0 0 0 0"}));
  EXPECT_TRUE(manager->isCheckComplete());
  manager->resetCheck();
  EXPECT_EQ(recorder.take(), Events{}) << "a finished check is not interrupted";
  EXPECT_TRUE(impl().isIdle());
}

TEST_F(ManagerTest, PluginsAreWalkedInClassNameOrderAndListenersKeptOnce) {
  module.host();
  OdSmartPtr<ScriptedPlugin> first = addScripted({{"S1", kAlways}});
  OdSmartPtr<LaterScriptedPlugin> later = LaterScriptedPlugin::createObject();
  later->script({{"L1", kAlways}, {"L2", kAlways}});
  ASSERT_TRUE(manager->registerPlugin(later.get()));
  EXPECT_EQ(pluginClasses(*manager),
            (std::vector<std::string>{"LaterScriptedPlugin", "ScriptedPlugin"}));
  Recorder second;
  manager->addReactor(&second);
  manager->addReactor(&recorder);  // kept once
  EXPECT_EQ(runToTheEnd(), (Events{"started", "changed", "found L1", "found L2", "found S1",
                                   "finished", "statistics 3 0 0 0"}));
  EXPECT_EQ(second.events.size(), 7u);
  manager->removeReactor(&second);

  EXPECT_TRUE(manager->unregisterPlugin(later.get()));
  EXPECT_FALSE(manager->unregisterPlugin(later.get()));
  EXPECT_EQ(pluginClasses(*manager), std::vector<std::string>{"ScriptedPlugin"});
}

TEST_F(ManagerTest, IgnoredProblemsAreSkippedUncountedUnlessShown) {
  module.setSettings(false, false);
  addScripted({{"plain", kAlways},
               {"ignored", kAlways | kIgnored},
               {"fixable ignored", kFixable | kIgnored, FixKind::kWorks},
               {"not a problem", 0},
               {"last", kAlways}});
  // A problem with neither bit stops the call with nothing raised; the next call goes on.
  EXPECT_EQ(runToTheEnd(), (Events{"started", "changed", "found plain", "found last", "finished",
                                   "statistics 2 0 0 0"}));

  module.setSettings(false, true);
  EXPECT_EQ(runToTheEnd(),
            (Events{"started", "changed", "found plain", "found ignored", "found fixable ignored",
                    "found last", "finished", "statistics 4 0 0 2"}));
}

TEST_F(ManagerTest, AutomaticFixesAreNeverShownAndCountAsFoundAndFixed) {
  module.setSettings(true, false);
  addScripted({{"fixed", kFixable, FixKind::kWorks},
               {"fix fails", kFixable, FixKind::kFails},
               {"no fix", kFixable, FixKind::kNone}});
  EXPECT_EQ(runToTheEnd(),
            (Events{"started", "changed", "found no fix", "finished", "statistics 3 1 0 0"}));
  // In another mode the setting does not apply: every fixable problem is shown.
  impl().setMode(2);
  EXPECT_EQ(runToTheEnd(), (Events{"started", "changed", "found fixed", "found fix fails",
                                   "found no fix", "finished", "statistics 3 0 0 0"}));
  impl().setMode(1);
  EXPECT_EQ(runToTheEnd().back(), "statistics 3 1 0 0");
}

TEST_F(ManagerTest, NextCountsHowTheUserLeftTheProblemShown) {
  module.setSettings(false, false);
  OdSmartPtr<ScriptedPlugin> plugin = addScripted({{"fix me", kAlways, FixKind::kWorks},
                                                   {"ignore me", kAlways},
                                                   {"fixable", kFixable, FixKind::kWorks},
                                                   {"plain fixed", kAlways}});
  manager->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "found fix me"}));
  st::StErrorPtr shown = plugin->getError();
  plugin->fixError(shown.get(), plugin->getRecommendedFix(shown.get()).get());  // Fix
  manager->nextError();
  EXPECT_EQ(recorder.take(), Events{"found ignore me"});
  plugin->getError()->setFlags(plugin->getError()->flags() | st::kStErrorCountedAsIgnored);
  manager->nextError();
  plugin->fixError(plugin->getError().get(), nullptr);  // fixable: counts as fixed by hand
  manager->nextError();
  // Fixed without 0x80 or 0x10: counts nowhere.
  plugin->getError()->setFlags(st::kStErrorFixed);
  manager->nextError();
  EXPECT_EQ(recorder.take(),
            (Events{"found fixable", "found plain fixed", "finished", "statistics 4 0 2 1"}));
}

TEST_F(ManagerTest, ResetInterruptsOnlyAnUnfinishedCheckAndRestartClearsPlugins) {
  module.host();
  OdSmartPtr<ScriptedPlugin> plugin = addScripted({{"one", kAlways}, {"two", kAlways}});
  manager->startCheck();
  EXPECT_FALSE(impl().isIdle());
  EXPECT_EQ(impl().currentPlugin(), plugin.get());
  plugin->wholeDrawing = false;
  manager->resetCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "found one", "interrupted"}));
  EXPECT_TRUE(impl().isIdle());
  EXPECT_TRUE(plugin->wholeDrawing);

  EXPECT_EQ(runToTheEnd().back(), "statistics 2 0 0 0") << "the counts start again";
  manager->resetCheck();
  EXPECT_EQ(recorder.take(), Events{});

  const int setups = plugin->setups, clears = plugin->clears;
  manager->restartCheck();
  EXPECT_EQ(plugin->clears, clears + 1);
  EXPECT_EQ(plugin->setups, setups + 1);
  EXPECT_TRUE(impl().isIdle());
  EXPECT_EQ(recorder.take(), Events{"changed"}) << "restarting raises no checkStarted";
}

TEST_F(ManagerTest, SilentModeHandsEverythingToTheAccumulatorAndRunsToTheEnd) {
  module.setSettings(true, false);
  OdSmartPtr<ScriptedPlugin> plugin = addScripted({{"auto", kFixable, FixKind::kWorks},
                                                   {"shown", kAlways},
                                                   {"ignored", kAlways | kIgnored},
                                                   {"no fix", kFixable},
                                                   {"fix fails", kFixable, FixKind::kFails}});
  st::StErrorAccumulatorImpl sink(&impl());
  impl().setErrorSink(&sink);
  manager->startCheck();
  impl().setErrorSink(nullptr);
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "finished", "statistics 2 1 0 0"}));

  std::vector<std::string> errors;
  for (const auto& entry : sink.errors()) {
    errors.push_back(entry.error->name().toUtf8());
    EXPECT_EQ(entry.plugin.get(), plugin.get());
    EXPECT_EQ(entry.pluginClass, OdString(L"ScriptedPlugin"));
    EXPECT_TRUE(entry.fix.isNull());
  }
  EXPECT_EQ(errors, (std::vector<std::string>{"shown", "no fix"}));
  ASSERT_EQ(sink.fixedErrors().size(), 1u);
  EXPECT_EQ(sink.fixedErrors()[0].error->name(), OdString(L"auto"));
  EXPECT_EQ(sink.fixedErrors()[0].fix->name(), OdString(L"fix of auto"));

  // The same error reported fixed again keeps one entry with the newer fix.
  st::StFixPtr other = st::StFix::createObject();
  sink.addFixedError(sink.fixedErrors()[0].error.get(), other.get());
  ASSERT_EQ(sink.fixedErrors().size(), 1u);
  EXPECT_EQ(sink.fixedErrors()[0].fix.get(), other.get());
  sink.addError(sink.errors()[0].error.get());
  EXPECT_EQ(sink.errors().size(), 3u) << "errors are listed as often as reported";
}

// A drawing associated with `standards`, saved to `file` and read back.
OdDbDatabasePtr drawingWith(const std::filesystem::path& file,
                            const std::vector<std::filesystem::path>& standards) {
  OdDbDatabasePtr db = OdDbDatabase::createEmpty();
  st::StDbReaderWriterPtr writer = st::StDbReaderWriter::createObject();
  writer->setDatabase(db.get());
  OdArray<OdString> paths;
  for (const auto& path : standards) paths.append(OdString(path.c_str()));
  writer->writeStandardFiles(paths);
  db->writeFile(file);
  return OdDbDatabase::readFile(file);
}

TEST_F(ManagerTest, StandardsFilesAreReadThroughTheHostAndAMissingOneStopsTheSetUp) {
  module.host();
  const auto office = module.dir() / "office.dws";
  {
    OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
    OdDbLayerTablePtr layers = standard->getLayerTableId().safeOpenObject(OdDb::kForWrite);
    OdDbLayerTableRecordPtr walls = OdDbLayerTableRecord::createObject();
    walls->setName(L"Walls");
    layers->add(walls.get());
    standard->writeFile(office);
  }
  OdSmartPtr<ScriptedPlugin> plugin = addScripted({});
  OdDbDatabasePtr drawing = drawingWith(module.dir() / "plan.dxf", {office});
  ASSERT_TRUE(impl().attach(drawing.get()));
  EXPECT_EQ(recorder.take(), Events{"changed"}) << "attaching sets the plug-ins up";
  EXPECT_EQ(plugin->setups, 1);
  EXPECT_EQ(manager->getStandardsFiles(drawing.get()).size(), 1u);
  manager->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "finished", "statistics 0 0 0 0"}));
  ASSERT_EQ(plugin->standards.size(), 1u);
  EXPECT_EQ(plugin->standardsNames[0], OdString(L"office.dws"));
  OdDbLayerTablePtr read = plugin->standards[0]->getLayerTableId().safeOpenObject();
  EXPECT_TRUE(read->has(L"Walls")) << "the standards drawing is the file on disk";

  // One file of two missing: the notice, no standardsChanged and no set-up.
  const int setups = plugin->setups;
  OdArray<OdString> files{OdString(office.c_str()), OdString((module.dir() / "gone.dws").c_str())};
  EXPECT_TRUE(manager->setStandardsFiles(drawing.get(), files));
  EXPECT_EQ(recorder.take(), Events{"changed"});
  EXPECT_EQ(manager->getStandardsFiles(drawing.get()).size(), 2u);
  manager->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "missing", "finished", "statistics 0 0 0 0"}));
  EXPECT_EQ(plugin->setups, setups);
  EXPECT_FALSE(manager->setStandardsFiles(nullptr, files));
  EXPECT_EQ(recorder.take(), Events{});
  impl().detach();
}

}  // namespace
}  // namespace managertest
