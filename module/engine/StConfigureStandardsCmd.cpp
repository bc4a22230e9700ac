#include "StConfigureStandardsCmd.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StDialogs.h"
#include "StManagerCache.h"

namespace st {

namespace {
constexpr int kDialogCancel = 2;
}

UICmdProcess* StConfigureStandardsCmd::create() {
  return new StConfigureStandardsCmd();
}

bool StConfigureStandardsCmd::execute() {
  HostServices* host = hostServices();
  OdDbDatabase* db = host ? host->currentDatabase() : nullptr;
  if (!db) {
    if (host) host->cmdPrint(L"STANDARDS: no drawing is open\n");
    return false;
  }
  StManagerCache* cache = stManagerCache();
  if (!cache) return false;
  if (!cache->hasManager(db)) cache->attachDatabase(db);
  manager_ = cache->getManager(db);
  if (!manager_) return false;
  return stRunConfigureStandardsDialog(manager_.get()) == kDialogCancel;
}

}  // namespace st
