#pragma once

#include <QBasicTimer>
#include <QFont>
#include <QIcon>
#include <QMetaObject>
#include <QPointer>
#include <QRegion>
#include <QString>
#include <QWidget>

class QPainter;
class QPropertyAnimation;

// A balloon: a small pop-up with a bold title, a text, an icon at the left, an optional link
// line under the text and an optional close box, in a body with rounded corners whose pointer
// points at an anchor on the screen (placed above or below the anchor, left or right of it,
// whichever keeps it on the screen). It is shown without taking the focus from the window the
// user works in, and carries its title as its window title.
//
// It closes after its time-out, on the close box, on a press on the link line (after telling
// linkActivated), on a release of the left button elsewhere in it when it shows a link (after
// handing the link to the desktop when the link names a URL or an existing file), on a close
// request to its window, and when its owner is destroyed; once closed it tells closed() and,
// with kDeleteSelf, deletes itself from the event loop. A balloon can be shown again after it
// closed (without kDeleteSelf); showing it while shown replaces what it shows (the replaced
// balloon tells closed() but is not deleted). Unless kNoHideAnimation, closing fades the window
// out first and closed() comes once it is hidden; a close request hides it at once. Deleting a
// balloon while it shows is safe.
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

  // The icon drawn at the left of the title, 16 × 16 pixels; the style's information icon by
  // default, none after setIcon(QIcon()). Takes effect at the next showBalloon.
  void setIcon(const QIcon& icon);

  // Shows `title` and `content` (which may hold line breaks, "\r\n" counting as one) with its
  // pointer's tip at `anchor` (global coordinates). `owner` (not owned, may be null) is the
  // window the balloon belongs to; `link` empty shows no link line; `timeoutMs` 0 means no
  // time-out. When the platform does not animate tooltips, kNoShowAnimation and
  // kNoHideAnimation are added to `options`.
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
  QWidget* owner() const { return owner_; }
  // True from showBalloon until the balloon closes (a fading-out balloon is closed already).
  bool isShowingBalloon() const { return state_ == State::kShown; }
  // The link line and the close box in the balloon's own coordinates; empty when not shown or
  // not asked for.
  QRect linkRect() const { return linkRect_; }
  QRect closeBoxRect() const;
  // The pixel of the pointer's tip in the balloon's own coordinates; it maps to anchor().
  QPoint tipPoint() const { return tip_; }
  // True while the time-out runs.
  bool timerRunning() const { return timer_.isActive(); }

 signals:
  // The link line was pressed; the balloon closes after this.
  void linkActivated();
  // The balloon closed (time-out, close box, link, close request, owner gone or closeBalloon).
  void closed();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  enum class State { kHidden, kShown, kFadingOut };

  // Sizes the balloon for its texts, places it on the anchor's screen and sets its shape.
  void layOut();
  // The region of the body with its pointer for a balloon of `size` (body `bodyTop` pixels
  // from the top, `bodyHeight` high); the pointer ends in the pixel tip_.
  QRegion shape(QSize size, int bodyTop, int bodyHeight) const;
  // Starts closing: at once, or by fading out when `animate` and the options allow it.
  void beginClose(bool animate);
  // Hides the window and tells closed(); deletes later with kDeleteSelf unless `replacing`.
  void finishClose(bool replacing);
  void stopAnimations();
  void openLink() const;
  void setCloseBox(bool hot, bool pressed);
  void drawCloseBox(QPainter& painter) const;

  QString title_;
  QString content_;
  QString link_;
  QPoint anchor_;
  QPointer<QWidget> owner_;
  QMetaObject::Connection ownerGone_;
  unsigned options_ = 0;
  int timeoutMs_ = 0;
  QIcon icon_;
  QFont titleFont_;
  QFont linkFont_;
  QRect iconRect_;
  QRect titleRect_;
  QRect contentRect_;
  QRect linkRect_;
  QRect closeRect_;
  QPoint tip_;
  QRegion border_;  // the one-pixel rim of the shape, drawn in the border colour
  QBasicTimer timer_;
  QPropertyAnimation* fadeIn_ = nullptr;   // owned as a child
  QPropertyAnimation* fadeOut_ = nullptr;  // owned as a child
  State state_ = State::kHidden;
  bool closePressed_ = false;
  bool closeHot_ = false;
};
