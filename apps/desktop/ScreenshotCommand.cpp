#include "ScreenshotCommand.h"

#include <QApplication>
#include <QPixmap>
#include <QSaveFile>

#include "DesktopWindow.h"
#include "HostApplication.h"
#include "HostCommandRegistry.h"

bool ScreenshotCommand::execute() {
  HostApplication& app = HostApplication::running();
  OdString path;
  if (!app.getString(L"Picture file (.png): ", path)) return false;
  DesktopWindow* window = DesktopWindow::instance();
  if (!window) return false;
  // What a command just changed is drawn before the picture is taken.
  QApplication::processEvents();
  const QPixmap picture = window->grab();
  const QString name = QString::fromStdString(path.toUtf8());
  QSaveFile file(name);
  if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.commit()) {
    app.cmdPrintf(L"SCREENSHOT: cannot write %ls: %s\n", path.c_str(),
                  file.errorString().toStdString().c_str());
    return false;
  }
  app.cmdPrintf(L"SCREENSHOT: wrote %ls (%dx%d)\n", path.c_str(), picture.width(),
                picture.height());
  return true;
}

void ScreenshotCommand::registerIn(HostCommandRegistry& registry) {
  registry.add(L"SCREENSHOT", L"DESKTOP", kHostCmdModal, &createCommand<ScreenshotCommand>);
}
