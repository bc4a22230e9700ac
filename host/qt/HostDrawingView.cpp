#include "HostDrawingView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <vector>

#include "HostDocument.h"
#include "HostViewPicker.h"
#include "OdDbDatabase.h"
#include "OdDbObject.h"
#include "OdRxObjectImpl.h"

namespace {
constexpr double kFitMargin = 16;    // pixels kept free around a fitted drawing
constexpr double kPickPixels = 4;    // how near a click must be to an entity
constexpr int kDragStart = 4;        // pixels a press moves before it is a drag
constexpr double kWheelStep = 1.25;  // zoom of one wheel notch
constexpr double kMinScale = 1e-12;  // pixels per unit: keeps the transform finite
constexpr double kMaxScale = 1e12;
const QColor kLightBackground(255, 255, 255);
const QColor kDarkBackground(33, 40, 48);
}  // namespace

// Collects what the database reports between two turns of the event loop and asks the view,
// once, to apply it: a command changing thousands of entities costs one repaint.
class HostDrawingView::Follower : public OdDbDatabaseReactor {
 public:
  explicit Follower(HostDrawingView* view) : view_(view) {}

  void objectAppended(const OdDbDatabase*, const OdDbObject* o) override { note(o); }
  void objectUnAppended(const OdDbDatabase*, const OdDbObject* o) override { note(o); }
  void objectReAppended(const OdDbDatabase*, const OdDbObject* o) override { note(o); }
  void objectModified(const OdDbDatabase*, const OdDbObject* o) override { note(o); }
  void objectErased(const OdDbDatabase*, const OdDbObject* o, bool) override { note(o); }
  // LTSCALE and the like change how everything is drawn.
  void headerSysVarChanged(const OdDbDatabase*, const OdString&) override {
    tables = true;
    schedule();
  }
  void goodbye(const OdDbDatabase*) override { gone = true; }

  bool pending() const { return tables || !ids.empty(); }

  std::vector<OdDbObjectId> ids;
  std::unordered_set<OdDbObjectId> seen;
  bool tables = false;
  bool gone = false;

 private:
  void note(const OdDbObject* o) {
    if (!o) return;
    const OdDbObjectId id = o->objectId();
    if (seen.insert(id).second) ids.push_back(id);
    schedule();
  }
  void schedule() {
    if (scheduled_) return;
    scheduled_ = true;
    // Dropped with the view if it goes first.
    QMetaObject::invokeMethod(
        view_,
        [this] {
          scheduled_ = false;
          view_->applyChanges();
        },
        Qt::QueuedConnection);
  }

  HostDrawingView* view_;
  bool scheduled_ = false;
};

HostDrawingView::HostDrawingView(HostDocument* doc, QWidget* parent) : QWidget(parent), doc_(doc) {
  setObjectName("DrawingView");
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
  setMinimumSize(200, 150);
  OdDbDatabase* db = doc_ ? doc_->database() : nullptr;
  if (!db) {
    // A document without a drawing shows an empty one rather than nothing at all.
    ownDatabase_ = OdDbDatabase::createEmpty();
    db = ownDatabase_.get();
  }
  scene_ = std::make_unique<HostViewScene>(*db);
  follower_ = OdRxObjectImpl<Follower>::createObject(this);
  db->addReactor(follower_.get());
  database_ = db;
  // At the extents from the start, so the transform means something before the first paint
  // (a plot of a view never shown); refitted once the widget has its size.
  view_ = HostViewTransform::fit(scene_->extents(), QSizeF(size()), kFitMargin);
  atExtents_ = true;
  // Told once the window has connected to the signal.
  QTimer::singleShot(0, this, [this] {
    lastSummary_ = scene_->unsupportedSummary();
    if (!lastSummary_.isEmpty()) emit statusMessage(lastSummary_);
  });
}

HostDrawingView::~HostDrawingView() {
  if (database_ && !follower_->gone) database_->removeReactor(follower_.get());
}

const HostViewScene& HostDrawingView::scene() const {
  sync();
  return *scene_;
}

void HostDrawingView::sync() const {
  if (!follower_->pending() || follower_->gone) return;
  Follower& f = *follower_;
  // Taken before refreshing: a refresh reads objects, which reports nothing, but stay safe.
  std::vector<OdDbObjectId> ids;
  ids.swap(f.ids);
  f.seen.clear();
  const bool tables = f.tables;
  f.tables = false;
  for (const OdDbObjectId& id : ids) scene_->refreshObject(id);
  if (tables) scene_->refreshTables();
  cacheValid_ = false;
}

