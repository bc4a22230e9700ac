#pragma once

#include <QWidget>
#include <memory>

class HostDocument;
class HostQtDrawingPainter;

// The page of one open document in the desktop host's tabs: the drawing's model space drawn
// to fit the page on a dark background. Rebuilt from the database, lazily, after each change
// (markStale).
class DocumentPage : public QWidget {
  Q_OBJECT

 public:
  // `doc` is not owned; the window removes the page before the document goes.
  explicit DocumentPage(HostDocument* doc, QWidget* parent = nullptr);
  ~DocumentPage() override;

  HostDocument* document() const { return doc_; }
  // The drawing may have changed: draw it again from the database.
  void markStale();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  HostDocument* doc_;
  std::unique_ptr<HostQtDrawingPainter> painter_;
};
