#pragma once

#include <QImage>
#include <QString>
#include <QWidget>
#include <memory>
#include <unordered_set>

#include "HostViewRenderer.h"
#include "HostViewScene.h"
#include "HostViewTransform.h"
#include "OdDbObjectId.h"

class HostDocument;
class OdDbDatabase;

// The view of a document's model space: draws it (HostViewRenderer over a HostViewScene),
// follows its database (a reactor refreshes the scene for every append, change and erase and
// asks for one repaint from the event loop), and lets a person move about and select.
//
//   pan            middle drag, or space held and left drag
//   zoom           the wheel, about the point under the cursor
//   zoom extents   double middle click, zoomExtents() (the ZOOM E command)
//   select         left click picks the nearest entity within a few pixels (Shift adds or
//                  removes it); a left drag selects by window: left to right takes what lies
//                  wholly inside, right to left also what crosses it; a click on nothing, or
//                  Escape, clears the selection
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
  const HostViewScene& scene() const { return *scene_; }
  const HostViewTransform& transform() const { return view_; }
  void setTransform(const HostViewTransform& view);

  void setDarkBackground(bool dark);
  bool darkBackground() const { return dark_; }

  // Fits the drawing's extents into the view.
  void zoomExtents();
  // Highlights `ids` (model-space entities; others are ignored), replacing what was
  // highlighted; empty clears it. With `zoom`, fits their extents into the view with a margin.
  // False when none of them is drawn here.
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
  HostDocument* doc_;
  std::unique_ptr<HostViewScene> scene_;
  HostViewRenderer renderer_;
  HostViewRenderer::Stats stats_;
  HostViewTransform view_;
  bool dark_ = true;
  bool fittedOnce_ = false;
  std::unordered_set<std::uint32_t> highlighted_;
};
