#pragma once

#include "hostUiDialog.h"

namespace stui {

// The "Standards Settings" dialog: how standards violations are announced, which commands
// check the drawing silently, whether the Check Standards dialog fixes properties by itself
// and shows ignored problems, and which standards file is preferred for replacements. It
// reads the module's settings (st::stSettingsStorage) when built and writes them only on OK.
//
// Opened from the status-bar button's menu, the STANDARDSSETTINGS command and the other
// dialogs of the module; shown modally with runModal().
class StUiSettingsDlg : public hostUiDialog {
  Q_OBJECT

 public:
  // `parent` null puts the dialog over the host's main window.
  explicit StUiSettingsDlg(QWidget* parent = nullptr);
  ~StUiSettingsDlg() override;
};

}  // namespace stui
