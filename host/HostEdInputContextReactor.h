#pragma once

#include "OdString.h"

// Told about the host's command flow (see HostServices::addInputContextReactor).
//
// All operations have empty defaults; override those of interest. They run on the host's
// one thread, may send command-line text (it runs later) and may add or remove reactors,
// themselves included.
class HostEdInputContextReactor {
 public:
  // Raised after each command completes, whatever its outcome, once the host has stopped
  // running it: the user's edit is complete and the drawing may be looked at. It comes
  // after commandEnded or commandFailed of the same command.
  virtual void afterCommand(const OdString& commandName) {}
  // Raised just before a command starts.
  virtual void commandWillStart(const OdString& commandName) {}
  // Raised when a command returned normally (whatever the value it returned).
  virtual void commandEnded(const OdString& commandName) {}
  // Raised when a command threw or could not be created; `message` says why.
  virtual void commandFailed(const OdString& commandName, const OdString& message) {}

  virtual ~HostEdInputContextReactor() = default;
};
