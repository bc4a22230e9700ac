#pragma once

#include "OdString.h"

// The status bar of a host's main window, in which a loaded module may show a widget of its
// own (a button that tells the state of the current drawing, say).
//
// The widgets are the window system's, so this interface only names the bar; a front with a
// window system derives from it and takes its own widget type (the Qt front:
// HostQtStatusBar). A module asks HostApplication::statusBar() and casts to the front it was
// built for; a host without a screen has no status bar and answers null.
class HostStatusBar {
 public:
  virtual ~HostStatusBar() = default;
  // The name of the window system ("qt"), so that a module can tell whether it can place its
  // widgets here before it casts.
  virtual OdString toolkit() const = 0;
  // How many widgets modules have placed.
  virtual int moduleWidgetCount() const = 0;
};
