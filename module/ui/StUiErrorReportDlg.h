#pragma once

#include "hostUiDialog.h"

namespace st {
class StManager;
class StErrorAccumulatorImpl;
}  // namespace st

namespace stui {

// The "Standard Errors found" report of a silent check: the errors left unfixed (the last
// reported first) and those fixed automatically, each with its plug-in's icon. "Fix errors"
// ends it with kFixErrors, Cancel (labelled "Close" when nothing is left to fix) with kClose.
class StUiErrorReportDlg : public hostUiDialog {
  Q_OBJECT

 public:
  static constexpr int kFixErrors = 0;
  static constexpr int kClose = 1;

  // `manager` (not owned) gives the plug-ins' icons; `found` is copied. `parent` null puts
  // the dialog over the host's main window.
  StUiErrorReportDlg(st::StManager* manager, const st::StErrorAccumulatorImpl& found,
                     QWidget* parent = nullptr);
  ~StUiErrorReportDlg() override;
};

}  // namespace stui
