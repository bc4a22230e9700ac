#pragma once

#include "OdResult.h"
#include "OdString.h"

class HostDocument;

// Told about the documents of the host's document manager (HostApDocManager::addReactor).
//
// Every operation has an empty default; override those of interest. Operations run on the
// host's one thread, in the order described at each, and receive the document concerned
// (not owned; valid for the call). A reactor may add or remove reactors, itself included,
// while being told. An exception thrown by a reactor is reported on the command line and
// does not stop the operation.
class HostApDocManagerReactor {
 public:
  // A drawing file is about to be read into a new document (its database() is still null).
  virtual void onDocumentCreateStarted(HostDocument* doc) {}
  // The document is open; it becomes current right after.
  virtual void onDocumentCreated(HostDocument* doc) {}
  // The document is about to close; its database is still there.
  virtual void onDocumentClosing(HostDocument* doc) {}
  // The file could not be read; the document goes away.
  virtual void onDocumentCreateCanceled(HostDocument* doc, const OdString& reason) {}
  // The document of that file has closed and is no longer listed.
  virtual void onDocumentClosed(const OdString& fileName) {}
  // `doc` is about to become current.
  virtual void onDocumentToBeActivated(HostDocument* doc) {}
  // `doc`, current until now, is about to stop being current.
  virtual void onDocumentToBeDeactivated(HostDocument* doc) {}
  // The document's drawing is about to be saved.
  virtual void onDocumentSaving(HostDocument* doc) {}
  // `doc` has become the current document.
  virtual void onDocumentBecameCurrent(HostDocument* doc) {}
  // The document's drawing was saved.
  virtual void onDocumentSaved(HostDocument* doc) {}
  // Saving failed; the file on disk is as it was.
  virtual void onDocumentSaveFailed(HostDocument* doc, const OdString& reason) {}
  // Saving under another name changed the document's file name.
  virtual void onDocumentRenamed(HostDocument* doc, const OdString& oldFileName) {}
  // A system variable of the document was set.
  virtual void onSysVarChanged(HostDocument* doc, const OdString& name) {}
  // The last document closed: there is no current document any more.
  virtual void onNoDocumentCurrent() {}
  // Asked before a document closes (unless closing is forced): set `veto` to a code other
  // than eOk to keep it open. Left as it is, the document closes.
  virtual void onCloseVeto(HostDocument* doc, OdResult& veto) {}

  virtual ~HostApDocManagerReactor() = default;
};
