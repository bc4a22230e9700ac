#include "StExports.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StDbReaderWriter.h"
#include "StDialogs.h"
#include "StErrorAccumulatorImpl.h"
#include "StManagerCache.h"
#include "StManagerImpl.h"
#include "StSettingsStorage.h"
#include "StStandardsPaths.h"

namespace {

// The manager's mode while the host checks silently: automatic fixing applies as in an
// interactive check, every problem goes to the error sink.
constexpr int kSilentMode = 1;
constexpr int kInteractiveMode = 0;

// Puts the manager back as an interactive check finds it, however the silent run ends:
// without the sink (which lives on the caller's stack), in mode 0, with no check state left.
class SilentRunGuard {
 public:
  explicit SilentRunGuard(st::StManagerImpl& manager) : manager_(manager) {
    manager_.setMode(kSilentMode);
  }
  ~SilentRunGuard() {
    manager_.setErrorSink(nullptr);
    manager_.setMode(kInteractiveMode);
    try {
      manager_.clearCheckState();
    } catch (const std::exception& e) {
      // A plug-in that fails to clear must not take the host down from a destructor.
      if (HostServices* host = hostServices())
        host->cmdPrintf(L"standards check: a plug-in failed to reset: %ls\n",
                        OdString::fromUtf8(e.what()).c_str());
    }
  }
  SilentRunGuard(const SilentRunGuard&) = delete;
  SilentRunGuard& operator=(const SilentRunGuard&) = delete;

 private:
  st::StManagerImpl& manager_;
};

}  // namespace

void stCheckStandards() {
  HostServices* host = hostServices();
  OdDbDatabase* db = host ? host->currentDatabase() : nullptr;
  if (!db) return;
  st::StManagerCache* cache = st::stManagerCache();
  if (!cache) return;
  // Held for the run: a dialog's command could otherwise drop the manager under it.
  OdSmartPtr<st::StManagerImpl> manager(dynamic_cast<st::StManagerImpl*>(cache->getManager(db)));
  if (!manager) return;

  st::StErrorAccumulatorImpl found(manager.get());
  SilentRunGuard guard(*manager);
  manager->setErrorSink(&found);
  manager->startCheck();
  manager->setErrorSink(nullptr);
  if (found.empty()) return;
  if (st::stRunErrorReport(manager.get(), found) != 0) return;
  // "Fix errors": the interactive check starts again from the first plug-in.
  manager->setMode(kInteractiveMode);
  manager->clearCheckState();
  st::stRunCheckStandardsDialog(manager.get());
}

bool stIsCheckAllowed(int commandMask) {
  if (commandMask == 0) return false;
  st::StSettingsStorage* settings = stSettingsStorage();
  return settings && (static_cast<unsigned>(commandMask) & settings->getAutoFixCommands()) != 0;
}

bool stFindStandardsFiles(OdDbDatabase* db, OdArray<OdString>* files) {
  if (!db || !files) return false;
  st::StManagerCache* cache = st::stManagerCache();
  if (auto* manager = dynamic_cast<st::StManagerImpl*>(cache ? cache->getManager(db) : nullptr)) {
    files->append(manager->standardsFilesFound());
    return true;
  }
  st::StDbReaderWriterPtr reader = st::StDbReaderWriter::createObject();
  OdArray<OdString> stored;
  if (reader->setDatabase(db)) reader->readStandardFiles(stored);
  files->append(st::StStandardsPaths::resolveAll(stored, db));
  return true;
}

bool stWriteStandardsFiles(OdDbDatabase* db, const OdArray<OdString>* files) {
  if (!db || !files) return false;
  st::StDbReaderWriterPtr writer = st::StDbReaderWriter::createObject();
  return writer->setDatabase(db) && writer->writeStandardFiles(*files);
}
