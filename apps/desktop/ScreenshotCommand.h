#pragma once

#include "UICmdProcess.h"

class HostCommandRegistry;

// SCREENSHOT file.png saves a picture of the main window as it stands, for documentation and
// bug reports (a script can take one at any step). The file is written whole or not at all, and a
// link at its name is replaced, never written through.
class ScreenshotCommand : public UICmdProcess {
 public:
  bool execute() override;
  // Registers SCREENSHOT (group "DESKTOP").
  static void registerIn(HostCommandRegistry& registry);
};
