#pragma once

#include "HostMessage.h"
#include "OdDbObjectId.h"
#include "OdString.h"

class HostDocument;
class HostStatusBar;
class OdDbDatabase;

// The presenting side of a host application: what a window system shows, or what the
// headless front prints and answers from a script. The host application calls it on its
// one thread; the front is not owned by the application and must outlive it.
//
// The operations below the first four have defaults for a front without a screen: no person
// to ask, no status bar, no plotter, no drawing view.
class HostFrontend {
 public:
  virtual ~HostFrontend() = default;

  // Shows a message box until it is answered; returns one of box.answers().
  virtual int showMessageBox(const HostMessageBox& box) = 0;
  // Shows a task dialog until it is answered; returns one of dialog.answers().
  virtual int showTaskDialog(const HostTaskDialog& dialog) = 0;
  // Appends text to the command-line window (text carries its own line breaks).
  virtual void writeCommandLine(const OdString& text) = 0;
  // Shows a help page (a file: URL); false when it cannot be shown.
  virtual bool showHelpPage(const OdString& page) = 0;

  // Waits until the person at the command line enters a line of input for a running command
  // that asked for more (the prompt has been printed already) and gives the line as typed,
  // without its line break. False when the person cancels (Escape), or when there is nobody
  // to ask: a script runs, or the front has no screen.
  virtual bool readCommandInput(OdString& line) {
    (void)line;
    return false;
  }
  // The status bar modules may place widgets in; null when the front has none. Not owned.
  virtual HostStatusBar* statusBar() { return nullptr; }
  // Plots the drawing to a PDF file at `path`; false with `error` set when it cannot.
  virtual bool plotToPdf(OdDbDatabase& db, const OdString& path, OdString& error) {
    (void)db;
    (void)path;
    error = L"this host has no plotter";
    return false;
  }
  // Highlights `ids` in the document's view, replacing what was highlighted, and with `zoom`
  // zooms to them; false when the front has no view of the document.
  virtual bool highlightObjects(HostDocument* doc, const OdDbObjectIdArray& ids, bool zoom) {
    (void)doc;
    (void)ids;
    (void)zoom;
    return false;
  }
  // Zooms the document's view to the extents of its drawing; false when the front has no view.
  virtual bool zoomExtents(HostDocument* doc) {
    (void)doc;
    return false;
  }
};
