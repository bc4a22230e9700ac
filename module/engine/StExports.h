#pragma once

#include "StExport.h"

// The module's plain exported functions, which a host finds by name in the loaded module
// (stIsDatabaseHasAttachedStandards, the third of them, is in StAttachedStandards.h).
extern "C" {
// Checks the current drawing silently: its check manager runs the whole check at once with
// automatic fixing as the settings ask, and what it found (problems left, problems fixed
// with the fix used) is shown in the error report (stRunErrorReport), whose "Fix errors"
// opens the interactive check. Nothing is done, and nothing shown, when no drawing is open,
// the drawing has no check manager (no standards associated), or nothing was found. The
// manager is back in interactive mode with a fresh check state afterwards, also when an
// error thrown by a plug-in passes through to the caller.
ST_EXPORT void stCheckStandards();
// True when the command set of the setting autoFixCommands shares a bit with `commandMask`
// (StCheckCommand bits): the host then runs stCheckStandards before that command. Always
// false for a mask of 0.
ST_EXPORT bool stIsCheckAllowed(int commandMask);
}
