#include "StDocManagerReactor.h"

#include "HostDocument.h"
#include "StAppServices.h"
#include "StAttachedStandards.h"
#include "StDbReaderWriter.h"
#include "StManagerCache.h"

namespace st {

namespace {

std::shared_ptr<StDocManagerReactor> g_reactor;
StDocManagerReactor::NoStandardsHook g_noStandardsHook = nullptr;

// True when the drawing has a standards list at all, even an empty one.
bool hasStandardsList(OdDbDatabase* db) {
  StDbReaderWriterPtr list = StDbReaderWriter::createObject();
  return list->setDatabase(db) && list->hasStandardsEntry();
}

}  // namespace

void StDocManagerReactor::setNoStandardsHook(NoStandardsHook hook) noexcept {
  g_noStandardsHook = hook;
}

void StDocManagerReactor::onDocumentBecameCurrent(HostDocument* doc) {
  OdDbDatabase* db = doc ? doc->database() : nullptr;
  if (!db) return;
  if (!hasStandardsList(db)) {
    if (g_noStandardsHook) g_noStandardsHook();
    return;
  }
  StManagerCache* cache = stManagerCache();
  if (!cache) return;
  if (cache->hasManager(db))
    cache->refreshDatabase(db);
  else if (stIsDatabaseHasAttachedStandards(db))
    cache->attachDatabase(db);
}

void StDocManagerReactor::onDocumentClosing(HostDocument* doc) {
  OdDbDatabase* db = doc ? doc->database() : nullptr;
  if (!db) return;
  // Also a drawing without a standards list may have a manager: STANDARDS makes one to
  // associate the first files. None outlives its drawing.
  StManagerCache* cache = stManagerCache();
  if (cache && cache->hasManager(db)) cache->detachDatabase(db);
}

std::shared_ptr<StDocManagerReactor> stDocManagerReactor() {
  if (!g_reactor) g_reactor = std::make_shared<StDocManagerReactor>();
  return g_reactor;
}

void stReleaseDocManagerReactor() {
  g_reactor.reset();
}

}  // namespace st
