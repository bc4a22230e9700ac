#pragma once

#include "IStUiConfigureStandardsDlg.h"
#include "hostUiDialog.h"

class OdDbDatabase;
class QPushButton;
class QTabWidget;

namespace stui {

class StUiPluginsTabDlg;
class StUiStandardsTabDlg;

// The "Configure Standards" dialog over the host's current drawing: the "Standards" page
// (the standards files associated with the drawing, StUiStandardsTabDlg) and the "Plugins"
// page (the plug-ins used in a check, StUiPluginsTabDlg), both owned by the dialog. Nothing
// is written until OK or "Check Standards...": then the Plug-ins page is applied first (with
// no plug-in checked it says so and OK leaves the dialog open), then the Standards page.
// "Check Standards..." closes with kCheckStandards whatever applying gave and then sends
// CHECKSTANDARDS to the command line, which runs once this dialog's command is over. Cancel,
// Escape and the close box write nothing. Its help key is "IDH_STANDARDS".
class StUiConfigureStandardsDlg : public hostUiDialog, public IStUiConfigureStandardsDlg {
  Q_OBJECT

 public:
  // The codes runModal returns: OK gives QDialog::Accepted (1); Cancel, Escape and the close
  // box kCancelled; "Check Standards..." kCheckStandards.
  static constexpr int kCancelled = 2;
  static constexpr int kCheckStandards = 1001;

  // `parent` null puts the dialog over the host's main window.
  explicit StUiConfigureStandardsDlg(QWidget* parent = nullptr);
  ~StUiConfigureStandardsDlg() override;

  // "Check Standards..." is enabled exactly when a file is listed and a plug-in checked.
  void updateState() override;
  void help() override;

  // The parts, for tests; owned by the dialog.
  QTabWidget* tabs() const { return tabs_; }
  StUiStandardsTabDlg* standardsPage() const { return standards_; }
  StUiPluginsTabDlg* pluginsPage() const { return plugins_; }
  QPushButton* checkButton() const { return check_; }
  QPushButton* settingsButton() const { return settings_; }
  QPushButton* okButton() const { return ok_; }
  QPushButton* cancelButton() const { return cancel_; }
  QPushButton* helpButton() const { return helpButton_; }

 public slots:
  // OK: applies both pages and closes as accepted when both succeed.
  void accept() override;
  // Cancel: closes with kCancelled, writing nothing.
  void reject() override;
  // "Check Standards...": applies both pages as OK does, then closes with kCheckStandards and
  // starts CHECKSTANDARDS even when applying failed. The button is disabled while no file is
  // listed or no plug-in checked; this runs all the same when called.
  void checkStandards();

 private:
  void build();
  bool applyPages();

  OdDbDatabase* db_;
  QTabWidget* tabs_ = nullptr;
  StUiStandardsTabDlg* standards_ = nullptr;
  StUiPluginsTabDlg* plugins_ = nullptr;
  QPushButton* check_ = nullptr;
  QPushButton* settings_ = nullptr;
  QPushButton* ok_ = nullptr;
  QPushButton* cancel_ = nullptr;
  QPushButton* helpButton_ = nullptr;
};

}  // namespace stui
