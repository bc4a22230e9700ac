#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "HostEdInputContextReactor.h"
#include "OdDbDatabase.h"
#include "StDWSPlugin.h"
#include "StDbReactor.h"
#include "StDbReactorResponder.h"
#include "StManager.h"

namespace st {

class StErrorAccumulator;

// The check manager of one drawing (see StManager for a check), and the watcher of that
// drawing between checks.
//
// Attached to a drawing (attach), the manager holds a reference to it, has its StDbReactor
// on it and is an input-context reactor of the host. While no check runs, every change to an
// object of a class that some plug-in checks is remembered (the last one wins); after the
// host's next command the plug-in checks that object alone, and a problem that is not
// ignored is announced to the listeners as newViolation. Changes made during a check, the
// check's own fixes among them, are never announced.
//
// Automatic fixing follows the setting autoFixProperties, for the modes 0 and 1 only (see
// setMode); ignored problems are shown when the setting showIgnoredProblems is on. Both are
// read from the module's settings at each nextError; without settings both count as off.
//
// With an error sink (setErrorSink) the manager runs silently: it never raises errorFound,
// hands every problem it would show to the sink and every successful automatic fix too, and
// goes on to the end within startCheck.
//
// The manager may be destroyed while attached: it detaches itself, and does without the host
// when the host has gone.
class ST_EXPORT StManagerImpl : public StManager,
                                public StDbReactorResponder,
                                public HostEdInputContextReactor {
 public:
  // Makes the status-bar listener of a manager that is being attached, or returns null for
  // none. The listener is not owned by the manager; it must stay valid until that manager
  // is detached (or destroyed), which removes it again.
  using StatusListenerFactory = StManagerReactor* (*)(StManagerImpl* manager);
  // Sets the factory every later attach uses; null (the default) adds no status listener.
  // Managers attached already keep theirs until updateStatusListener.
  static void setStatusListenerFactory(StatusListenerFactory factory) noexcept;
  // Brings an attached manager's status listener in line with the factory: takes away the one
  // it has when the factory is null (a user interface unloading), gives it one when it has
  // none (a user interface loaded after the drawing was opened). Nothing when not attached.
  void updateStatusListener();

  // ---- StManager
  StBlockProxyPtr getModelSpaceProxy(OdDbDatabase* db) override;
  StBlockProxyPtr getPaperSpaceProxy(OdDbDatabase* db) override;
  StTableProxyPtr getTableProxy(const OdDbObjectId& tableId) override;
  OdArray<OdString> getStandardsFiles(OdDbDatabase* db) override;
  bool setStandardsFiles(OdDbDatabase* db, const OdArray<OdString>& files) override;
  bool isCheckComplete() override;
  bool unregisterPlugin(StDWSPlugin* plugin) override;
  bool registerPlugin(StDWSPlugin* plugin) override;
  StEnumDWSPluginPtr getPlugins() override;
  void startCheck() override;
  void restartCheck() override;
  void nextError() override;
  void resetCheck() override;
  void addReactor(StManagerReactor* reactor) override;
  void removeReactor(StManagerReactor* reactor) override;

  // ---- the module's own operations
  // When automatic fixing may apply: in modes 0 and 1 (0 by default) when the setting asks
  // for it, never in any other mode.
  void setMode(int mode) noexcept { mode_ = mode; }
  int mode() const noexcept { return mode_; }
  // The sink of silent mode; not owned, null (the default) for the interactive check.
  void setErrorSink(StErrorAccumulator* sink) noexcept { sink_ = sink; }
  StErrorAccumulator* errorSink() const noexcept { return sink_; }
  // Forgets the state of the last check: clears every plug-in, marks none done, zeroes the
  // counts and leaves the manager idle.
  void clearCheckState();

  // Watches `db`: adds this manager as the host's input-context reactor, holds `db`, adds
  // the manager's StDbReactor to it and the status listener (setStatusListenerFactory) to
  // the listeners, then refreshes. Attaching again (to the same drawing or another) does
  // all of it again. False only for a null `db`.
  bool attach(OdDbDatabase* db);
  // Undoes attach; nothing when not attached.
  void detach();
  // Brings the manager up to date for its drawing. First the plug-ins, with the plug-in
  // registry: creates by class name every registered plug-in in use that is missing,
  // printing "Failed to create plugin object ..." on the command line for a class that cannot
  // be made (once per class for this manager, though every refresh tries again), and drops
  // every plug-in the registry has switched off; plug-ins the registry does not know
  // (registered directly) stay. Then, when attached and idle, restartCheck, so
  // that the plug-ins know the drawing and its standards files for watching (which tells
  // the listeners standardsChanged, or missingStandardsFile when a file is missing
  // or is not a drawing).
  void refresh();
  // The drawing attached, or null.
  OdDbDatabase* database() const noexcept { return db_.get(); }

  // Standards files for the checks of this run instead of those associated with the drawing
  // (which stays as it is): for a drawing that cannot hold an association (release 12 and
  // older, or one without an objects section) or a check against other standards once. They
  // take effect at the next set-up; clearRunStandardsFiles goes back to the association.
  void setRunStandardsFiles(const OdArray<OdString>& files);
  void clearRunStandardsFiles();
  // The standards files the next set-up reads, each as found (StStandardsPaths): those of
  // the run when set, else those associated with the attached drawing; empty when neither.
  OdArray<OdString> standardsFilesFound();

  // True when no check runs.
  bool isIdle() const noexcept { return idle_; }
  // The plug-in whose errors are being walked, or null.
  StDWSPlugin* currentPlugin() const noexcept { return current_.get(); }
  // The object remembered for checking after the next command, or a null id.
  OdDbObjectId pendingObject() const noexcept { return pending_; }

  // ---- StDbReactorResponder: remembers a watched object changed or added while no check
  // runs.
  void objectModified(const OdDbDatabase* db, const OdDbObject* object) override;
  void objectAppended(const OdDbDatabase* db, const OdDbObject* object) override;
  // ---- HostEdInputContextReactor: checks the remembered object once the edit is complete.
  void afterCommand(const OdString& commandName) override;

 protected:
  StManagerImpl();
  ~StManagerImpl() override;

 private:
  struct Entry {
    bool done = false;
    StDWSPluginPtr plugin;
  };
  using PluginTable = std::map<OdString, Entry>;

  template <class Call>
  void notify(Call call);
  std::vector<StDWSPluginPtr> pluginsInOrder() const;
  PluginTable::iterator findIgnoringCase(const OdString& className);
  void refreshPlugins();
  void setUp();
  void selectNextPlugin();
  void countOutcome(const StError& error);
  void markCurrentDone();
  void finish();
  void setWholeDrawing();
  void checkObject(const OdDbObjectId& id);
  static bool handles(StDWSPlugin& plugin, const OdString& className);
  // Whether a plug-in of this manager checks objects of the class of `object`.
  bool isWatched(const OdDbObject& object) const;

  PluginTable plugins_;
  // The standards drawings read by the last set-up, their file names and the drawings
  // themselves as handed to the plug-ins (the references keep those pointers valid).
  OdArray<OdString> runFileNames_;
  bool runListSet_ = false;
  OdArray<OdString> runList_;
  OdArray<OdDbDatabase*> runDatabases_;
  std::vector<OdDbDatabasePtr> runHeld_;
  std::vector<StManagerReactor*> reactors_;
  StDWSPluginPtr current_;
  OdString currentKey_;
  std::uint32_t found_ = 0;
  std::uint32_t fixedAutomatically_ = 0;
  std::uint32_t ignored_ = 0;
  std::uint32_t fixedManually_ = 0;
  OdDbDatabasePtr db_;
  bool idle_ = true;
  StErrorAccumulator* sink_ = nullptr;
  int mode_ = 0;

  // Registered classes that could not be created and were reported so.
  std::vector<OdString> uncreatable_;
  StDbReactorPtr dbReactor_;
  StManagerReactor* statusListener_ = nullptr;
  OdDbObjectId pending_;
};

}  // namespace st
