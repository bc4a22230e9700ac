// Watching a drawing between checks: the database reactor, plug-ins created by class name
// through the real plug-in registry from a configuration file, an edit made by a host
// command announced once it completes, and the manager cache's one manager per drawing.

#include <gtest/gtest.h>

#include "HostCommandRegistry.h"
#include "HostEntryPoints.h"
#include "HostServices.h"
#include "ManagerTestSupport.h"
#include "OdDbDatabase.h"
#include "OdDbLayerTable.h"
#include "OdDbLayerTableRecord.h"
#include "OdDbTextStyleTable.h"
#include "OdDbTextStyleTableRecord.h"
#include "StDbReactorResponder.h"
#include "StDbReaderWriter.h"
#include "StManagerCache.h"
#include "StManagerImpl.h"
#include "StPluginRegistrator.h"
#include "UICmdProcess.h"

namespace managertest {
namespace {

using Events = std::vector<std::string>;

std::size_t count(const std::string& text, const std::string& what) {
  std::size_t n = 0;
  for (auto pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + 1)) ++n;
  return n;
}

void addLayer(OdDbDatabase& db, const wchar_t* name, short color) {
  OdDbLayerTablePtr table = db.getLayerTableId().safeOpenObject(OdDb::kForWrite);
  OdDbLayerTableRecordPtr layer = OdDbLayerTableRecord::createObject();
  layer->setName(name);
  layer->setColorIndex(color);
  table->add(layer.get());
}

// The colour the SETCOLOR command gives layer "Walls" of the current drawing.
short g_newColor = 1;

class SetColorCommand : public UICmdProcess {
 public:
  bool execute() override {
    OdDbDatabase* db = hostServices()->currentDatabase();
    OdDbLayerTablePtr table = db->getLayerTableId().safeOpenObject();
    OdDbLayerTableRecordPtr walls = table->getAt(L"Walls").safeOpenObject(OdDb::kForWrite);
    walls->setColorIndex(g_newColor);
    return true;
  }
};

class TouchStyleCommand : public UICmdProcess {
 public:
  bool execute() override {
    OdDbDatabase* db = hostServices()->currentDatabase();
    OdDbTextStyleTablePtr table = db->getTextStyleTableId().safeOpenObject();
    OdDbTextStyleTableRecordPtr style = table->getAt(L"Standard").safeOpenObject(OdDb::kForWrite);
    style->setTextSize(style->textSize() + 1.0);
    return true;
  }
};

class WatchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    module.registerLibrary("EngineTestPlugins", "EngineTestPlugins.dll",
                           {{"EngineLayerPlugin", true},
                            {"EngineBarePlugin", true},
                            {"EngineGhostPlugin", true},
                            {"ScriptedPlugin", false}});
    // The standards file has "Walls" in colour 3; the drawing associates it.
    const auto office = module.dir() / "office.dws";
    OdDbDatabasePtr standard = OdDbDatabase::createEmpty();
    addLayer(*standard, L"Walls", 3);
    standard->writeFile(office);
    OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
    addLayer(*drawing, L"Walls", 3);
    st::StDbReaderWriterPtr writer = st::StDbReaderWriter::createObject();
    writer->setDatabase(drawing.get());
    writer->writeStandardFiles(OdArray<OdString>{OdString(office.c_str())});
    drawing->writeFile(module.dir() / "plan.dxf");

    HeadlessHost& host = module.host();
    host.app().commands().add(L"SETCOLOR", L"TEST", kHostCmdModal,
                              [] { return static_cast<UICmdProcess*>(new SetColorCommand); });
    host.app().commands().add(L"TOUCHSTYLE", L"TEST", kHostCmdModal,
                              [] { return static_cast<UICmdProcess*>(new TouchStyleCommand); });
    db = host.openDrawing(module.dir() / "plan.dxf")->database();
  }

  void setColor(short color) {
    g_newColor = color;
    EXPECT_EQ(module.host().runCommand(L"SETCOLOR").outcome, HostCommandOutcome::kCompleted);
  }
  st::StManagerImpl* manager() {
    return static_cast<st::StManagerImpl*>(st::stManagerCache()->getManager(db));
  }

  ModuleHost module;
  OdDbDatabase* db = nullptr;
  Recorder recorder;
};

TEST_F(WatchTest, AnEditBetweenCommandsIsAnnouncedOnceAndAnEditDuringACheckNever) {
  ASSERT_TRUE(st::stManagerCache()->attachDatabase(db));
  st::StManagerImpl* watcher = manager();
  ASSERT_NE(watcher, nullptr);
  EXPECT_EQ(pluginClasses(*watcher),
            (std::vector<std::string>{"EngineBarePlugin", "EngineLayerPlugin"}));
  const std::string& output = module.host().output();
  EXPECT_EQ(count(output, "Failed to create plugin object EngineGhostPlugin\n"), 1u) << output;
  EXPECT_EQ(count(output, "Failed"), 1u) << output;
  watcher->addReactor(&recorder);

  setColor(5);
  EXPECT_EQ(recorder.take(), Events{"violation Walls by Layers"});
  EXPECT_TRUE(watcher->pendingObject().isNull());
  setColor(3);  // back to the standard: a change, but no violation
  EXPECT_EQ(module.host().runCommand(L"TOUCHSTYLE").outcome, HostCommandOutcome::kCompleted);
  EXPECT_EQ(recorder.take(), Events{}) << "text styles are watched by no plug-in";

  // The whole drawing is checked again by the next check, not just the edited layer.
  setColor(5);
  recorder.take();
  watcher->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "found Walls"}));
  setColor(6);
  EXPECT_TRUE(watcher->pendingObject().isNull());
  watcher->resetCheck();
  EXPECT_EQ(module.host().runCommand(L"TOUCHSTYLE").outcome, HostCommandOutcome::kCompleted);
  EXPECT_EQ(recorder.take(), Events{"interrupted"});

  // With automatic fixing the check's own fixes are no new violations either.
  stSettingsStorage()->setAutoFixProperties(true);
  watcher->startCheck();
  EXPECT_EQ(recorder.take(), (Events{"started", "changed", "finished", "statistics 1 1 0 0"}));
  watcher->resetCheck();
  EXPECT_EQ(module.host().runCommand(L"TOUCHSTYLE").outcome, HostCommandOutcome::kCompleted);
  EXPECT_EQ(recorder.take(), Events{});
  OdDbLayerTablePtr layers = db->getLayerTableId().safeOpenObject();
  EXPECT_EQ(OdDbLayerTableRecordPtr(layers->getAt(L"Walls").safeOpenObject())->colorIndex(), 3);
  watcher->removeReactor(&recorder);
}

