#pragma once

#include "OdArray.h"
#include "OdString.h"
#include "StExport.h"

class OdDbDatabase;

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
// Appends to `files` the standards files a check of `db` reads, each as found (see
// st::StStandardsPaths): those its check manager was given for the run, else those
// associated with the drawing. False when `db` or `files` is null.
ST_EXPORT bool stFindStandardsFiles(OdDbDatabase* db, OdArray<OdString>* files);
// Replaces the standards files associated with `db` (an open drawing or a database read for
// a package) by `files`, stored as given. False when `db` or `files` is null or the drawing
// cannot hold an association (it has no named-object dictionary).
ST_EXPORT bool stWriteStandardsFiles(OdDbDatabase* db, const OdArray<OdString>* files);
}
