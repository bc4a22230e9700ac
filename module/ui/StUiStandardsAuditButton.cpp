#include "StUiStandardsAuditButton.h"

#include <QMenu>

#include "hostUiBalloonToolTip.h"

namespace stui {

StUiStandardsAuditButton::StUiStandardsAuditButton(QWidget* parent) : QWidget(parent) {}
StUiStandardsAuditButton::~StUiStandardsAuditButton() = default;
QString StUiStandardsAuditButton::tooltipText() const {
  return {};
}
QMenu* StUiStandardsAuditButton::createMenu() {
  return new QMenu;
}
void StUiStandardsAuditButton::runMenuCommand(int) {}
void StUiStandardsAuditButton::checkFinished() {}
void StUiStandardsAuditButton::checkInterrupted() {}
void StUiStandardsAuditButton::newViolation(st::StDWSPlugin*, st::StError*) {}
void StUiStandardsAuditButton::missingStandardsFile() {}
bool StUiStandardsAuditButton::event(QEvent* e) {
  return QWidget::event(e);
}
void StUiStandardsAuditButton::paintEvent(QPaintEvent*) {}
void StUiStandardsAuditButton::mousePressEvent(QMouseEvent*) {}
void StUiStandardsAuditButton::contextMenuEvent(QContextMenuEvent*) {}
void StUiStandardsAuditButton::setState(StUiButtonState::State) {}
void StUiStandardsAuditButton::showBalloon(const QString&, const QString&, const QString&) {}

}  // namespace stui
