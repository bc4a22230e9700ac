#include "StManagerImpl.h"

#include <algorithm>

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "OdDbObject.h"
#include "OdRxClass.h"
#include "StAppServices.h"
#include "StBlockProxyImpl.h"
#include "StDbReaderWriter.h"
#include "StErrorAccumulator.h"
#include "StErrorFlags.h"
#include "StManagerReactor.h"
#include "StPluginRegistrator.h"
#include "StRecordLookup.h"
#include "StSettingsStorage.h"
#include "StStandardsPaths.h"
#include "StStringTable.h"
#include "StTableProxyImpl.h"

namespace st {

namespace {

StManagerImpl::StatusListenerFactory g_statusListenerFactory = nullptr;

// A snapshot of the plug-ins, walked in the order taken.
class PluginEnumerator : public StEnumDWSPlugin {
 public:
  StDWSPluginPtr current() const override {
    return next_ < plugins_.size() ? plugins_[next_] : StDWSPluginPtr();
  }
  void next() override {
    if (next_ < plugins_.size()) ++next_;
  }

 protected:
  explicit PluginEnumerator(std::vector<StDWSPluginPtr> plugins) : plugins_(std::move(plugins)) {}

 private:
  std::vector<StDWSPluginPtr> plugins_;
  std::size_t next_ = 0;
};

OdString classNameOf(const OdRxObject& object) {
  OdRxClass* cls = object.isA();
  return cls ? cls->name() : OdString();
}

StBlockProxyPtr blockProxy(OdDbDatabase* db, bool modelSpace) {
  if (!db) return StBlockProxyPtr();
  OdSmartPtr<StBlockProxyImpl> proxy = OdRxObjectImpl<StBlockProxyImpl>::createObject();
  if (!proxy->fill(modelSpace ? db->getModelSpaceId() : db->getPaperSpaceId()))
    return StBlockProxyPtr();
  return StBlockProxyPtr(proxy.get());
}

// The settings that steer a check, read once per call of nextError.
struct CheckSettings {
  bool autoFix = false;
  bool showIgnored = false;
};

CheckSettings readSettings() {
  CheckSettings settings;
  if (StSettingsStorage* storage = stSettingsStorage()) {
    settings.autoFix = storage->getAutoFixProperties();
    settings.showIgnored = storage->getShowIgnoredProblems();
  }
  return settings;
}

}  // namespace

void StManagerImpl::setStatusListenerFactory(StatusListenerFactory factory) noexcept {
  g_statusListenerFactory = factory;
}

StManagerImpl::StManagerImpl() = default;

StManagerImpl::~StManagerImpl() {
  detach();
  if (!dbReactor_.isNull()) dbReactor_->setResponder(nullptr);
}

// ---- listeners

template <class Call>
void StManagerImpl::notify(Call call) {
  // A listener may add or remove listeners while it is told: walk a copy, and skip one that
  // was removed meanwhile, which may be gone.
  const std::vector<StManagerReactor*> listeners = reactors_;
  for (StManagerReactor* listener : listeners)
    if (std::find(reactors_.begin(), reactors_.end(), listener) != reactors_.end()) call(*listener);
}

void StManagerImpl::addReactor(StManagerReactor* reactor) {
  if (reactor && std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end())
    reactors_.push_back(reactor);
}

void StManagerImpl::removeReactor(StManagerReactor* reactor) {
  auto found = std::find(reactors_.begin(), reactors_.end(), reactor);
  if (found != reactors_.end()) reactors_.erase(found);
}

// ---- proxies and the association

StBlockProxyPtr StManagerImpl::getModelSpaceProxy(OdDbDatabase* db) {
  return blockProxy(db, true);
}

StBlockProxyPtr StManagerImpl::getPaperSpaceProxy(OdDbDatabase* db) {
  return blockProxy(db, false);
}

StTableProxyPtr StManagerImpl::getTableProxy(const OdDbObjectId& tableId) {
  OdSmartPtr<StTableProxyImpl> proxy = OdRxObjectImpl<StTableProxyImpl>::createObject();
  if (!proxy->fill(tableId)) return StTableProxyPtr();
  return StTableProxyPtr(proxy.get());
}

OdArray<OdString> StManagerImpl::getStandardsFiles(OdDbDatabase* db) {
  OdArray<OdString> files;
  if (!db) {
    HostServices* host = hostServices();
    db = host ? host->currentDatabase() : nullptr;
  }
  StDbReaderWriterPtr reader = StDbReaderWriter::createObject();
  if (db && reader->setDatabase(db)) reader->readStandardFiles(files);
  return files;
}

bool StManagerImpl::setStandardsFiles(OdDbDatabase* db, const OdArray<OdString>& files) {
  StDbReaderWriterPtr writer = StDbReaderWriter::createObject();
  if (!db || !writer->setDatabase(db)) return false;
  notify([](StManagerReactor& listener) { listener.standardsChanged(); });
  return writer->writeStandardFiles(files);
}

// ---- the plug-in table

std::vector<StDWSPluginPtr> StManagerImpl::pluginsInOrder() const {
  std::vector<StDWSPluginPtr> plugins;
  plugins.reserve(plugins_.size());
  for (const auto& [name, entry] : plugins_) plugins.push_back(entry.plugin);
  return plugins;
}

StManagerImpl::PluginTable::iterator StManagerImpl::findIgnoringCase(const OdString& className) {
  return std::find_if(plugins_.begin(), plugins_.end(),
                      [&](const auto& item) { return item.first.iCompare(className) == 0; });
}

bool StManagerImpl::isCheckComplete() {
  return std::all_of(plugins_.begin(), plugins_.end(),
                     [](const auto& item) { return item.second.done; });
}

bool StManagerImpl::unregisterPlugin(StDWSPlugin* plugin) {
  if (!plugin) return false;
  return plugins_.erase(classNameOf(*plugin)) > 0;
}

bool StManagerImpl::registerPlugin(StDWSPlugin* plugin) {
  if (!plugin) return false;
  OdString name = classNameOf(*plugin);
  if (name.isEmpty() || plugins_.count(name)) return false;
  plugins_[name] = Entry{false, StDWSPluginPtr(plugin)};
  plugin->initialize(this);
  return true;
}

StEnumDWSPluginPtr StManagerImpl::getPlugins() {
  return OdRxObjectImpl<PluginEnumerator, StEnumDWSPlugin>::createObject(pluginsInOrder());
}

// ---- a check

void StManagerImpl::setRunStandardsFiles(const OdArray<OdString>& files) {
  runList_ = files;
  runListSet_ = true;
}

void StManagerImpl::clearRunStandardsFiles() {
  runList_.clear();
  runListSet_ = false;
}

OdArray<OdString> StManagerImpl::standardsFilesFound() {
  return StStandardsPaths::resolveAll(runListSet_ ? runList_ : getStandardsFiles(db_.get()),
                                      db_.get());
}

void StManagerImpl::setUp() {
  OdArray<OdString> names;
  OdArray<OdDbDatabase*> databases;
  std::vector<OdDbDatabasePtr> held;
  bool missing = false;
  HostServices* host = hostServices();
  for (const OdString& path : standardsFilesFound()) {
    // Without a host nothing can be read: every file counts as missing.
    if (!host || !host->fileExists(path)) {
      missing = true;
      continue;
    }
    // A file that is there but is no drawing (the host says why on the command line) stops
    // the check as a missing one does: checking against less than the whole standard would
    // report conforming objects as non-standard.
    OdDbDatabasePtr standard = host->readDrawingFile(path, false, false, kHostShareDenyNone);
    if (standard.isNull()) {
      missing = true;
      continue;
    }
    held.push_back(standard);
    databases.append(standard.get());
    names.append(getFileName(path, true));
  }
  if (missing) {
    // Deliberately no standardsChanged and no plug-in set up: the listener tells the user
    // which file to re-point. The drawings of the last set-up stay held, as the plug-ins
    // set up with them may still read them.
    notify([](StManagerReactor& listener) { listener.missingStandardsFile(); });
    return;
  }
  runFileNames_ = std::move(names);
  runDatabases_ = std::move(databases);
  notify([](StManagerReactor& listener) { listener.standardsChanged(); });
  const OdString drawingName = db_.isNull() ? OdString() : db_->getFilename();
  for (const StDWSPluginPtr& plugin : pluginsInOrder()) {
    plugin->initialize(this);
    plugin->setupForAudit(db_.get(), drawingName, runFileNames_, runDatabases_);
    plugin->setObjects(OdArray<OdDbObjectId>(), true);
  }
  // Only now are the drawings of the last set-up no longer in any plug-in's hands.
  runHeld_ = std::move(held);
}

void StManagerImpl::startCheck() {
  notify([](StManagerReactor& listener) { listener.checkStarted(); });
  idle_ = false;
  setUp();
  selectNextPlugin();
  nextError();
}

void StManagerImpl::clearCheckState() {
  for (auto& [name, entry] : plugins_) {
    entry.plugin->clear();
    entry.done = false;
  }
  found_ = fixedAutomatically_ = ignored_ = fixedManually_ = 0;
  idle_ = true;
}

void StManagerImpl::restartCheck() {
  clearCheckState();
  setUp();
}

void StManagerImpl::setWholeDrawing() {
  for (const StDWSPluginPtr& plugin : pluginsInOrder())
    plugin->setObjects(OdArray<OdDbObjectId>(), true);
}

void StManagerImpl::resetCheck() {
  if (!isCheckComplete()) notify([](StManagerReactor& listener) { listener.checkInterrupted(); });
  for (auto& [name, entry] : plugins_) entry.done = false;
  found_ = fixedAutomatically_ = ignored_ = fixedManually_ = 0;
  idle_ = true;
  setWholeDrawing();
}

void StManagerImpl::selectNextPlugin() {
  current_ = nullptr;
  currentKey_ = OdString();
  for (auto& [name, entry] : plugins_) {
    if (entry.done) continue;
    current_ = entry.plugin;
    currentKey_ = name;
    current_->start(nullptr);
    return;
  }
}

void StManagerImpl::markCurrentDone() {
  // The plug-in may have been unregistered while it was current; then there is no entry.
  auto found = plugins_.find(currentKey_);
  if (found != plugins_.end() && found->second.plugin == current_) found->second.done = true;
}

void StManagerImpl::countOutcome(const StError& error) {
  const std::uint32_t flags = error.flags();
  if (flags & kStErrorFixed) {
    if (flags & (kStErrorAlwaysReported | kStErrorFixable)) ++fixedManually_;
  } else if (flags & (kStErrorIgnored | kStErrorCountedAsIgnored)) {
    ++ignored_;
  }
}

void StManagerImpl::finish() {
  notify([](StManagerReactor& listener) { listener.checkFinished(); });
  const std::uint32_t found = found_, fixedAutomatically = fixedAutomatically_,
                      fixedManually = fixedManually_, ignored = ignored_;
  notify([&](StManagerReactor& listener) {
    listener.checkStatistics(found, fixedAutomatically, fixedManually, ignored);
  });
}

// Skipping an error and passing on to the next plug-in loop here rather than recurse, so
// that a drawing with thousands of automatically fixed or ignored problems needs no deep
// stack; the order of the steps is that of a call of nextError per skipped error.
void StManagerImpl::nextError() {
  const CheckSettings settings = readSettings();
  const bool autoFixApplies = settings.autoFix && (mode_ == 0 || mode_ == 1);
  bool countLastShown = true;
  for (;;) {
    if (current_.isNull()) {
      finish();
      return;
    }
    if (countLastShown) {
      if (StErrorPtr shown = current_->getError(); !shown.isNull()) countOutcome(*shown);
      countLastShown = false;
    }
    StDWSPluginPtr plugin = current_;
    plugin->next();
    if (plugin->done()) {
      markCurrentDone();
      selectNextPlugin();
      // As a fresh call would: a plug-in that stands on an error when it starts has it
      // counted before it moves on.
      countLastShown = true;
      continue;
    }
    StErrorPtr error = plugin->getError();
    const std::uint32_t flags = error.isNull() ? 0 : error->flags();
    const bool fixable = flags & kStErrorFixable;
    const bool ignored = flags & kStErrorIgnored;
    if (fixable && !ignored && autoFixApplies) {
      if (StFixPtr fix = plugin->getRecommendedFix(error.get()); !fix.isNull()) {
        plugin->fixError(error.get(), fix.get());
        if (error->flags() & kStErrorFixed) {
          ++fixedAutomatically_;
          if (sink_) sink_->addFixedError(error.get(), fix.get());
        }
        ++found_;
        continue;
      }
    } else if (fixable && ignored) {
      if (!settings.showIgnored) continue;
    } else if (!fixable && !(flags & kStErrorAlwaysReported)) {
      return;  // not a problem to report: wait for the next call
    } else if (!fixable && ignored && !settings.showIgnored) {
      continue;
    }
    // A problem to show.
    if (sink_) {
      sink_->addError(error.get());
      continue;
    }
    ++found_;
    notify([&](StManagerReactor& listener) { listener.errorFound(plugin.get(), error.get()); });
    return;
  }
}

// ---- attaching to a drawing

bool StManagerImpl::attach(OdDbDatabase* db) {
  if (!db) return false;
  if (!db_.isNull() && db_.get() != db) detach();
  if (HostServices* host = hostServices()) host->addInputContextReactor(this);
  db_ = db;
  if (dbReactor_.isNull()) {
    dbReactor_ = StDbReactor::createObject();
    dbReactor_->setResponder(this);
  }
  db->addReactor(dbReactor_.get());
  updateStatusListener();
  refresh();
  return true;
}

void StManagerImpl::updateStatusListener() {
  if (db_.isNull()) return;
  if (!g_statusListenerFactory) {
    if (statusListener_) removeReactor(statusListener_);
    statusListener_ = nullptr;
  } else if (!statusListener_) {
    statusListener_ = g_statusListenerFactory(this);
    if (statusListener_) addReactor(statusListener_);
  }
}

void StManagerImpl::detach() {
  if (db_.isNull()) return;
  if (HostServices* host = hostServices()) host->removeInputContextReactor(this);
  db_->removeReactor(dbReactor_.get());
  db_ = nullptr;
  pending_ = OdDbObjectId();
  if (statusListener_) removeReactor(statusListener_);
  statusListener_ = nullptr;
}

void StManagerImpl::refreshPlugins() {
  StPluginRegistrator* registry = stPluginRegistrator();
  if (!registry) return;
  for (const StPluginInfo& info : registry->getPluginInfos()) {
    if (!info.inUse || findIgnoringCase(info.className) != plugins_.end()) continue;
    OdRxObjectPtr created = odrxCreateObject(info.className);
    StDWSPluginPtr plugin = StDWSPlugin::cast(created.get());
    auto reported =
        std::find_if(uncreatable_.begin(), uncreatable_.end(),
                     [&](const OdString& name) { return name.iCompare(info.className) == 0; });
    if (plugin.isNull()) {
      // Every refresh tries again, but the user hears of a class once for this drawing.
      if (reported != uncreatable_.end()) continue;
      uncreatable_.push_back(info.className);
      if (HostServices* host = hostServices())
        host->cmdPrint(stFormatString(kStrFailedToCreatePluginObject, info.className));
      continue;
    }
    if (reported != uncreatable_.end()) uncreatable_.erase(reported);
    registerPlugin(plugin.get());
  }
  for (auto it = plugins_.begin(); it != plugins_.end();) {
    StPluginInfo info;
    if (registry->getPluginInfo(it->first, info) && !info.inUse)
      it = plugins_.erase(it);
    else
      ++it;
  }
}

void StManagerImpl::refresh() {
  refreshPlugins();
  // Watching needs plug-ins that know the drawing and its standards before any check runs.
  if (!db_.isNull() && idle_) restartCheck();
}

// ---- watching the drawing

bool StManagerImpl::handles(StDWSPlugin& plugin, const OdString& className) {
  const OdArray<OdString>& names = plugin.classNames();
  return std::find(names.begin(), names.end(), className) != names.end();
}

bool StManagerImpl::isWatched(const OdDbObject& object) const {
  const OdString className = classNameOf(object);
  return std::any_of(plugins_.begin(), plugins_.end(),
                     [&](const auto& entry) { return handles(*entry.second.plugin, className); });
}

void StManagerImpl::objectModified(const OdDbDatabase*, const OdDbObject* object) {
  if (idle_ && object && object->isModified() && isWatched(*object)) pending_ = object->objectId();
}

void StManagerImpl::objectAppended(const OdDbDatabase*, const OdDbObject* object) {
  // A record the user just added (a new layer) is checked like one just changed.
  if (idle_ && object && isWatched(*object)) pending_ = object->objectId();
}

void StManagerImpl::afterCommand(const OdString&) {
  if (!idle_ || pending_.isNull()) return;
  checkObject(pending_);
  pending_ = OdDbObjectId();
}

void StManagerImpl::checkObject(const OdDbObjectId& id) {
  for (const StDWSPluginPtr& plugin : pluginsInOrder()) {
    OdString className;
    {
      OdDbObjectPtr object = id.openObject();
      if (object.isNull()) continue;
      className = classNameOf(*object);
    }  // closed before the plug-in opens it
    if (!handles(*plugin, className)) continue;
    // The plug-in stays current with this one object until the next check or reset sets
    // every plug-in back to the whole drawing.
    current_ = plugin;
    currentKey_ = classNameOf(*plugin);
    OdArray<OdDbObjectId> objects;
    objects.append(id);
    plugin->setObjects(objects, false);
    plugin->start(nullptr);
    plugin->next();
    if (plugin->done()) return;
    StErrorPtr error = plugin->getError();
    if (error.isNull() || (error->flags() & (kStErrorIgnored | kStErrorCountedAsIgnored))) return;
    notify([&](StManagerReactor& listener) { listener.newViolation(plugin.get(), error.get()); });
    return;
  }
}

}  // namespace st
