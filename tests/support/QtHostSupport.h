#pragma once

// What the Qt front's tests share: a real host application over the Qt front with its
// configuration in a temporary folder, and a way to act on a modal window once it shows.

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

#include "HostApplication.h"
#include "HostQtFront.h"
#include "TestSupport.h"

namespace qthosttest {

// A host application over the Qt front; one per test function (one runs at a time).
struct QtHost {
  testsupport::TempDir dir;
  HostQtFront front;
  HostApplication app{front, HostApplication::Options{dir.path() / "config.json", false}};
};

// The visible top-level window titled `title`, or null.
inline QWidget* shownWindow(const QString& title) {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (w->isVisible() && w->windowTitle() == title) return w;
  return nullptr;
}

// Once a window titled `title` shows (within about five seconds), runs `act` on it from the
// event loop, as a person would act on a modal window; gives up quietly otherwise, so that
// the test sees the window still open and fails on its answer.
inline void whenShown(const QString& title, std::function<void(QWidget*)> act,
                      int triesLeft = 250) {
  QTimer::singleShot(20, [title, act = std::move(act), triesLeft]() mutable {
    if (QWidget* w = shownWindow(title)) {
      act(w);
    } else if (triesLeft > 0) {
      whenShown(title, std::move(act), triesLeft - 1);
    } else {
      // Nobody else will close it: close whatever modal window is up so the test ends.
      if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
    }
  });
}

}  // namespace qthosttest
