#include "HostQtStatusBar.h"

#include <QWidget>
#include <algorithm>

bool HostQtStatusBar::addModuleWidget(QWidget* widget) {
  if (!bar_ || !widget) return false;
  std::erase_if(widgets_, [](const QPointer<QWidget>& w) { return w.isNull(); });
  if (std::find(widgets_.begin(), widgets_.end(), widget) != widgets_.end()) return false;
  // Permanent widgets sit at the right end and are not hidden by temporary messages.
  bar_->addPermanentWidget(widget);
  widget->show();
  widgets_.emplace_back(widget);
  return true;
}

bool HostQtStatusBar::removeModuleWidget(QWidget* widget) {
  auto found = std::find(widgets_.begin(), widgets_.end(), widget);
  if (!widget || found == widgets_.end()) return false;
  widgets_.erase(found);
  if (bar_) bar_->removeWidget(widget);
  widget->hide();
  widget->setParent(nullptr);
  return true;
}

int HostQtStatusBar::moduleWidgetCount() const {
  return static_cast<int>(
      std::count_if(widgets_.begin(), widgets_.end(), [](const auto& w) { return !w.isNull(); }));
}
