#include "DocumentPage.h"

#include <QPainter>

#include "HostDocument.h"
#include "HostQtDrawingPainter.h"

DocumentPage::DocumentPage(HostDocument* doc, QWidget* parent) : QWidget(parent), doc_(doc) {
  setAutoFillBackground(false);
  setMinimumSize(200, 150);
}

DocumentPage::~DocumentPage() = default;

void DocumentPage::markStale() {
  painter_.reset();
  update();
}

void DocumentPage::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(33, 40, 48));
  if (!doc_ || !doc_->database()) return;
  if (!painter_) painter_ = std::make_unique<HostQtDrawingPainter>(*doc_->database());
  if (painter_->extents().isNull()) {
    painter.setPen(QColor(150, 160, 170));
    painter.drawText(rect(), Qt::AlignCenter, tr("Model space is empty"));
    return;
  }
  painter.setRenderHint(QPainter::Antialiasing);
  painter_->paint(painter, QRectF(rect()).adjusted(16, 16, -16, -16), true);
}
