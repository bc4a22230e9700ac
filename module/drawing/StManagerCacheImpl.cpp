#include "StManagerCacheImpl.h"

#include "OdError.h"
#include "StManagerImpl.h"

namespace st {

StManagerCacheImpl::~StManagerCacheImpl() {
  // Each manager detaches itself as its last reference goes.
  managers_.clear();
}

StManager* StManagerCacheImpl::getManager(OdDbDatabase* db) {
  auto found = managers_.find(db);
  return found == managers_.end() ? nullptr : found->second.get();
}

bool StManagerCacheImpl::hasManager(OdDbDatabase* db) {
  return managers_.count(db) > 0;
}

// Every manager in the cache was made by StManager::createObject, which makes an
// StManagerImpl; attachDatabase checks it on the way in.
StManagerImpl* StManagerCacheImpl::implOf(OdDbDatabase* db) {
  return static_cast<StManagerImpl*>(getManager(db));
}

bool StManagerCacheImpl::attachDatabase(OdDbDatabase* db) {
  if (!db) return false;
  if (StManagerImpl* manager = implOf(db)) return manager->attach(db);
  StManagerPtr created = StManager::createObject();
  auto* impl = dynamic_cast<StManagerImpl*>(created.get());
  if (!impl) throw OdError_NotThatKindOfClass(created->isA(), StManager::desc());
  managers_[db] = created;
  return impl->attach(db);
}

void StManagerCacheImpl::detachDatabase(OdDbDatabase* db) {
  auto found = managers_.find(db);
  if (found == managers_.end()) return;
  static_cast<StManagerImpl*>(found->second.get())->detach();
  managers_.erase(found);
}

void StManagerCacheImpl::refreshDatabase(OdDbDatabase* db) {
  if (StManagerImpl* manager = implOf(db)) manager->refresh();
}

}  // namespace st
