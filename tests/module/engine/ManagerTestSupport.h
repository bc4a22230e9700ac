#pragma once

// What the manager tests share: the module's run-time classes registered for one test, a
// headless host over a configuration file in a temporary folder, a listener that writes down
// what it is told, and a plug-in that yields errors as scripted.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "OdRxDynamicLinker.h"
#include "StAppServices.h"
#include "StDWSPluginImplBase.h"
#include "StDbReactor.h"
#include "StEnumDWSPlugin.h"
#include "StErrorFlags.h"
#include "StManager.h"
#include "StManagerReactor.h"
#include "StSettingsStorage.h"
#include "TestSupport.h"

namespace managertest {

// Which errors a ScriptedPlugin yields: name, flags, and what its recommended fix does.
enum class FixKind { kNone, kWorks, kFails };
struct ScriptedError {
  std::string name;
  std::uint32_t flags = 0;
  FixKind fix = FixKind::kNone;
};

// Yields the scripted errors in order, standing before the first after start(). Its fix
// sets kStErrorFixed when the script says it works. Writes down how it was set up.
class ScriptedPlugin : public st::StDWSPluginImplBase<st::StDWSPlugin> {
 public:
  ODRX_DECLARE_MEMBERS(ScriptedPlugin);

  void script(std::vector<ScriptedError> errors) { script_ = std::move(errors); }

  void setupForAudit(OdDbDatabase* drawing, const OdString& drawingName,
                     const OdArray<OdString>& names, const OdArray<OdDbDatabase*>& dbs) override {
    ++setups;
    standardsNames = names;
    standards = dbs;
  }
  void setObjects(const OdArray<OdDbObjectId>& objects, bool whole) override {
    wholeDrawing = whole;
  }
  void start(st::StError*) override {
    errors_.clear();
    for (const ScriptedError& item : script_) {
      st::StErrorPtr error = st::StError::createObject();
      error->setName(OdString(item.name));
      error->setFlags(item.flags);
      error->setTag(static_cast<std::uint64_t>(item.fix));
      errors_.push_back(error);
    }
    position_ = -1;
  }
  st::StErrorPtr getError() override {
    return position_ < 0 || done() ? st::StErrorPtr() : errors_[position_];
  }
  void next() override { ++position_; }
  bool done() const override { return position_ >= static_cast<long>(errors_.size()); }
  void clear() override { ++clears; }
  st::StFixPtr getRecommendedFix(st::StError* error) override {
    if (static_cast<FixKind>(error->tag()) == FixKind::kNone) return st::StFixPtr();
    st::StFixPtr fix = st::StFix::createObject();
    fix->setName(L"fix of " + error->name());
    return fix;
  }
  void fixError(st::StError* error, st::StFix*) override {
    if (static_cast<FixKind>(error->tag()) == FixKind::kWorks)
      error->setFlags(error->flags() | st::kStErrorFixed);
  }

  int setups = 0;
  int clears = 0;
  bool wholeDrawing = false;
  OdArray<OdString> standardsNames;
  OdArray<OdDbDatabase*> standards;

 private:
  std::vector<ScriptedError> script_;
  std::vector<st::StErrorPtr> errors_;
  long position_ = -1;
};

// A second scripted class, to see plug-ins walked in class-name order.
class LaterScriptedPlugin : public ScriptedPlugin {
 public:
  ODRX_DECLARE_MEMBERS(LaterScriptedPlugin);
};

// Writes down every event as a short line: "started", "found Walls", "finished",
// "statistics 1 0 0 0", "interrupted", "violation Walls", "missing", "changed".
class Recorder : public st::StManagerReactor {
 public:
  void errorFound(st::StDWSPlugin*, st::StError* error) override {
    events.push_back("found " + error->name().toUtf8());
  }
  void checkFinished() override { events.push_back("finished"); }
  void checkStatistics(std::uint32_t found, std::uint32_t fixedAutomatically,
                       std::uint32_t fixedManually, std::uint32_t ignored) override {
    events.push_back("statistics " + std::to_string(found) + " " +
                     std::to_string(fixedAutomatically) + " " + std::to_string(fixedManually) +
                     " " + std::to_string(ignored));
  }
  void checkInterrupted() override { events.push_back("interrupted"); }
  void checkStarted() override { events.push_back("started"); }
  void newViolation(st::StDWSPlugin* plugin, st::StError* error) override {
    events.push_back("violation " + error->name().toUtf8() + " by " + plugin->name().toUtf8());
  }
  void missingStandardsFile() override { events.push_back("missing"); }
  void standardsChanged() override { events.push_back("changed"); }

