#pragma once

#include "StService.h"

class OdDbDatabase;

namespace st {

class StManager;

// Keeps exactly one check manager per open drawing database; the manager holds the drawing's
// standards files open and its plug-ins loaded for as long as the drawing is open. The
// application services hold it under kStManagerCacheService (StManagerCacheImpl).
class ST_EXPORT StManagerCache : public StService {
 public:
  // Nothing to bring up: the cache starts empty.
  void init() override {}
  // The manager of `db`, or null; creates nothing.
  virtual StManager* getManager(OdDbDatabase* db) = 0;
  // Gets or creates the manager of `db` and runs its attach step, returning its result.
  virtual bool attachDatabase(OdDbDatabase* db) = 0;
  // Detaches the manager of `db` and drops it; nothing for a database without one.
  virtual void detachDatabase(OdDbDatabase* db) = 0;
  // Runs the refresh step of the manager of `db`, when it has one.
  virtual void refreshDatabase(OdDbDatabase* db) = 0;
  virtual bool hasManager(OdDbDatabase* db) = 0;
};

}  // namespace st
