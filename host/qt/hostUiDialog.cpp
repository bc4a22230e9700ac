#include "hostUiDialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QTimer>
#include <QWhatsThis>

#include "HostApplication.h"
#include "HostQtFront.h"
#include "HostQtText.h"

namespace {
// The host's main window, when a desktop host runs.
QWidget* hostMainWindow() {
  HostApplication* app = HostApplication::current();
  auto* front = app ? dynamic_cast<HostQtFront*>(&app->front()) : nullptr;
  return front ? front->mainWindow() : nullptr;
}
}  // namespace

hostUiDialog::hostUiDialog(const QString& caption, const QString& helpKey, QWidget* parent)
    : QDialog(parent ? parent : hostMainWindow()), helpKey_(helpKey) {
  setWindowTitle(caption);
  setModal(true);
  // The title bar's "?" enters context-help mode, which reaches help() (see event()).
  setWindowFlag(Qt::WindowContextHelpButtonHint, true);
  // Context-help mode is announced to the application, not to a window.
  qApp->installEventFilter(this);
}

hostUiDialog::~hostUiDialog() = default;

int hostUiDialog::runModal() {
  return exec();
}

QPushButton* hostUiDialog::addHelpButton(QDialogButtonBox* box) {
  QPushButton* button = box->addButton(QDialogButtonBox::Help);
  // The box's helpRequested also fires for this button; one connection is enough.
  connect(box, &QDialogButtonBox::helpRequested, this, &hostUiDialog::help, Qt::UniqueConnection);
  return button;
}

void hostUiDialog::help() {
  HostApplication* app = HostApplication::current();
  if (app && !helpKey_.isEmpty()) app->showHelp(toOdString(helpKey_));
}

bool hostUiDialog::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::QueryWhatsThis:
      event->accept();
      return true;
    case QEvent::EnterWhatsThisMode:
    case QEvent::WhatsThis:
      // A page per dialog says more than a tip per control would.
      event->accept();
      if (QWhatsThis::inWhatsThisMode()) QWhatsThis::leaveWhatsThisMode();
      help();
      return true;
    default:
      return QDialog::event(event);
  }
}

bool hostUiDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::EnterWhatsThisMode && isVisible() &&
      QApplication::activeModalWidget() == this) {
    // Show the page at once rather than asking for a click on a control; after the mode's
    // own start has finished.
    QTimer::singleShot(0, this, [this] {
      if (QWhatsThis::inWhatsThisMode()) QWhatsThis::leaveWhatsThisMode();
      help();
    });
  }
  return QDialog::eventFilter(watched, event);
}

void hostUiDialog::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F1 && event->modifiers() == Qt::NoModifier) {
    event->accept();
    help();
    return;
  }
  QDialog::keyPressEvent(event);
}
