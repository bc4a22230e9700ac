#pragma once

#include "HostSysVars.h"
#include "OdDbDatabase.h"
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

  HostSysVars& sysVars() noexcept { return sysVars_; }
  const HostSysVars& sysVars() const noexcept { return sysVars_; }

 protected:
  explicit HostDocument(OdString fileName);
  ~HostDocument() override;

 private:
  friend class HostApDocManager;
  friend class OdRxObjectImpl<HostDocument>;
  void setDatabase(OdDbDatabasePtr database) { database_ = std::move(database); }
  void setFileName(const OdString& fileName);

  OdString fileName_;
  OdDbDatabasePtr database_;
  HostSysVars sysVars_;
};
