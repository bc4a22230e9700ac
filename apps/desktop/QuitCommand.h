#pragma once

#include "UICmdProcess.h"

class HostCommandRegistry;

// QUIT ends the desktop host. Typed by a person it closes the window, which asks about each
// changed drawing as the window's close box does (Cancel keeps it running); in a script it
// ends the program without asking and says on standard error which changed drawings it
// discarded.
class QuitCommand : public UICmdProcess {
 public:
  bool execute() override;
  // Registers QUIT (group "DESKTOP").
  static void registerIn(HostCommandRegistry& registry);
};
