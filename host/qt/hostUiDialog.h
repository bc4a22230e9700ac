#pragma once

#include <QDialog>
#include <QString>

class QDialogButtonBox;
class QPushButton;

// The base of the dialogs modules show in the desktop host: a QDialog shown modally over the
// host's main window, with a caption that is its window title and a help key.
//
// F1, the window's context-help button (and a click in context-help mode), and a Help button
// made by addHelpButton all reach one virtual help(), whose default shows the help page of the
// dialog's help key through the host application (HostApplication::showHelp). runModal() shows the
// dialog until it is closed and returns the code given to done() (QDialog::Accepted for OK,
// Rejected for Cancel or the close box, or any code the dialog chose), which is what the caller
// gets back.
class hostUiDialog : public QDialog {
  Q_OBJECT

 public:
  // `parent` null puts the dialog over the host's main window when there is one.
  explicit hostUiDialog(const QString& caption, const QString& helpKey = QString(),
                        QWidget* parent = nullptr);
  ~hostUiDialog() override;

  const QString& helpKey() const { return helpKey_; }
  void setHelpKey(const QString& key) { helpKey_ = key; }
  void setCaption(const QString& caption) { setWindowTitle(caption); }

  // Shows the dialog modally; returns the result code. A dialog that must act before it shows
  // (start its work, say) overrides it and calls this one.
  virtual int runModal();

  // Adds a "Help" button to `box` that calls help().
  QPushButton* addHelpButton(QDialogButtonBox* box);

  // Shows the help of the dialog; the default asks the host for the page of helpKey().
  virtual void help();

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // Catches the application entering context-help mode while this dialog is the modal one.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QString helpKey_;
};
