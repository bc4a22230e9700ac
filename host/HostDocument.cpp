#include "HostDocument.h"

#include "HostPaths.h"
#include "OdRxObjectImpl.h"

// Counts the drawing changed on the first change a database reactor hears of.
class HostDocument::ChangeWatcher : public OdDbDatabaseReactor {
 public:
  explicit ChangeWatcher(HostDocument& doc) : doc_(doc) {}
  void objectAppended(const OdDbDatabase*, const OdDbObject*) override { doc_.modified_ = true; }
  void objectModified(const OdDbDatabase*, const OdDbObject*) override { doc_.modified_ = true; }
  void objectErased(const OdDbDatabase*, const OdDbObject*, bool) override {
    doc_.modified_ = true;
  }
  void headerSysVarChanged(const OdDbDatabase*, const OdString&) override { doc_.modified_ = true; }

 private:
  HostDocument& doc_;
};

HostDocument::HostDocument(OdString fileName)
    : fileName_(std::move(fileName)), sysVars_(HostPaths::fileNameOf(fileName_)) {}

HostDocument::~HostDocument() {
  setDatabase(nullptr);
}

OdString HostDocument::title() const {
  return HostPaths::fileNameOf(fileName_);
}

void HostDocument::setDatabase(OdDbDatabasePtr database) {
  if (database_ && watcher_) database_->removeReactor(watcher_.get());
  database_ = std::move(database);
  modified_ = false;
  selection_.clear();
  if (!database_) return;
  if (!watcher_) watcher_ = OdRxObjectImpl<ChangeWatcher>::createObject(*this);
  database_->addReactor(watcher_.get());
}

void HostDocument::setFileName(const OdString& fileName) {
  fileName_ = fileName;
  sysVars_.setDrawingName(HostPaths::fileNameOf(fileName));
}

void HostDocument::markSaved(const OdString& fileName) {
  modified_ = false;
  untitled_ = false;
  stamp_ = OdFileStamp::ofTarget(HostPaths::toPath(fileName));
}