void HostDrawingView::applyChanges() {
  if (!follower_->pending()) return;
  sync();
  const QString summary = scene_->unsupportedSummary();
  if (summary != lastSummary_) {
    lastSummary_ = summary;
    if (!summary.isEmpty()) emit statusMessage(summary);
  }
  update();
}

void HostDrawingView::invalidate() {
  cacheValid_ = false;
  update();
}

void HostDrawingView::setTransform(const HostViewTransform& view) {
  view_ = view;
  view_.device = QSizeF(size());
  view_.scale = std::clamp(view_.scale, kMinScale, kMaxScale);
  atExtents_ = false;
  invalidate();
}

void HostDrawingView::setDarkBackground(bool dark) {
  if (dark == dark_) return;
  dark_ = dark;
  invalidate();
}

void HostDrawingView::zoomExtents() {
  view_ = HostViewTransform::fit(scene().extents(), QSizeF(size()), kFitMargin);
  atExtents_ = true;
  invalidate();
}

bool HostDrawingView::highlightObjects(const OdDbObjectIdArray& ids, bool zoom) {
  const HostViewScene& s = scene();
  std::unordered_set<std::uint32_t> found;
  HostViewBox box;
  for (const OdDbObjectId& id : ids) {
    const std::int64_t slot = s.entityIndex(id);
    if (slot < 0 || !s.entities()[slot].alive) continue;
    found.insert(static_cast<std::uint32_t>(slot));
    box.add(s.entities()[slot].extents);
  }
  if (found.empty() && !ids.empty()) return false;
  highlighted_ = std::move(found);
  if (zoom && !box.empty()) {
    // A point, or a thing far smaller than the drawing, is shown with some room about it.
    const HostViewBox all = s.extents();
    const double least = std::max(all.width(), all.height()) / 50;
    const double cx = (box.minX + box.maxX) / 2, cy = (box.minY + box.maxY) / 2;
    if (box.width() < least && box.height() < least) {
      box.add(cx - least / 2, cy - least / 2);
      box.add(cx + least / 2, cy + least / 2);
    }
    view_ = HostViewTransform::fit(box, QSizeF(size()), kFitMargin * 3);
    atExtents_ = false;
  }
  invalidate();
  return true;
}

void HostDrawingView::selectionChanged() {
  invalidate();
}

std::unordered_set<std::uint32_t> HostDrawingView::drawnHighlight() const {
  std::unordered_set<std::uint32_t> found = highlighted_;
  if (!doc_) return found;
  for (const OdDbObjectId& id : doc_->selection()) {
    const std::int64_t slot = scene_->entityIndex(id);
    if (slot >= 0) found.insert(static_cast<std::uint32_t>(slot));
  }
  return found;
}

QImage HostDrawingView::render(const QSize& size, bool fitted) const {
  sync();
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  HostViewTransform view = view_;
  if (fitted) {
    view = HostViewTransform::fit(scene_->extents(), QSizeF(size), kFitMargin);
  } else {
    view.device = QSizeF(size);
  }
  QPainter painter(&image);
  paint(painter, view);
  return image;
}

HostViewRenderer::Stats HostDrawingView::paint(QPainter& painter,
                                               const HostViewTransform& view) const {
  const std::unordered_set<std::uint32_t> lit = drawnHighlight();
  HostViewRenderer::Options o;
  o.background = dark_ ? kDarkBackground : kLightBackground;
  o.highlight = dark_ ? QColor(80, 160, 255) : QColor(0, 100, 230);
  o.highlighted = &lit;
  return renderer_.paint(painter, *scene_, view, o);
}

void HostDrawingView::renderCache() {
  const qreal ratio = devicePixelRatioF();
  const QSize pixels = (QSizeF(size()) * ratio).toSize();
  if (cache_.size() != pixels) cache_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
  cache_.setDevicePixelRatio(ratio);
  QPainter painter(&cache_);
  stats_ = paint(painter, view_);
  cacheValid_ = true;
}

void HostDrawingView::paintEvent(QPaintEvent*) {
  sync();
  if (!cacheValid_ || cache_.size() != (QSizeF(size()) * devicePixelRatioF()).toSize())
    renderCache();
  QPainter painter(this);
  painter.drawImage(QPoint(0, 0), cache_);
  if (drag_ == Drag::kWindow) {
    // Left to right takes what lies inside (solid, blue); right to left what crosses (dashed,
    // green), as drafters know them.
    const bool crossing = lastPos_.x() < pressPos_.x();
    const QColor edge = crossing ? QColor(60, 200, 90) : QColor(70, 140, 255);
    QColor fill = edge;
    fill.setAlpha(40);
    QPen pen(dark_ ? edge.lighter(130) : edge.darker(120));
    pen.setStyle(crossing ? Qt::DashLine : Qt::SolidLine);
    painter.setPen(pen);
    painter.setBrush(fill);
    painter.drawRect(QRect(pressPos_, lastPos_).normalized());
  }
}

