#pragma once

#include <map>

#include "StManager.h"
#include "StManagerCache.h"

namespace st {

class StManagerImpl;

// The managers of the open drawings, one per database, keyed by the database's address. The
// cache holds one reference to each manager; dropping a drawing, or the cache going,
// releases it, and a manager that goes detaches itself from its drawing.
class ST_EXPORT StManagerCacheImpl : public StManagerCache {
 public:
  StManagerCacheImpl() = default;
  StManagerCacheImpl(const StManagerCacheImpl&) = delete;
  StManagerCacheImpl& operator=(const StManagerCacheImpl&) = delete;
  ~StManagerCacheImpl() override;

  StManager* getManager(OdDbDatabase* db) override;
  // Creates the manager with StManager::createObject on first use (a class that is no
  // StManagerImpl throws OdError_NotThatKindOfClass), then attaches it to `db` every time.
  // False for a null `db`.
  bool attachDatabase(OdDbDatabase* db) override;
  void detachDatabase(OdDbDatabase* db) override;
  void refreshDatabase(OdDbDatabase* db) override;
  bool hasManager(OdDbDatabase* db) override;

 private:
  StManagerImpl* implOf(OdDbDatabase* db);

  std::map<const OdDbDatabase*, StManagerPtr> managers_;
};

}  // namespace st
