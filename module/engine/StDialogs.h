#pragma once

#include "StExport.h"

namespace st {

class StManager;
class StErrorAccumulatorImpl;

// The module's modal dialogs, as the user-interface library provides them. The engine and
// the commands reach each dialog only through these entries, so the module runs, and is
// tested, in a host without a desktop: an entry left null is stood in for on the command
// line (see the stRun... functions).
//
// Every entry runs on the host's one thread; the manager passed is valid for the call only.
struct StDialogs {
  // The Check Standards dialog, checking with `manager` (of the current drawing). Returns
  // the code the dialog ended with.
  int (*checkStandards)(StManager* manager) = nullptr;
  // The Configure Standards dialog over the standards files of `manager`'s drawing. Returns
  // the code the dialog ended with: 2 for Cancel.
  int (*configureStandards)(StManager* manager) = nullptr;
  // The report of a silent check, over what `found` holds (not empty). Returns 0 when the
  // user chose to fix the remaining errors, 1 when the report was closed.
  int (*errorReport)(StManager* manager, const StErrorAccumulatorImpl& found) = nullptr;
};

// The dialogs in use; all null until the user-interface library sets them.
ST_EXPORT const StDialogs& stDialogs() noexcept;
// Replaces the dialogs in use; StDialogs{} takes them away again.
ST_EXPORT void stSetDialogs(const StDialogs& dialogs) noexcept;

// The code a stRun... function returns when no dialog is there to run.
inline constexpr int kStNoDialog = -1;

// Runs the Check Standards dialog; without one says on the command line that it needs the
// desktop host and returns kStNoDialog.
ST_EXPORT int stRunCheckStandardsDialog(StManager* manager);
// Runs the Configure Standards dialog; without one as above.
ST_EXPORT int stRunConfigureStandardsDialog(StManager* manager);
// Runs the report of a silent check; without one prints the report on the command line (the
// unfixed problems, then those fixed automatically with the fix used) and returns 1, as if
// the report had been closed.
ST_EXPORT int stRunErrorReport(StManager* manager, const StErrorAccumulatorImpl& found);

}  // namespace st
