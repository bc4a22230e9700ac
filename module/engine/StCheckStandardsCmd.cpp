#include "StCheckStandardsCmd.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StDialogs.h"
#include "StManagerCache.h"
#include "StStandardsPaths.h"
#include "StStringTable.h"

namespace st {

UICmdProcess* StCheckStandardsCmd::create() {
  return new StCheckStandardsCmd();
}

bool StCheckStandardsCmd::execute() {
  HostServices* host = hostServices();
  OdDbDatabase* db = host ? host->currentDatabase() : nullptr;
  list_ = StDbReaderWriter::createObject();
  if (!db || !list_->setDatabase(db)) return false;

  OdArray<OdString> files;
  if (!list_->readStandardFiles(files) || files.isEmpty()) {
    offerConfigure(kStrNoStandardsAssociated, kStrAssociateStandardsCaption);
    return false;
  }
  for (const OdString& file : files) {
    if (!host->fileExists(StStandardsPaths::resolve(file, db))) {
      offerConfigure(kStrMissingStandardsFile, kStrMissingStandardsFileCaption);
      return false;
    }
  }

  // The document reactor attached the drawing when it became current; a drawing that was
  // current before the module loaded is attached now.
  StManagerCache* cache = stManagerCache();
  if (!cache) return false;
  if (!cache->hasManager(db)) cache->attachDatabase(db);
  StManager* manager = cache->getManager(db);
  if (!manager) return false;
  return stRunCheckStandardsDialog(manager) != kStNoDialog;
}

void StCheckStandardsCmd::offerConfigure(unsigned text, unsigned caption) {
  HostServices* host = hostServices();
  if (host->messageBox(stLoadString(text), stLoadString(caption), HostButtons::kOkCancel,
                       HostIcon::kWarning) == kHostOk)
    host->sendCommand(L"STANDARDS ");
}

}  // namespace st
