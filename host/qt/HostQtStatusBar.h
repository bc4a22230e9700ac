#pragma once

#include <QPointer>
#include <QStatusBar>
#include <vector>

#include "HostStatusBar.h"

class QWidget;

// The desktop host's status bar as modules see it: a module places its own widget there (a
// button, say) and takes it back before it unloads.
class HostQtStatusBar : public HostStatusBar {
 public:
  // `bar` is the main window's (not owned).
  explicit HostQtStatusBar(QStatusBar* bar) : bar_(bar) {}

  // Places `widget` at the right end of the bar, after the widgets placed before it; the bar
  // takes it as a child (it goes with the bar unless removed first). False when the bar is
  // gone or the widget is null or placed already.
  bool addModuleWidget(QWidget* widget);
  // Takes a placed widget out of the bar (unparented, hidden; the caller owns it again).
  // False when it was not placed.
  bool removeModuleWidget(QWidget* widget);
  QStatusBar* bar() const { return bar_; }

  // HostStatusBar
  OdString toolkit() const override { return L"qt"; }
  int moduleWidgetCount() const override;

 private:
  QPointer<QStatusBar> bar_;
  std::vector<QPointer<QWidget>> widgets_;
};
