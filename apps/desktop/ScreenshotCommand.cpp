#include "ScreenshotCommand.h"

#include <QApplication>
#include <QBuffer>
#include <QPixmap>
#include <exception>
#include <filesystem>
#include <string_view>

#include "DesktopWindow.h"
#include "HostApplication.h"
#include "HostCommandRegistry.h"
#include "OdAtomicFile.h"

bool ScreenshotCommand::execute() {
  HostApplication& app = HostApplication::running();
  OdString path;
  if (!app.getString(L"Picture file (.png): ", path)) return false;
  DesktopWindow* window = DesktopWindow::instance();
  if (!window) return false;
  // What a command just changed is drawn before the picture is taken.
  QApplication::processEvents();
  const QPixmap picture = window->grab();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "PNG");
  try {
    // Through the kernel's writer: whole or not at all, and never through a link.
    OdAtomicFile file{std::filesystem::path(path.toUtf8())};
    file.write(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    file.commit();
  } catch (const std::exception& e) {  // OdError names the file and the reason
    app.cmdPrintf(L"SCREENSHOT: %ls\n", OdString::fromUtf8(e.what()).c_str());
    return false;
  }
  app.cmdPrintf(L"SCREENSHOT: wrote %ls (%dx%d)\n", path.c_str(), picture.width(),
                picture.height());
  return true;
}

void ScreenshotCommand::registerIn(HostCommandRegistry& registry) {
  registry.add(L"SCREENSHOT", L"DESKTOP", kHostCmdModal, &createCommand<ScreenshotCommand>);
}
