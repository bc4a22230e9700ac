#include "DesktopScript.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <filesystem>
#include <system_error>

#include "HostApplication.h"
#include "HostQtFront.h"

DesktopScript::DesktopScript(HostApplication& app, HostQtFront& front, QObject* parent)
    : QObject(parent), app_(app), front_(front) {}

bool DesktopScript::load(const QString& path, QString& error) {
  // A device or a FIFO could block or never end; a script is a text file of modest size.
  const QFileInfo info(path);
  std::error_code ec;
  const std::filesystem::path native(QFile::encodeName(path).toStdString());
  if (std::filesystem::exists(native, ec) && !std::filesystem::is_regular_file(native, ec)) {
    error = QString("cannot read script %1: it is not a regular file").arg(path);
    return false;
  }
  if (info.size() > kMaxBytes) {
    error = QString("cannot read script %1: larger than %2 MB").arg(path).arg(kMaxBytes >> 20);
    return false;
  }
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    error = QString("cannot read script %1: %2").arg(path, file.errorString());
    return false;
  }
  path_ = path;
  lines_ = QString::fromUtf8(file.readAll()).split('\n');
  next_ = 0;
  return true;
}

void DesktopScript::start() {
  running_ = true;
  front_.setScriptRunning(true);
  QTimer::singleShot(0, this, &DesktopScript::step);
}

void DesktopScript::step() {
  // A line at a time from the event loop, so that the window shows each step.
  while (next_ < lines_.size()) {
    QString line = lines_[next_++];
    line.remove('\r');
    const QString trimmed = line.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(';')) continue;
    app_.sendCommand(OdString::fromUtf8((line + '\n').toStdString()));
    if (!running_) return;
    QTimer::singleShot(0, this, &DesktopScript::step);
    return;
  }
  OdString rest = app_.commandLine().pendingInput();
  rest.trimLeft().trimRight();
  if (!rest.isEmpty()) {
    app_.cmdPrintf(L"script %s left unused input: %ls\n", path_.toStdString().c_str(),
                   rest.c_str());
    app_.commandLine().clearPendingInput();
  }
  running_ = false;
  front_.setScriptRunning(false);
  emit finished();
}
