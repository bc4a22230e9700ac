#include "HostQtFront.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

#include "HostQtCommandLine.h"
#include "HostQtDrawingPainter.h"
#include "HostQtStatusBar.h"
#include "HostQtTaskDialog.h"
#include "HostQtText.h"

namespace {
QMessageBox::Icon messageIcon(HostIcon icon) {
  switch (icon) {
    case HostIcon::kInformation:
      return QMessageBox::Information;
    case HostIcon::kWarning:
      return QMessageBox::Warning;
    case HostIcon::kError:
      return QMessageBox::Critical;
    case HostIcon::kQuestion:
      return QMessageBox::Question;
    case HostIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButton standardButton(int answer) {
  switch (answer) {
    case kHostOk:
      return QMessageBox::Ok;
    case kHostCancel:
      return QMessageBox::Cancel;
    case kHostRetry:
      return QMessageBox::Retry;
    case kHostYes:
      return QMessageBox::Yes;
    case kHostNo:
      return QMessageBox::No;
    default:
      return QMessageBox::NoButton;
  }
}
}  // namespace

HostQtFront::HostQtFront(QObject* parent) : QObject(parent) {}

HostQtFront::~HostQtFront() = default;

void HostQtFront::setMainWindow(QWidget* window) {
  mainWindow_ = window;
}

QWidget* HostQtFront::mainWindow() const {
  return mainWindow_.data();
}

void HostQtFront::setCommandLine(HostQtCommandLine* commandLine) {
  commandLine_ = commandLine;
}

void HostQtFront::setStatusBar(QStatusBar* bar) {
  statusBar_ = bar ? std::make_unique<HostQtStatusBar>(bar) : nullptr;
}

int HostQtFront::showMessageBox(const HostMessageBox& box) {
  QMessageBox dialog(mainWindow_.data());
  dialog.setWindowTitle(plainLines(box.caption));
  dialog.setTextFormat(Qt::PlainText);
  dialog.setText(plainLines(box.text));
  dialog.setIcon(messageIcon(box.icon));

  // The buttons in their usual order; answers() puts the default first.
  HostMessageBox natural = box;
  natural.defaultAnswer = 0;
  const std::vector<int> order = natural.answers();
  const int defaultAnswer = box.answers().front();
  std::vector<std::pair<QAbstractButton*, int>> buttons;
  QAbstractButton* escape = nullptr;
  for (int answer : order) {
    QPushButton* button = dialog.addButton(standardButton(answer));
    buttons.emplace_back(button, answer);
    if (answer == defaultAnswer) dialog.setDefaultButton(button);
    // Escape and the close box choose Cancel where the box has it; a box without Cancel
    // answers No (yes/no) or its only button (OK), which is also what Qt would pick.
    if (answer == kHostCancel || (answer == kHostNo && !escape)) escape = button;
  }
  if (!escape && buttons.size() == 1) escape = buttons.front().first;
  if (escape) dialog.setEscapeButton(escape);

  dialog.exec();
  QAbstractButton* clicked = dialog.clickedButton();
  for (const auto& [button, answer] : buttons)
    if (button == clicked) return answer;
  // Closed without a button (the window went): what Escape would have given.
  for (const auto& [button, answer] : buttons)
    if (button == escape) return answer;
  return kHostCancel;
}

int HostQtFront::showTaskDialog(const HostTaskDialog& dialog) {
  HostQtTaskDialog window(dialog, mainWindow_.data());
  return window.run();
}

void HostQtFront::writeCommandLine(const OdString& text) {
  const QString qtext = toQString(text);
  if (commandLine_) commandLine_->append(qtext);
  if (echo_) {
    const std::string utf8 = text.toUtf8();
    std::fwrite(utf8.data(), 1, utf8.size(), echo_);
    std::fflush(echo_);
  }
  emit commandLineWritten(qtext);
}

bool HostQtFront::showHelpPage(const OdString& page) {
  const QUrl url(toQString(page));
  return url.isValid() && QDesktopServices::openUrl(url);
}

bool HostQtFront::readCommandInput(OdString& line) {
  if (scriptRunning_ || !commandLine_) return false;
  QString typed;
  if (!commandLine_->waitForLine(typed)) return false;
  line = toOdString(typed);
  return true;
}

HostStatusBar* HostQtFront::statusBar() {
  return statusBar_.get();
}

bool HostQtFront::plotToPdf(OdDbDatabase& db, const OdString& path, OdString& error) {
  QString reason;
  if (HostQtDrawingPainter(db).writePdf(toQString(path), reason)) return true;
  error = toOdString(reason);
  return false;
}
