#pragma once

#include "OdDbObjectId.h"
#include "StDWSPlugin.h"
#include "StError.h"
#include "StManagerReactor.h"
#include "StUiFixRows.h"
#include "hostUiDialog.h"

class OdDbDatabase;
class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

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
// run (runModal), before it is drawn, so a drawing without problems has its completion
// message before the dialog shows. Close, Escape and the title bar's close box take one path:
// while the check is not through they ask first; then the check is reset and the dialog ends
// with kClosed. While a problem shows, the host's view highlights the entities that use the
// object at fault ("Zoom to" also zooms there); the highlight goes when the check is through
// and when the dialog goes. The rows' order and the recommended row come from StUiFixRows.
//
// Kernel errors of a fix or of an ignore mark are shown in a message box; the dialog stays.
class StUiCheckStandardsDlg : public hostUiDialog, public st::StManagerReactor {
  Q_OBJECT

 public:
  // The code runModal returns when the dialog is closed.
  static constexpr int kClosed = 8;

  // `manager` (not owned) is the current drawing's and must outlive the dialog. `parent`
  // null puts the dialog over the host's main window.
  explicit StUiCheckStandardsDlg(st::StManager* manager, QWidget* parent = nullptr);
  ~StUiCheckStandardsDlg() override;

  // Starts the check, then shows the dialog until it is closed; returns kClosed.
  int runModal() override;

  // Shows the page of helpKey() through the host's help service.
  void help() override;

  // The controls, for tests and scripts; owned by the dialog.
  QPlainTextEdit* problemBox() const { return problem_; }
  QTreeWidget* fixList() const { return fixes_; }
  QTreeWidget* previewList() const { return preview_; }
  QCheckBox* ignoreBox() const { return ignore_; }
  QLabel* statusLine() const { return status_; }
  QPushButton* fixButton() const { return fix_; }
  QPushButton* nextButton() const { return next_; }
  QPushButton* settingsButton() const { return settings_; }
  QPushButton* zoomButton() const { return zoom_; }
  QPushButton* closeButton() const { return close_; }
  QPushButton* helpButton() const { return helpButton_; }
  // The rows of the problem shown, in fixList()'s order.
  const StUiFixRows& rows() const { return rows_; }

  // The manager's listener.
  void errorFound(st::StDWSPlugin* plugin, st::StError* error) override;
  void checkFinished() override;
  void checkStatistics(std::uint32_t found, std::uint32_t fixedAutomatically,
                       std::uint32_t fixedManually, std::uint32_t ignored) override;
  void checkStarted() override;

 public slots:
  // Escape and the close box end here: the Close path.
  void reject() override;

 private:
  void build();
  void previewRow(QTreeWidgetItem* item);
  void onFix();
  void onNext();
  void onIgnoreClicked(bool checked);
  void onClose();
  void showIgnoredBy();
  // Lights the users of the object at fault in the host's view (none: clears the light).
  void highlight(bool users, bool zoom);
  bool eventFilter(QObject* watched, QEvent* event) override;

  st::StManager* manager_;
  st::StErrorPtr error_;
  st::StDWSPluginPtr plugin_;
  StUiFixRows rows_;
  // The drawing last lit in the host's view; cleared there when the check ends.
  OdDbDatabase* litDatabase_ = nullptr;

  QPlainTextEdit* problem_ = nullptr;
  QTreeWidget* fixes_ = nullptr;
  QTreeWidget* preview_ = nullptr;
  QCheckBox* ignore_ = nullptr;
  QLabel* status_ = nullptr;
  QPushButton* fix_ = nullptr;
  QPushButton* next_ = nullptr;
  QPushButton* settings_ = nullptr;
  QPushButton* zoom_ = nullptr;
  QPushButton* close_ = nullptr;
  QPushButton* helpButton_ = nullptr;
};

}  // namespace stui
