#include "HostDrawingView.h"

// Placeholder until the view is built: keeps the library linking.
HostDrawingView::HostDrawingView(HostDocument* doc, QWidget* parent) : QWidget(parent), doc_(doc) {}
HostDrawingView::~HostDrawingView() = default;
void HostDrawingView::paintEvent(QPaintEvent*) {}
void HostDrawingView::resizeEvent(QResizeEvent*) {}
void HostDrawingView::mousePressEvent(QMouseEvent*) {}
void HostDrawingView::mouseMoveEvent(QMouseEvent*) {}
void HostDrawingView::mouseReleaseEvent(QMouseEvent*) {}
void HostDrawingView::mouseDoubleClickEvent(QMouseEvent*) {}
void HostDrawingView::wheelEvent(QWheelEvent*) {}
void HostDrawingView::keyPressEvent(QKeyEvent*) {}
void HostDrawingView::keyReleaseEvent(QKeyEvent*) {}
