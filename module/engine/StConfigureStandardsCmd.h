#pragma once

#include "StManager.h"
#include "UICmdProcess.h"

namespace st {

// The command STANDARDS: the Configure Standards dialog (stRunConfigureStandardsDialog) over
// the standards files of the current drawing, through that drawing's check manager, which
// is made for it when the drawing has none yet (a drawing without standards, say).
//
// execute() is true when the dialog was closed with Cancel (code 2), false when it was
// closed otherwise, could not run, or no drawing is open. The command holds the manager for
// its one run.
class StConfigureStandardsCmd : public UICmdProcess {
 public:
  // The creator the host is given.
  static UICmdProcess* create();

  bool execute() override;

 private:
  StManagerPtr manager_;
};

}  // namespace st