  // The events so far, which are then forgotten.
  std::vector<std::string> take() { return std::exchange(events, {}); }

  std::vector<std::string> events;
};

// The module's engine classes and the test plug-ins, registered for one test and removed
// again (children first), so that other tests of the process find the registry as it was.
class Classes {
 public:
  Classes() {
    st::StError::rxInit();
    st::StFix::rxInit();
    st::StDWSPlugin::rxInit();
    st::StEnumDWSPlugin::rxInit();
    st::StManager::rxInit();
    st::StDbReactor::rxInit();
    ScriptedPlugin::rxInit();
    LaterScriptedPlugin::rxInit();
  }
  ~Classes() {
    LaterScriptedPlugin::rxUninit();
    ScriptedPlugin::rxUninit();
    st::StDbReactor::rxUninit();
    st::StManager::rxUninit();
    st::StEnumDWSPlugin::rxUninit();
    st::StDWSPlugin::rxUninit();
    st::StFix::rxUninit();
    st::StError::rxUninit();
  }
  Classes(const Classes&) = delete;
  Classes& operator=(const Classes&) = delete;
};

using Path = HostConfigTree::Path;
inline const Path kModule{"cmddata", "StandardsAudit"};
inline const Path kPlugins{"cmddata", "StandardsAudit", "Plugins"};

// A headless host over a configuration file of its own, with the module's services. The
// default plug-in library is registered without a library file, so the registry loads
// nothing but what a test registers (registerLibrary). Everything goes in the right order:
// services, then the test plug-in library, then the host, then the classes.
class ModuleHost {
 public:
  ModuleHost() {
    auto tree = HostConfigTree::open(configFile());
    tree->createKey({"cmddata"}, "StandardsAudit");
    tree->createKey(kModule, "Plugins");
    tree->createKey(kPlugins, "StStandardPlugins");
  }
  ~ModuleHost() {
    st::stReleaseAppServices();
    odrxDynamicLinker()->unloadModule(L"EngineTestPlugins");
  }
  ModuleHost(const ModuleHost&) = delete;
  ModuleHost& operator=(const ModuleHost&) = delete;

  // Registers `plugins` (class name, in use) under a library; call before host().
  void registerLibrary(const std::string& library, const std::string& dll,
                       const std::vector<std::pair<std::string, bool>>& plugins) {
    auto tree = HostConfigTree::open(configFile());
    Path key = kPlugins;
    tree->createKey(key, library);
    key.push_back(library);
    tree->setValue(key, "PluginDll", OdVariant(OdString(dll)));
    for (const auto& [name, inUse] : plugins) {
      tree->createKey(key, name);
      Path plugin = key;
      plugin.push_back(name);
      tree->setValue(plugin, "PluginClassName", OdVariant(OdString(name)));
      tree->setValue(plugin, "PluginInUse", OdVariant(std::int32_t{inUse ? 1 : 0}));
    }
  }

  // The host, started on first use.
  HeadlessHost& host() {
    if (!host_) host_.emplace(HeadlessHost::Options{configFile(), nullptr});
    return *host_;
  }
  // Lets the services and then the host go before the test ends.
  void closeHost() {
    st::stReleaseAppServices();
    host_.reset();
  }
  // The settings that steer a check; starts the host and the services.
  void setSettings(bool autoFix, bool showIgnored) {
    host();
    stSettingsStorage()->setAutoFixProperties(autoFix);
    stSettingsStorage()->setShowIgnoredProblems(showIgnored);
  }
  const std::filesystem::path& dir() const { return dir_.path(); }
  std::filesystem::path configFile() const { return dir_.path() / "config.json"; }

 private:
  Classes classes_;
  testsupport::TempDir dir_;
  std::optional<HeadlessHost> host_;
};

// The class names of the manager's plug-ins, in the order the manager walks them.
inline std::vector<std::string> pluginClasses(st::StManager& manager) {
  std::vector<std::string> names;
  for (st::StEnumDWSPluginPtr it = manager.getPlugins(); !it->current().isNull(); it->next())
    names.push_back(it->current()->isA()->name().toUtf8());
  return names;
}

}  // namespace managertest
