#pragma once

// The silent standards check that a host command offers before it runs. A loaded module may
// export, with C linkage,
//   bool stIsCheckAllowed(int commandBit)   whether that command should check the drawing
//   void stCheckStandards()                  checks the current drawing and reports
// and the host finds them by name in the modules it loaded (OdRxDynamicLinker::findSymbol),
// so it builds against no module.

#include "OdRxDynamicLinker.h"

enum HostCheckCommand : int {
  kHostCheckSave = 0x02,
  kHostCheckImport = 0x04,
  kHostCheckTransmit = 0x08,
  kHostCheckPlot = 0x10,
  kHostCheckSaveAs = 0x20,
};

// The function a loaded module exports under `name` (with C linkage), as `Function`; null when
// no loaded module exports it.
template <class Function>
Function hostModuleFunction(const char* name) {
  // POSIX guarantees that a function's address survives the trip through void*.
  return reinterpret_cast<Function>(odrxDynamicLinker()->findSymbol(name));
}

// Asks stIsCheckAllowed with `commandBit` and, when it allows, runs stCheckStandards. Returns
// whether a check ran. Nothing happens, and false is returned, when no loaded module exports
// both functions. An error the check throws is reported on the command line (the command
// goes on with its work) and counts as a check that ran.
bool hostRunSilentCheck(int commandBit);
