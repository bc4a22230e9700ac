#pragma once

#include "OdString.h"

namespace stui {

// What the status-bar button shows and does, without a screen: the standards state of the
// current drawing, the icon and tooltip of each state, the command a click runs, the alert a
// new violation gets and the notification mode the menu's "Enable Notifications" sets.
//
// The state belongs to the module, not to a drawing: there is one button, and it tells what
// was heard last from whichever drawing's manager spoke.
class StUiButtonState {
 public:
  enum State : int {
    kAssociated = 0,    // standards associated, nothing to report
    kMissingFile = 1,   // a standards file is missing
    kNewViolation = 2,  // a new standards violation
  };
  // The icons of the states (resource ids of StUiIcons).
  static constexpr int kIconAssociated = 115;
  static constexpr int kIconAttention = 116;

  // How a new violation is announced.
  enum class Alert { kNone, kBalloon, kTaskDialog };

  State state() const { return state_; }
  void setState(State state) { state_ = state; }
  // 115 for kAssociated, 116 otherwise.
  int iconId() const;
  // The string-table id of the tooltip: the state's text with a manager for the current
  // drawing, "No standards file(s) associated with the current drawing" without one.
  unsigned tooltipId(bool hasManager) const;
  // The command line text a left click sends ("STANDARDS " for a missing file, otherwise
  // "CHECKSTANDARDS "); empty when no drawing is open.
  OdString clickCommand(bool drawingOpen) const;

  // The manager's notices: each sets the state it stands for.
  void checkFinished() { state_ = kAssociated; }
  void checkInterrupted() { state_ = kNewViolation; }
  void newViolation() { state_ = kNewViolation; }
  void missingFile() { state_ = kMissingFile; }

  // The alert for a new violation under notification mode `mode`: the balloon for mode 2
  // (only when the button can be seen to point at), the task dialog for mode 1, else none.
  static Alert violationAlert(int mode, bool buttonVisible);
  // "Enable Notifications" is checked for a mode above 0; choosing it turns 0 into 2 and any
  // other mode into 0.
  static bool notificationsEnabled(int mode) { return mode > 0; }
  static int toggledNotificationMode(int mode) { return mode == 0 ? 2 : 0; }

 private:
  State state_ = kAssociated;
};

}  // namespace stui
