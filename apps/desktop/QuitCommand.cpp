#include "QuitCommand.h"

#include <QMetaObject>

#include "DesktopWindow.h"
#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "HostQtFront.h"

bool QuitCommand::execute() {
  DesktopWindow* window = DesktopWindow::instance();
  if (!window) return false;
  auto* front = dynamic_cast<HostQtFront*>(&HostApplication::running().front());
  if (front && front->scriptRunning()) {
    window->quitWithoutAsking();
    return true;
  }
  // Closed once this command has ended, so that the question is asked with no command running.
  QMetaObject::invokeMethod(window, &QWidget::close, Qt::QueuedConnection);
  return true;
}

void QuitCommand::registerIn(HostCommandRegistry& registry) {
  registry.add(L"QUIT", L"DESKTOP", kHostCmdModal, &createCommand<QuitCommand>);
}
