#pragma once

#include <QDockWidget>

#include "LayersPanel.h"

class HostApplication;

// The layers panel in a dock titled "Layers", for a main window to add where it likes. The
// panel follows the host's current document and reads it afresh after every command by
// itself, so the window has nothing more to tell it. The dock is owned by `parent`; `app`
// must outlive it.
inline QDockWidget* makeLayersDock(HostApplication& app, QWidget* parent) {
  auto* dock = new QDockWidget(QDockWidget::tr("Layers"), parent);
  dock->setObjectName("LayersDock");
  dock->setWidget(new LayersPanel(app, dock));
  return dock;
}
