#pragma once

#include <QDialog>
#include <vector>

#include "HostMessage.h"

class QAbstractButton;

// A task dialog of the host (HostTaskDialog) as a Qt dialog: the caption as window title, the
// main instruction large and bold, the content under it, the icon at the left, then the
// buttons: large command links (first line the text, the rest a note under it) when the
// dialog asks for them, else push buttons in a row. The default button is the one the dialog
// names (its first when it names none), so Enter chooses it.
//
// Escape and the close box dismiss the dialog: the answer is then kHostCancel.
class HostQtTaskDialog : public QDialog {
  Q_OBJECT

 public:
  // `parent` (not owned, may be null) is the window the dialog is modal to.
  explicit HostQtTaskDialog(const HostTaskDialog& dialog, QWidget* parent = nullptr);
  ~HostQtTaskDialog() override;

  // Shows the dialog modally and returns answer().
  int run();
  // The id of the button chosen, or kHostCancel when none was (yet).
  int answer() const { return answer_; }
  // The buttons in the order shown, with their ids.
  const std::vector<std::pair<QAbstractButton*, int>>& buttons() const { return buttons_; }

 private:
  void choose(int id);

  std::vector<std::pair<QAbstractButton*, int>> buttons_;
  int answer_ = kHostCancel;
};
