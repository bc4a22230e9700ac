#pragma once

#include <QStringList>
#include <QWidget>

class HostCommandRegistry;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QStringListModel;

// The command-line window docked at the bottom of the desktop host: the text the host printed
// above, and an input line below with the prompt in front of it.
//
// Enter sends the line to the host application's command line (HostApplication::sendCommand,
// with a line break; from the event loop, just after the key), or, while a running command waits
// for input (waitForLine), hands the line to that command. Escape cancels a waiting command. Up and
// Down walk the history of lines entered (a line entered twice in a row is kept once); Tab (to the
// longest start the matching names share) and the completer's popup complete command names from the
// registry, read afresh as the person types. Every line entered is shown in the text above after
// the prompt it answered: a command line after "Command: " (the host's own "Command: NAME" line
// that follows is then not repeated), an answer to a prompt by the host itself
// (HostApplication::getString writes it), or by this widget when the waiting command printed no
// prompt.
//
// Needs a running HostApplication to send lines to; without one, lines are only shown.
class HostQtCommandLine : public QWidget {
  Q_OBJECT

 public:
  // `registry` (not owned, may be null) gives the names to complete.
  explicit HostQtCommandLine(HostCommandRegistry* registry, QWidget* parent = nullptr);
  ~HostQtCommandLine() override;

  // Appends host output (with its own line breaks); a text not ending in a line break is a
  // prompt and is shown in front of the input line too (else "Command: " when idle).
  void append(const QString& text);
  // Everything shown in the text above, as plain text.
  QString transcript() const;
  // Lines entered, oldest first.
  const QStringList& history() const { return history_; }
  QLineEdit* input() const { return input_; }

  // Runs a local event loop until the person enters a line (true, `line` set) or presses
  // Escape or the widget goes (false). Nested waits are not allowed: a second call while one
  // waits returns false.
  bool waitForLine(QString& line);
  bool isWaiting() const { return waiting_; }

 signals:
  // A line was entered (not while a command waited for input), before it is sent.
  void lineEntered(const QString& line);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void enter();
  void cancel();
  void refreshCompletion();
  void completeUniquePrefix();
  // step -1 goes to an older line, +1 to a newer one.
  void showHistory(int step);
  QStringList commandNames() const;
  void writeOutput(const QString& text);
  void updatePrompt();

  HostCommandRegistry* registry_;
  QPlainTextEdit* output_;
  QLabel* prompt_;
  QLineEdit* input_;
  QStringList history_;
  int historyPos_ = -1;
  bool waiting_ = false;
  bool waitAnswered_ = false;
  QString waitLine_;
  class QEventLoop* loop_ = nullptr;
  QStringListModel* completions_ = nullptr;
  // The text of the last output line when it has no line break yet (a prompt).
  QString partialLine_;
  // The command name of a line just sent, while the host has not yet written its first
  // text; null otherwise.
  QString echoedCommand_;
};