TEST_F(WatchTest, TheCacheKeepsOneManagerPerDrawingAndAttachRunsEachTime) {
  st::StManagerCache* cache = st::stManagerCache();
  EXPECT_EQ(cache->getManager(db), nullptr);
  EXPECT_FALSE(cache->hasManager(db));
  cache->refreshDatabase(db);
  cache->detachDatabase(db);
  EXPECT_FALSE(cache->hasManager(db));

  ASSERT_TRUE(cache->attachDatabase(db));
  st::StManager* first = cache->getManager(db);
  st::stPluginRegistrator()->setPluginNotInUse(L"EngineBarePlugin");
  ASSERT_TRUE(cache->attachDatabase(db));
  EXPECT_EQ(cache->getManager(db), first);
  EXPECT_EQ(pluginClasses(*first), std::vector<std::string>{"EngineLayerPlugin"})
      << "the second attach brought the plug-ins up to date again";
  st::stPluginRegistrator()->setPluginInUse(L"EngineBarePlugin");
  cache->refreshDatabase(db);
  EXPECT_EQ(pluginClasses(*first).size(), 2u);

  OdDbDatabasePtr other = OdDbDatabase::createEmpty();
  ASSERT_TRUE(cache->attachDatabase(other.get()));
  EXPECT_NE(cache->getManager(other.get()), first);
  // Each refresh tries the class that cannot be created again; each drawing's manager says
  // so once.
  EXPECT_EQ(count(module.host().output(), "Failed to create plugin object EngineGhostPlugin\n"), 2u)
      << module.host().output();
  EXPECT_EQ(static_cast<st::StManagerImpl*>(cache->getManager(other.get()))->database(),
            other.get());

  manager()->addReactor(&recorder);
  cache->detachDatabase(db);
  EXPECT_FALSE(cache->hasManager(db));
  setColor(5);
  EXPECT_EQ(recorder.take(), Events{}) << "a detached drawing is no longer watched";
  // The other manager stays attached until the services go.
}

// Writes down what happened to every object that reaches it from a database reactor, and its
// class.
class ClassRecorder : public st::StDbReactorResponder {
 public:
  void objectModified(const OdDbDatabase*, const OdDbObject* object) override {
    classes.push_back("modified " + object->isA()->name().toUtf8());
  }
  void objectAppended(const OdDbDatabase*, const OdDbObject* object) override {
    classes.push_back("appended " + object->isA()->name().toUtf8());
  }
  std::vector<std::string> classes;
};

TEST_F(WatchTest, TheDatabaseReactorPassesOnModificationsAndAppendsOnly) {
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  st::StDbReactorPtr reactor = st::StDbReactor::createObject();
  EXPECT_EQ(reactor->isA()->name(), OdString(L"StDbReactor"));
  drawing->addReactor(reactor.get());
  addLayer(*drawing, L"Ignored", 1);  // no responder yet: nothing to tell

  ClassRecorder responder;
  reactor->setResponder(&responder);
  addLayer(*drawing, L"Appended", 1);
  // The new record was appended, and the table that gained it changed.
  EXPECT_EQ(responder.classes,
            (std::vector<std::string>{"appended AcDbLayerTableRecord", "modified AcDbLayerTable"}));
  responder.classes.clear();
  OdDbLayerTablePtr table = drawing->getLayerTableId().safeOpenObject();
  table->getAt(L"Appended").safeOpenObject(OdDb::kForWrite)->erase();
  EXPECT_EQ(responder.classes, std::vector<std::string>{}) << "erasing is not modifying";
  OdDbLayerTableRecordPtr(table->getAt(L"Ignored").safeOpenObject(OdDb::kForWrite))
      ->setColorIndex(2);
  EXPECT_EQ(responder.classes, std::vector<std::string>{"modified AcDbLayerTableRecord"});
  drawing->removeReactor(reactor.get());
}

TEST_F(WatchTest, AnAttachedManagerMayOutliveItsHost) {
  st::StManagerPtr kept = st::StManager::createObject();
  auto* impl = static_cast<st::StManagerImpl*>(kept.get());
  OdDbDatabasePtr drawing = OdDbDatabase::createEmpty();
  ASSERT_TRUE(impl->attach(drawing.get()));
  ASSERT_TRUE(impl->attach(drawing.get()));
  EXPECT_EQ(impl->database(), drawing.get());
  st::stReleaseAppServices();
  module.closeHost();
  impl->addReactor(&recorder);
  addLayer(*drawing, L"Late", 1);
  OdDbLayerTablePtr table = drawing->getLayerTableId().safeOpenObject();
  OdDbLayerTableRecordPtr(table->getAt(L"Late").safeOpenObject(OdDb::kForWrite))->setColorIndex(4);
  kept = nullptr;  // detaches without a host
  EXPECT_EQ(recorder.take(), Events{});
}

}  // namespace
}  // namespace managertest