void HostDrawingView::resizeEvent(QResizeEvent*) {
  view_.device = QSizeF(size());
  if (atExtents_) view_ = HostViewTransform::fit(scene().extents(), QSizeF(size()), kFitMargin);
  cacheValid_ = false;
}

void HostDrawingView::changeScale(double factor, const QPointF& about) {
  const HostViewVec fixed = view_.toDrawing(about);
  view_.scale = std::clamp(view_.scale * factor, kMinScale, kMaxScale);
  // The drawing point under `about` stays under it.
  view_.centre.x = fixed.x - (about.x() - view_.device.width() / 2) / view_.scale;
  view_.centre.y = fixed.y + (about.y() - view_.device.height() / 2) / view_.scale;
  atExtents_ = false;
  invalidate();
}

void HostDrawingView::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / 120.0;
  if (notches == 0) return;
  changeScale(std::pow(kWheelStep, notches), event->position());
  event->accept();
}

void HostDrawingView::mousePressEvent(QMouseEvent* event) {
  if (drag_ != Drag::kNone) return;
  pressPos_ = lastPos_ = event->position().toPoint();
  dragButton_ = event->button();
  if (event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && spaceDown_)) {
    drag_ = Drag::kPan;
    setCursor(Qt::ClosedHandCursor);
  } else if (event->button() == Qt::LeftButton) {
    drag_ = Drag::kPending;
  }
}

void HostDrawingView::mouseMoveEvent(QMouseEvent* event) {
  const QPoint pos = event->position().toPoint();
  const HostViewVec at = view_.toDrawing(event->position());
  emit cursorMoved(at.x, at.y);
  if (drag_ == Drag::kPan) {
    const QPoint delta = pos - lastPos_;
    view_.centre.x -= delta.x() / view_.scale;
    view_.centre.y += delta.y() / view_.scale;
    atExtents_ = false;
    lastPos_ = pos;
    invalidate();
    return;
  }
  if (drag_ == Drag::kPending && (pos - pressPos_).manhattanLength() >= kDragStart)
    drag_ = Drag::kWindow;
  if (drag_ == Drag::kWindow) {
    lastPos_ = pos;
    update();  // the band only: the cache stays
  }
}

void HostDrawingView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != dragButton_) return;
  const Drag drag = drag_;
  drag_ = Drag::kNone;
  dragButton_ = Qt::NoButton;
  unsetCursor();
  const bool toggle = event->modifiers() & Qt::ShiftModifier;
  const HostViewPicker picker(scene());
  if (drag == Drag::kPending) {
    const std::int64_t slot = picker.pick(view_.toDrawing(event->position()), pixels(kPickPixels));
    if (slot >= 0)
      editSelection({static_cast<std::uint32_t>(slot)}, toggle);
    else if (!toggle)
      editSelection({}, false);
  } else if (drag == Drag::kWindow) {
    lastPos_ = event->position().toPoint();
    const HostViewVec a = view_.toDrawing(pressPos_), b = view_.toDrawing(lastPos_);
    HostViewBox window;
    window.add(a.x, a.y);
    window.add(b.x, b.y);
    const bool crossing = lastPos_.x() < pressPos_.x();
    editSelection(picker.select(window, crossing, pixels(0.5)), toggle);
  }
}

void HostDrawingView::editSelection(const std::vector<std::uint32_t>& found, bool toggle) {
  if (!doc_) return;
  OdDbObjectIdArray& selection = doc_->selection();
  const auto& entities = scene_->entities();
  if (!toggle) selection.clear();
  for (std::uint32_t slot : found) {
    const OdDbObjectId id = entities[slot].id;
    if (toggle && selection.remove(id)) continue;
    selection.push_back(id);
  }
  highlighted_.clear();
  invalidate();
  emit selectionEdited();
}

void HostDrawingView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::MiddleButton) {
    drag_ = Drag::kNone;
    unsetCursor();
    zoomExtents();
    return;
  }
  mousePressEvent(event);  // a quick second left click picks again
}

void HostDrawingView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space) {
    spaceDown_ = true;
    return;
  }
  if (event->key() == Qt::Key_Escape) {
    drag_ = Drag::kNone;
    if (doc_ && !doc_->selection().empty()) doc_->selection().clear();
    highlighted_.clear();
    invalidate();
    emit selectionEdited();
    return;
  }
  // Anything else is for whoever holds the view (typing goes to the command line).
  event->ignore();
}

void HostDrawingView::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
    spaceDown_ = false;
    return;
  }
  event->ignore();
}
