#pragma once

#include "OdArray.h"
#include "OdDbObjectId.h"
#include "OdRxMacros.h"
#include "OdString.h"
#include "StBlockProxy.h"
#include "StEnumDWSPlugin.h"
#include "StExport.h"
#include "StTableProxy.h"

class OdDbDatabase;

namespace st {

class StDWSPlugin;
class StManagerReactor;

// Runs the standards check of one drawing: owns the drawing's plug-ins, sets them up with
// the drawing and its standards files, walks them in ascending order of class name, pulls
// their errors, fixes automatically what the settings allow, counts, and tells its listeners
// (StManagerReactor) what happened. createObject makes an StManagerImpl.
//
// A check, as a listener drives it:
//   startCheck()  checkStarted, set-up, then the first problem (errorFound) or the end
//                 (checkFinished, checkStatistics);
//   nextError()   counts how the problem last shown ended (fixed by hand, ignored) and goes
//                 on to the next problem or the end;
//   resetCheck()  stops; checkInterrupted when some plug-in was not through.
// Within one call the manager passes over, without raising anything, the problems that are
// ignored (and not to be shown) and those it fixes automatically.
//
// A plug-in is expected to stand before its first error after start() and to move onto each
// error with next(): the manager calls next() and then done() before it reads getError().
//
// Listeners are not owned; plug-ins are held by reference. Operations run on the host's
// one thread. Failures are answered with false or null; exceptions of the drawing kernel
// pass through.
//
// The order of the operations below is part of the contract with callers built separately:
// new operations go at the end.
class ST_EXPORT StManager : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(StManager);

  // The ids of the entities of `db`'s model space or paper space; null when the block does
  // not open.
  virtual StBlockProxyPtr getModelSpaceProxy(OdDbDatabase* db) = 0;
  virtual StBlockProxyPtr getPaperSpaceProxy(OdDbDatabase* db) = 0;
  // The ids of the records of the symbol table `tableId`; null for a null id or a table that
  // does not open (an erased one). An object that is no symbol table throws
  // OdError_NotThatKindOfClass.
  virtual StTableProxyPtr getTableProxy(const OdDbObjectId& tableId) = 0;
  // The standards files associated with `db` (null: the host's current drawing), in the
  // association's order; empty when there is no association or it cannot be read.
  virtual OdArray<OdString> getStandardsFiles(OdDbDatabase* db) = 0;
  // Replaces the association of `db` by `files`. Tells every listener standardsChanged
  // before it writes; false, with nothing told, when `db` is null.
  virtual bool setStandardsFiles(OdDbDatabase* db, const OdArray<OdString>& files) = 0;
  // True when the check has passed through every plug-in (also with none).
  virtual bool isCheckComplete() = 0;
  // Drops the plug-in of `plugin`'s class; false when there is none. The caller keeps its
  // own reference.
  virtual bool unregisterPlugin(StDWSPlugin* plugin) = 0;
  // Adds `plugin` under its run-time class name and initialises it with this manager; false
  // (and nothing changed) for null, a plug-in whose class is not registered, or a class
  // already present. The manager takes its own reference.
  virtual bool registerPlugin(StDWSPlugin* plugin) = 0;
  // The plug-ins in ascending order of class name, as they are now.
  virtual StEnumDWSPluginPtr getPlugins() = 0;
  // Starts a check (see above).
  virtual void startCheck() = 0;
  // Clears every plug-in and the counts, leaves the manager idle and sets the plug-ins up
  // again with the standards files, as a check starts; raises no checkStarted.
  virtual void restartCheck() = 0;
  virtual void nextError() = 0;
  virtual void resetCheck() = 0;
  // Listeners, not owned; adding one twice keeps one entry, removing keeps the order of the
  // rest.
  virtual void addReactor(StManagerReactor* reactor) = 0;
  virtual void removeReactor(StManagerReactor* reactor) = 0;
};

using StManagerPtr = OdSmartPtr<StManager>;

}  // namespace st
