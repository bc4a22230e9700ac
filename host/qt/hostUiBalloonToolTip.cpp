#include "hostUiBalloonToolTip.h"

hostUiBalloonToolTip::hostUiBalloonToolTip() : QWidget(nullptr) {}
hostUiBalloonToolTip::~hostUiBalloonToolTip() = default;
void hostUiBalloonToolTip::setIcon(const QIcon& icon) {
  icon_ = icon;
}
void hostUiBalloonToolTip::showBalloon(const QString&, const QString&, const QPoint&, QWidget*,
                                       unsigned, const QString&, int) {}
void hostUiBalloonToolTip::closeBalloon() {}
QRect hostUiBalloonToolTip::closeBoxRect() const {
  return {};
}
void hostUiBalloonToolTip::paintEvent(QPaintEvent*) {}
void hostUiBalloonToolTip::mousePressEvent(QMouseEvent*) {}
void hostUiBalloonToolTip::mouseMoveEvent(QMouseEvent*) {}
void hostUiBalloonToolTip::mouseReleaseEvent(QMouseEvent*) {}
void hostUiBalloonToolTip::timerEvent(QTimerEvent*) {}
void hostUiBalloonToolTip::closeEvent(QCloseEvent*) {}
