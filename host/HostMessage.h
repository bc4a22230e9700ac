#pragma once

#include <vector>

#include "OdString.h"

// What a message box or task dialog asks, and how it is answered. The front (a window, or
// the headless front's script) shows it and returns the button chosen.

// The buttons of a message box; the first is the default unless the box names another.
enum class HostButtons { kOk, kOkCancel, kYesNo, kYesNoCancel, kRetryCancel };

enum class HostIcon { kNone, kInformation, kWarning, kError, kQuestion };

// Answers of a message box: the button that was pressed. Closing the box without choosing
// is kHostCancel. The numbers are kept as they are because callers compare with them.
enum HostAnswer : int { kHostOk = 1, kHostCancel = 2, kHostRetry = 4, kHostYes = 6, kHostNo = 7 };

struct HostMessageBox {
  OdString text;
  OdString caption;
  HostButtons buttons = HostButtons::kOk;
  HostIcon icon = HostIcon::kNone;
  // The answer of the default button (what Enter, or a script with no answer, gives); 0, or an
  // answer the buttons cannot give, for the first button.
  int defaultAnswer = 0;

  // The answers this box can give, default first.
  std::vector<int> answers() const;
};

struct HostTaskDialogButton {
  int id;         // returned when the button is chosen; callers pick ids above 100
  OdString text;  // a first line, then optionally "\n" and a note under it
};

// A dialog with an instruction, a text and buttons of its own (shown as large command links
// when `commandLinks` is set). Its answer is the id of the chosen button, or kHostCancel when
// it is dismissed.
struct HostTaskDialog {
  OdString windowTitle;
  OdString mainInstruction;
  OdString content;
  HostIcon icon = HostIcon::kNone;
  std::vector<HostTaskDialogButton> buttons;
  bool commandLinks = false;
  // The id chosen by default; 0 for the first button.
  int defaultButton = 0;

  // The answers it can give (button ids, then kHostCancel), default first.
  std::vector<int> answers() const;
};

// "ok", "cancel", "retry", "yes" or "no" for a message-box answer, else the number.
OdString hostAnswerName(int answer);
// The answer a script names ("ok", "Cancel", "yes", ... or a number); false for other text.
bool hostParseAnswer(const OdString& text, int& answer);
