#pragma once

#include "HostMessage.h"
#include "OdString.h"

// The presenting side of a host application: what a window system shows, or what the
// headless front prints and answers from a script. The host application calls it on its
// one thread; the front is not owned by the application and must outlive it.
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
};
