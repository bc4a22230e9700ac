#pragma once

#include <QImage>
#include <QPoint>
#include <QString>
#include <QWidget>
#include <memory>
#include <unordered_set>
#include <vector>

#include "HostViewRenderer.h"
#include "HostViewScene.h"
#include "HostViewTransform.h"
#include "OdDbDatabase.h"
#include "OdDbDatabaseReactor.h"
#include "OdDbObjectId.h"

class HostDocument;

// The view of a document's model space: draws it (HostViewRenderer over a HostViewScene),
// follows its database (a reactor refreshes the scene for every append, change and erase and
// asks for one repaint from the event loop), and lets a person move about and select.
//
//   pan            middle drag, or space held and left drag
//   zoom           the wheel, about the point under the cursor
//   zoom extents   double middle click, zoomExtents() (the ZOOM E command)
//   select         left click picks the nearest entity within a few pixels (Shift adds or
//                  removes it); a left drag selects by window: left to right takes what lies
//                  wholly inside, right to left also what crosses it (with Shift, each one
//                  found is added or removed); a click on nothing, or Escape, clears the
//                  selection
//
// The selection is the document's own (HostDocument::selection()), so the commands that work on
// a selection see the same one. The view never writes the database.
class HostDrawingView : public QWidget {
  Q_OBJECT

 public:
  // `doc` is not owned and must outlive the view (the window removes the view first).
  explicit HostDrawingView(HostDocument* doc, QWidget* parent = nullptr);
  ~HostDrawingView() override;

  HostDocument* document() const { return doc_; }
  // The scene, brought up to date with the changes the database reported so far.
  const HostViewScene& scene() const;
  const HostViewTransform& transform() const { return view_; }
  // Looks where `view` looks; its device becomes the widget's size.
  void setTransform(const HostViewTransform& view);

  void setDarkBackground(bool dark);
  bool darkBackground() const { return dark_; }

  // Fits the drawing's extents into the view.
  void zoomExtents();
  // Highlights `ids` (model-space entities; others are ignored), replacing what was
  // highlighted; empty clears it (and answers true). With `zoom`, fits their extents into the
  // view with a margin. False when none of them is drawn here. The selection is drawn
  // highlighted as well; a person's change of the selection, or Escape, ends this highlight.
  bool highlightObjects(const OdDbObjectIdArray& ids, bool zoom);

  // The selection changed outside the view (a command): redraw its highlight.
  void selectionChanged();

  // The model space as this view would draw it at `size` (the current transform when `fitted`
  // is false, else the extents fitted), for screenshots, tests and benchmarks.
  QImage render(const QSize& size, bool fitted) const;
  // The last paint's figures.
  const HostViewRenderer::Stats& lastStats() const { return stats_; }

 signals:
  // The drawing point under the cursor moved.
  void cursorMoved(double x, double y);
  // The person changed the selection in the view.
  void selectionEdited();
  // A one-line message for the status bar (what could not be drawn).
  void statusMessage(const QString& text);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  // Implementation's own; see the .cpp.
  class Follower;
  enum class Drag { kNone, kPending, kPan, kWindow };
  // Applies the changes the follower collected to the scene (logically const: what is shown
  // is the database's state either way).
  void sync() const;
  void applyChanges();
  void invalidate();
  void renderCache();
  void changeScale(double factor, const QPointF& about);
  void editSelection(const std::vector<std::uint32_t>& found, bool toggle);
  std::unordered_set<std::uint32_t> drawnHighlight() const;
  // Draws the scene through `view` with the highlight and the selection lit.
  HostViewRenderer::Stats paint(QPainter& painter, const HostViewTransform& view) const;
  // Drawing units a few pixels span at the current scale.
  double pixels(double n) const { return n / view_.scale; }

  HostDocument* doc_;
  OdDbDatabasePtr ownDatabase_;  // an empty drawing, for a document without one
  OdDbDatabase* database_ = nullptr;
  OdSmartPtr<Follower> follower_;
  mutable HostViewRenderer renderer_;
  std::unique_ptr<HostViewScene> scene_;
  HostViewRenderer::Stats stats_;
  HostViewTransform view_;
  bool dark_ = true;
  bool atExtents_ = false;  // refitted when the widget is resized
  std::unordered_set<std::uint32_t> highlighted_;
  QImage cache_;
  mutable bool cacheValid_ = false;
  QString lastSummary_;
  Drag drag_ = Drag::kNone;
  Qt::MouseButton dragButton_ = Qt::NoButton;
  QPoint pressPos_, lastPos_;
  bool spaceDown_ = false;
};
