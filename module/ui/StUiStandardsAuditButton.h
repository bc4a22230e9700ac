#pragma once

#include <QPointer>
#include <QWidget>

#include "StManagerReactor.h"
#include "StUiButtonState.h"
#include "hostUiBalloonToolTip.h"

class QMenu;

namespace stui {

// The standards button of the host's status bar: a 20 × 20 window whose icon and tooltip
// tell the standards state of the current drawing (StUiButtonState), whose left click runs
// the command that state calls for, and whose context menu reaches the check, the
// configuration, the notifications switch and the settings.
//
// It is the status listener of every check manager: a check that finishes or is
// interrupted, a new violation and a missing standards file change its state; a violation
// is announced as the notification mode asks (a balloon at the button, or the "Standards
// Audit" task dialog) and a missing file always by a balloon. Commands go to the host's
// command line with their trailing blank.
//
// Made and placed by the user-interface module (StUiModule), which removes it from every
// manager before it goes.
class StUiStandardsAuditButton : public QWidget, public st::StManagerReactor {
  Q_OBJECT

 public:
  // Context-menu commands.
  enum MenuCommand : int {
    kMenuCheckStandards = 1000,
    kMenuConfigureStandards = 1001,
    kMenuEnableNotifications = 1002,
    kMenuSettings = 1003,
  };
  // Task dialog answers.
  static constexpr int kAnswerCheck = 1004;
  static constexpr int kAnswerKeep = 1005;
  // How long a balloon of the button stays, in milliseconds.
  static constexpr int kBalloonTimeoutMs = 8000;

  explicit StUiStandardsAuditButton(QWidget* parent = nullptr);
  ~StUiStandardsAuditButton() override;

  const StUiButtonState& logic() const { return state_; }
  int state() const { return state_.state(); }
  // The text the tooltip shows now (it depends on the current drawing).
  QString tooltipText() const;
  // The balloon shown last while it is open, else null.
  hostUiBalloonToolTip* balloon() const { return balloon_; }
  // The context menu as a right click shows it (owned by the caller): its actions carry
  // their MenuCommand as data.
  QMenu* createMenu();
  // Runs a command of the context menu.
  void runMenuCommand(int command);

  // st::StManagerReactor
  void checkFinished() override;
  void checkInterrupted() override;
  void newViolation(st::StDWSPlugin* plugin, st::StError* error) override;
  void missingStandardsFile() override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void setState(StUiButtonState::State state);
  void showBalloon(const QString& title, const QString& content, const QString& link);

  StUiButtonState state_;
  QPointer<hostUiBalloonToolTip> balloon_;
};

}  // namespace stui
