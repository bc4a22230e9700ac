#pragma once

#include "OdString.h"

namespace st {

// One registered plug-in: its run-time class name and whether it takes part in checks.
// Copied in and out of the plug-in registry by value.
struct StPluginInfo {
  OdString className;
  bool inUse = false;
};

}  // namespace st
