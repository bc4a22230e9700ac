#pragma once

#include "StDbReaderWriter.h"
#include "UICmdProcess.h"

namespace st {

// The command CHECKSTANDARDS: checks the current drawing in the Check Standards dialog
// (stRunCheckStandardsDialog).
//
// A drawing with no standards files associated (no list, or an empty one) gets the
// "Associate Standards" box instead, and one whose list names a file that is not there the
// "Missing Standards File" box; choosing OK in either runs STANDARDS next, to associate or
// find the files. The command then ends without a check, as it does when no drawing is open.
//
// execute() is true when the dialog ran. The command holds the reader of the drawing's list
// for its one run.
class StCheckStandardsCmd : public UICmdProcess {
 public:
  // The creator the host is given.
  static UICmdProcess* create();

  bool execute() override;

 private:
  // Shows the box `text` / `caption` (string-table ids); on OK sends "STANDARDS ".
  static void offerConfigure(unsigned text, unsigned caption);

  StDbReaderWriterPtr list_;
};

}  // namespace st
