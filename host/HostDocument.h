#pragma once

#include <optional>

#include "HostSysVars.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseReactor.h"
#include "OdFileStamp.h"
#include "OdRxObject.h"
#include "OdRxObjectImpl.h"
#include "OdString.h"

class HostDocument;
using HostDocumentPtr = OdSmartPtr<HostDocument>;

// One open drawing of the host: its database, the file it came from and its system
// variables. Made and closed by the document manager (HostApDocManager), which holds a
// reference while it is open; anyone may hold further references, and a document that has
// closed keeps its file name but no longer its database.
class HostDocument : public OdRxObject {
 public:
  // The drawing; null before it is read and after the document has closed.
  OdDbDatabase* database() const noexcept { return database_.get(); }
  // The full path of the drawing file.
  const OdString& fileName() const noexcept { return fileName_; }
  // The file name without folders, as a title.
  OdString title() const;
  bool isOpen() const noexcept { return !database_.isNull(); }

  // Whether the drawing changed since it was read or last saved: an object appended, changed
  // or erased, or a header variable set, by anyone (a command, a module's fix). A new drawing
  // starts unchanged.
  bool isModified() const noexcept { return modified_; }
  // A new drawing never saved: its file name is a title in no folder, so saving it asks where.
  bool isUntitled() const noexcept { return untitled_; }
  // The state its file was in when it was read or last saved here; nullopt for a new drawing
  // or a file that could not be examined. A save compares the file with it to find out
  // whether someone else changed the file meanwhile.
  const std::optional<OdFileStamp>& fileStamp() const noexcept { return stamp_; }

  // The selected entities, in the order they were selected. Commands that act on the
  // selection read it; ids of erased entities are skipped by them.
  OdDbObjectIdArray& selection() noexcept { return selection_; }

  HostSysVars& sysVars() noexcept { return sysVars_; }
  const HostSysVars& sysVars() const noexcept { return sysVars_; }

 protected:
  explicit HostDocument(OdString fileName);
  ~HostDocument() override;

 private:
  friend class HostApDocManager;
  friend class OdRxObjectImpl<HostDocument>;
  class ChangeWatcher;
  // Watches the new database for changes (none for null) and counts it unchanged.
  void setDatabase(OdDbDatabasePtr database);
  void setFileName(const OdString& fileName);
  // After the file was read or saved: unchanged, in the file's present state.
  void markSaved(const OdString& fileName);
  void setUntitled(bool untitled) { untitled_ = untitled; }

  OdString fileName_;
  OdDbDatabasePtr database_;
  HostSysVars sysVars_;
  OdDbDatabaseReactorPtr watcher_;
  bool modified_ = false;
  bool untitled_ = false;
  std::optional<OdFileStamp> stamp_;
  OdDbObjectIdArray selection_;
};
