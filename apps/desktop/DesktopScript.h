#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class HostApplication;
class HostQtFront;

// Feeds a command script to the desktop host's command line after start-up, as a drafter's
// script runs: one line at a time, each line submitted as typed (with its line break), the
// window kept live between lines. Lines whose first non-blank character is ';' are comments.
// While it runs nobody is asked for command input, so a command missing a word cancels
// instead of waiting. Words left without a command to take them at the end are dropped with a
// note. A script that ends the program (QUIT) stops it.
class DesktopScript : public QObject {
  Q_OBJECT

 public:
  // `app` and `front` are not owned and must outlive the script.
  DesktopScript(HostApplication& app, HostQtFront& front, QObject* parent = nullptr);

  static constexpr qint64 kMaxBytes = 16 << 20;

  // Reads the script (UTF-8); false with `error` set ("cannot read script FILE: reason") when
  // it cannot be read, is not a regular file or is larger than kMaxBytes.
  bool load(const QString& path, QString& error);
  // Starts feeding lines from the event loop.
  void start();
  bool isRunning() const { return running_; }

 signals:
  void finished();

 private:
  void step();

  HostApplication& app_;
  HostQtFront& front_;
  QString path_;
  QStringList lines_;
  int next_ = 0;
  bool running_ = false;
};
