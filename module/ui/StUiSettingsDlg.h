#pragma once

#include <array>

#include "StUiSettingsModel.h"
#include "hostUiDialog.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace stui {

// The "Standards Settings" dialog: how standards violations are announced, which commands
// check the drawing silently, whether the Check Standards dialog fixes properties by itself
// and shows ignored problems, and which standards file is preferred for replacements. It
// reads the module's settings (stSettingsStorage) when built and writes them only on OK;
// Cancel, Escape and the close box write nothing. What each control shows and what OK writes
// is decided by StUiSettingsModel; this class only binds the widgets to it.
//
// Opened from the status-bar button's menu, the STANDARDSSETTINGS command and the other
// dialogs of the module; shown modally with runModal(). Its help key is
// "IDH_STANDARDSSETTINGS". Controls carry object names (notifyNone, notifyAlert,
// notifyStatusBar, checkOnSave, checkOnSaveAs, checkOnImport, checkOnPlot, checkOnETransmit,
// autoFix, showIgnored, preferredFile) for scripts and tests.
class StUiSettingsDlg : public hostUiDialog {
  Q_OBJECT

 public:
  // `parent` null puts the dialog over the host's main window.
  explicit StUiSettingsDlg(QWidget* parent = nullptr);
  // Reads and writes `storage` (not owned; it must outlive the dialog) instead of the
  // module's own settings.
  explicit StUiSettingsDlg(st::StSettingsStorage* storage, QWidget* parent = nullptr);
  ~StUiSettingsDlg() override;

  const StUiSettingsModel& model() const { return model_; }

  // The controls, for tests; owned by the dialog.
  // The notification button of mode 0, 1 or 2; null for another mode.
  QRadioButton* notificationButton(int mode) const;
  // The box of a command bit (StCheckCommand); null for a bit no box stands for.
  QCheckBox* commandBox(unsigned bit) const;
  QCheckBox* autoFixBox() const { return autoFix_; }
  QCheckBox* showIgnoredBox() const { return showIgnored_; }
  QComboBox* preferredFileBox() const { return preferredFile_; }
  QPushButton* okButton() const { return ok_; }
  QPushButton* cancelButton() const { return cancel_; }
  QPushButton* helpButton() const { return help_; }

 public slots:
  // OK: the model writes the settings, then the dialog closes as accepted.
  void accept() override;

 private:
  void build();
  void showModel();
  void connectControls();

  StUiSettingsModel model_;
  QButtonGroup* modes_ = nullptr;
  std::array<QCheckBox*, 5> commands_{};
  QCheckBox* autoFix_ = nullptr;
  QCheckBox* showIgnored_ = nullptr;
  QLabel* preferredLabel_ = nullptr;
  QComboBox* preferredFile_ = nullptr;
  QDialogButtonBox* buttons_ = nullptr;
  QPushButton* ok_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QPushButton* help_ = nullptr;
};

}  // namespace stui
