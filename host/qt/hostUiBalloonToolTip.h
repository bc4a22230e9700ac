#pragma once

#include <QBasicTimer>
#include <QIcon>
#include <QPointer>
#include <QString>
#include <QWidget>

// A balloon: a small pop-up with a bold title, a text, an icon at the left, an optional link
// line under the text and an optional close box, in a body with rounded corners whose pointer
// points at an anchor on the screen (placed above or below the anchor, left or right of it,
// whichever keeps it on the screen). It is shown without taking the focus from the window the
// user works in, and carries its title as its window title.
//
// It closes after its time-out, on the close box, on a press on the link line (after telling
// linkActivated) and on a close request to its window; once closed it tells closed() and, with
// kDeleteSelf, deletes itself from the event loop. A balloon can be shown again after it
// closed (without kDeleteSelf); showing it while shown replaces what it shows.
class hostUiBalloonToolTip : public QWidget {
  Q_OBJECT

 public:
  // The option flags of showBalloon.
  enum Option : unsigned {
    kNoAutoClose = 0x0100,  // no time-out: showing starts no timer
    kDeleteSelf = 0x0200,   // the balloon deletes itself once closed
    kCloseButton = 0x0400,  // a close box in the top-right corner
    kTopMost = 0x1000,      // stays above other windows
    kNoShadow = 0x2000,     // no drop shadow
    kNoShowAnimation = 0x4000,
    kNoHideAnimation = 0x8000,
  };

  // The balloon has no parent: its owner is given to showBalloon.
  hostUiBalloonToolTip();
  ~hostUiBalloonToolTip() override;

  // The icon drawn at the left of the title, 16 × 16 pixels; none by default.
  void setIcon(const QIcon& icon);

  // Shows `title` and `content` (which may hold line breaks) with its pointer at `anchor`
  // (global coordinates). `owner` (not owned, may be null) is the window the balloon belongs
  // to; `link` empty shows no link line; `timeoutMs` 0 means no time-out. When the platform
  // does not animate tooltips, kNoShowAnimation and kNoHideAnimation are added to `options`.
  void showBalloon(const QString& title, const QString& content, const QPoint& anchor,
                   QWidget* owner, unsigned options, const QString& link = QString(),
                   int timeoutMs = 0);
  // Closes the balloon as its time-out does; nothing when it is not shown.
  void closeBalloon();

  unsigned options() const { return options_; }
  const QString& title() const { return title_; }
  const QString& content() const { return content_; }
  const QString& linkText() const { return link_; }
  QPoint anchor() const { return anchor_; }
  // The link line and the close box in the balloon's own coordinates; empty when not shown.
  QRect linkRect() const { return linkRect_; }
  QRect closeBoxRect() const;
  // True while the time-out runs.
  bool timerRunning() const { return timer_.isActive(); }

 signals:
  // The link line was pressed; the balloon closes after this.
  void linkActivated();
  // The balloon closed (time-out, close box, link, close request or closeBalloon).
  void closed();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QString title_;
  QString content_;
  QString link_;
  QPoint anchor_;
  QPointer<QWidget> owner_;
  unsigned options_ = 0;
  int timeoutMs_ = 0;
  QIcon icon_;
  QRect linkRect_;
  QBasicTimer timer_;
  bool closePressed_ = false;
  bool closeHot_ = false;
  bool shown_ = false;
};
