#pragma once

#include "StManagerReactor.h"
#include "hostUiDialog.h"

namespace st {
class StManager;
}

namespace stui {

// The "Check Standards" dialog: walks the standards problems of the current drawing one at a
// time as the check manager raises them, lists the standards' objects that could replace the
// object at fault (the recommended one marked, selected and previewed), fixes, marks problems
// as ignored with the user's name, and reports the check's counts when it is through.
//
// It listens to `manager` from construction to destruction and starts the check when it is
// run (runModal), before it is drawn. Close ends it with kClosed.
class StUiCheckStandardsDlg : public hostUiDialog, public st::StManagerReactor {
  Q_OBJECT

 public:
  // The code runModal returns when the dialog is closed.
  static constexpr int kClosed = 8;

  // `manager` (not owned) is the current drawing's and must outlive the dialog. `parent`
  // null puts the dialog over the host's main window.
  explicit StUiCheckStandardsDlg(st::StManager* manager, QWidget* parent = nullptr);
  ~StUiCheckStandardsDlg() override;
};

}  // namespace stui
