#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "HostDocument.h"
#include "OdAtomicFile.h"
#include "OdResult.h"
#include "OdString.h"

class HostApDocManagerReactor;

// The host's open documents, one of which is current.
//
// Opening a drawing makes it current; closing the current document makes the document that
// was current before it current again (the most recently current one still open). Reactors
// (HostApDocManagerReactor, not owned, told in the order they were added) follow every step:
//   open:   onDocumentCreateStarted, onDocumentCreated, then the switch below
//           (onDocumentCreateCanceled instead when the file cannot be read)
//   switch: onDocumentToBeDeactivated(old), onDocumentToBeActivated(new),
//           onDocumentBecameCurrent(new)
//   close:  onCloseVeto (unless forced), onDocumentClosing, onDocumentClosed, then the
//           switch to the next current document, or onNoDocumentCurrent after the last
// Documents are held by reference while open. One thread only.
class HostApDocManager {
 public:
  // `report` prints a line for the user (an exception thrown by a reactor).
  explicit HostApDocManager(std::function<void(const OdString&)> report);
  ~HostApDocManager();
  HostApDocManager(const HostApDocManager&) = delete;
  HostApDocManager& operator=(const HostApDocManager&) = delete;

  // Reads the drawing file into a new document and makes it current. A file already open
  // (the same file by its canonical path) is not read again: its document becomes current.
  // Throws OdError from the kernel when the file cannot be read (eFileNotFound,
  // eBadDxfFile naming file and line, ...); nothing is then opened.
  HostDocument* openDocument(const OdString& path);
  // Makes a new, untitled drawing ("Drawing1.dxf", the first number no open document has) in a
  // new document and makes it current, with the reactors told as for openDocument. Saving it
  // asks for a file name (HostDocument::isUntitled).
  HostDocument* newDocument();
  // Makes an open document current; false when `doc` is not open here. Making the current
  // document current again raises nothing.
  bool setCurDocument(HostDocument* doc);
  // Closes a document; false when it is not open here or a reactor vetoed (unless `force`).
  bool closeDocument(HostDocument* doc, bool force = false);
  // Closes every document, forced, the current one last.
  void closeAll();
  // Saves the document's drawing to `path` (its own file when empty). A save under another
  // name renames the document. Afterwards the document counts as unchanged, in the state
  // the file has now (HostDocument::fileStamp). Throws OdError (eFileWriteError naming the file)
  // when it fails; the file on disk is then as it was. `options` say what the file must still be
  // and what happens just before it is replaced (see OdAtomicFile). `binary` chooses the form of
  // the file (binary or ASCII DXF); unset keeps the drawing's own.
  void saveDocument(HostDocument* doc, const OdString& path = OdString(),
                    const OdAtomicFile::Options& options = {},
                    std::optional<bool> binary = std::nullopt);

  // Sets a system variable of `doc` (see HostSysVars::set) and tells the reactors when it
  // changed.
  OdResult setSysVar(HostDocument* doc, const OdString& name, const OdResBuf* value,
                     OdString* error = nullptr);

  // The current document, or null when none is open.
  HostDocument* curDocument() const noexcept { return current_; }
  // The current document's database, or null.
  OdDbDatabase* curDatabase() const noexcept { return current_ ? current_->database() : nullptr; }
  // Open documents in the order they were opened.
  std::vector<HostDocument*> documents() const;
  int documentCount() const noexcept { return static_cast<int>(docs_.size()); }
  // The open document of a database, or null.
  HostDocument* documentOf(const OdDbDatabase* db) const;

  // Adding a reactor twice keeps one entry.
  void addReactor(HostApDocManagerReactor* reactor);
  void removeReactor(HostApDocManagerReactor* reactor);

 private:
  template <class Call>
  void notify(Call call);
  bool isOpenHere(const HostDocument* doc) const;
  void activate(HostDocument* doc);

  std::function<void(const OdString&)> report_;
  std::vector<HostDocumentPtr> docs_;
  std::vector<HostDocument*> activationOrder_;  // most recently current last
  HostDocument* current_ = nullptr;
  std::vector<HostDocument*> closing_;
  std::vector<HostApDocManagerReactor*> reactors_;
};
