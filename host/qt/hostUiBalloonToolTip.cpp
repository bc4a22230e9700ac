#include "hostUiBalloonToolTip.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPropertyAnimation>
#include <QScreen>
#include <QStyle>
#include <QTimerEvent>
#include <QUrl>
#include <algorithm>
#include <cmath>

namespace {
constexpr int kPointer = 20;      // how far the pointer reaches out of the body
constexpr int kPointerBase = 20;  // the pointer's width where it leaves the body
constexpr int kCorner = 24;       // the corners are quarters of an ellipse this wide and high
constexpr int kMarginX = 10;
constexpr int kMarginTop = 8;
constexpr int kMarginBottom = 10;
constexpr int kSpacing = 6;  // between the title row, the text and the link line
constexpr int kIconSize = 16;
constexpr int kIconGap = 6;
constexpr int kCloseInset = 5;  // the close box keeps clear of the rounded corner
constexpr int kMaxTextWidth = 400;
constexpr int kMinBodyWidth = 120;  // room for two corners and the pointer's base
constexpr int kTipInset = 24;       // the tip's preferred distance from the body's left edge
constexpr int kFadeMs = 200;

// Host texts may end lines with "\r\n"; each such pair is one line break.
QString displayText(const QString& text) {
  QString out = text;
  out.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  out.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return out;
}

constexpr int kContentFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
}  // namespace

hostUiBalloonToolTip::hostUiBalloonToolTip()
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus) {
  // A balloon informs; it must not take the keyboard from the window the user types in, nor
  // keep the application running once the real windows are closed.
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_QuitOnClose, false);
  setFocusPolicy(Qt::NoFocus);
  setMouseTracking(true);  // the close box lights up and the cursor changes without a press
  icon_ = style()->standardIcon(QStyle::SP_MessageBoxInformation, nullptr, this);

  fadeIn_ = new QPropertyAnimation(this, "windowOpacity", this);
  fadeIn_->setDuration(kFadeMs);
  fadeIn_->setStartValue(0.0);
  fadeIn_->setEndValue(1.0);
  fadeOut_ = new QPropertyAnimation(this, "windowOpacity", this);
  fadeOut_->setDuration(kFadeMs);
  fadeOut_->setEndValue(0.0);
  connect(fadeOut_, &QAbstractAnimation::finished, this, [this] {
    if (state_ == State::kFadingOut) finishClose(false);
  });
}

hostUiBalloonToolTip::~hostUiBalloonToolTip() {
  // Nothing may animate or time out a window that is going away.
  stopAnimations();
  timer_.stop();
}

void hostUiBalloonToolTip::setIcon(const QIcon& icon) {
  icon_ = icon;
}

void hostUiBalloonToolTip::showBalloon(const QString& title, const QString& content,
                                       const QPoint& anchor, QWidget* owner, unsigned options,
                                       const QString& link, int timeoutMs) {
  if (state_ != State::kHidden) {
    QPointer<hostUiBalloonToolTip> self(this);
    finishClose(true);
    if (!self) return;  // a listener of closed() deleted the balloon
  }
  title_ = title;
  content_ = content;
  anchor_ = anchor;
  link_ = link;
  timeoutMs_ = std::max(timeoutMs, 0);
  if (!QApplication::isEffectEnabled(Qt::UI_AnimateTooltip) ||
      !QApplication::isEffectEnabled(Qt::UI_FadeTooltip))
    options |= kNoShowAnimation | kNoHideAnimation;
  options_ = options;

  disconnect(ownerGone_);
  owner_ = owner;
  // A balloon about a window that is gone has nothing left to point at.
  if (owner) ownerGone_ = connect(owner, &QObject::destroyed, this, [this] { beginClose(false); });

  Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus;
  if (options_ & kTopMost) flags |= Qt::WindowStaysOnTopHint;
  if (options_ & kNoShadow) flags |= Qt::NoDropShadowWindowHint;
  if (windowFlags() != flags) setWindowFlags(flags);
  setWindowTitle(title_);
  setCursor(Qt::ArrowCursor);
  closePressed_ = closeHot_ = false;
  layOut();

  state_ = State::kShown;
  const bool fade = !(options_ & kNoShowAnimation);
  setWindowOpacity(fade ? 0.0 : 1.0);
  show();
  if (fade) fadeIn_->start();
  if (!(options_ & kNoAutoClose)) {
    if (timeoutMs_ > 0)
      timer_.start(timeoutMs_, this);
    else
      timer_.stop();
  }
  update();
}

void hostUiBalloonToolTip::closeBalloon() {
  beginClose(true);
}

QRect hostUiBalloonToolTip::closeBoxRect() const {
  return closeRect_;
}

void hostUiBalloonToolTip::layOut() {
  titleFont_ = font();
  titleFont_.setWeight(QFont::Bold);
  linkFont_ = font();
  linkFont_.setUnderline(true);
  const QFontMetrics textMetrics(font());
  const QFontMetrics titleMetrics(titleFont_);
  const QFontMetrics linkMetrics(linkFont_);
  const QString text = displayText(content_);

  const bool hasIcon = !icon_.isNull();
  const int lead = hasIcon ? kIconSize + kIconGap : 0;
  int closeSize = 0;
  if (options_ & kCloseButton)
    closeSize = std::max(style()->pixelMetric(QStyle::PM_TitleBarButtonSize, nullptr, this), 14);
  const int closeReserve = closeSize > 0 ? kIconGap + closeSize : 0;

  // Width: the widest of the title row, the text (wrapped only past kMaxTextWidth) and the link.
  // Measured in fractions and rounded up, so that eliding at the rounded width keeps the text.
  auto advance = [](const QFont& f, const QString& s) {
    return std::min(int(std::ceil(QFontMetricsF(f).horizontalAdvance(s))), kMaxTextWidth);
  };
  const int titleWidth = advance(titleFont_, title_);
  const int textWidth =
      text.isEmpty()
          ? 0
          : textMetrics.boundingRect(QRect(0, 0, kMaxTextWidth, 1 << 20), kContentFlags, text)
                .width();
  const int linkWidth = link_.isEmpty() ? 0 : advance(linkFont_, link_);
  const int inner = std::max({lead + titleWidth + closeReserve, textWidth, linkWidth});
  const int width = std::max(kMinBodyWidth, inner + 2 * kMarginX);

  // Heights, from the body's top; the text gets the full inner width, which wraps it as above.
  const int headerHeight = std::max({titleMetrics.height(), hasIcon ? kIconSize : 0,
                                     closeSize > 0 ? closeSize + kCloseInset - kMarginTop : 0});
  int y = kMarginTop + headerHeight;
  const int textTop = y + kSpacing;
  const int textHeight =
      text.isEmpty()
          ? 0
          : textMetrics.boundingRect(QRect(0, 0, inner, 1 << 20), kContentFlags, text).height();
  if (!text.isEmpty()) y = textTop + textHeight;
  const int linkTop = y + kSpacing;
  if (!link_.isEmpty()) y = linkTop + linkMetrics.height();
  const int bodyHeight = y + kMarginBottom;
  const QSize size(width, bodyHeight + kPointer);

  // Above an anchor in the lower half of its screen (a status bar), below one in the upper half;
  // as far right of the anchor as the screen allows. The tip stays on the anchor even when the
  // balloon cannot fit on the screen.
  QScreen* screen = QGuiApplication::screenAt(anchor_);
  if (!screen) screen = QGuiApplication::primaryScreen();
  const QRect avail = screen ? screen->availableGeometry() : QRect(anchor_, QSize(1, 1));
  const bool above = anchor_.y() > avail.center().y();
  const int bodyTop = above ? 0 : kPointer;
  int x = std::min(anchor_.x() - kTipInset, avail.right() + 1 - width);
  x = std::max(x, avail.left());
  const int tipX = std::clamp(anchor_.x() - x, kCorner / 2, width - 1 - kCorner / 2);
  tip_ = QPoint(tipX, above ? size.height() - 1 : 0);

  iconRect_ = hasIcon ? QRect(kMarginX, bodyTop + kMarginTop + (headerHeight - kIconSize) / 2,
                              kIconSize, kIconSize)
                      : QRect();
  titleRect_ =
      QRect(kMarginX + lead, bodyTop + kMarginTop, inner - lead - closeReserve, headerHeight);
  contentRect_ = QRect(kMarginX, bodyTop + textTop, inner, textHeight);
  linkRect_ = link_.isEmpty() ? QRect()
                              : QRect(kMarginX, bodyTop + linkTop, linkWidth, linkMetrics.height());
  closeRect_ = closeSize > 0 ? QRect(width - kCloseInset - closeSize, bodyTop + kCloseInset,
                                     closeSize, closeSize)
                             : QRect();

  const QRegion region = shape(size, bodyTop, bodyHeight);
  // The rim is what a one-pixel erosion of the shape takes away, so it follows the mask exactly
  // (an antialiased outline would be cut by the mask's hard edge).
  const QRegion inside = region & region.translated(1, 0) & region.translated(-1, 0) &
                         region.translated(0, 1) & region.translated(0, -1);
  border_ = region - inside;
  resize(size);
  move(anchor_ - tip_);
  setMask(region);
}

QRegion hostUiBalloonToolTip::shape(QSize size, int bodyTop, int bodyHeight) const {
  const QRect body(0, bodyTop, size.width(), bodyHeight);
  // The corners are quarters of a kCorner-wide circle, cut row by row (each row as wide as the
  // circle at the row's middle) so that the four corners mirror each other pixel for pixel.
  const int r = kCorner / 2;
  QRegion region(body.adjusted(0, r, 0, -r));
  for (int dy = 0; dy < r; ++dy) {
    const double h = r - dy - 0.5;
    const int inset = r - int(std::lround(std::sqrt(double(r * r) - h * h)));
    region += QRect(body.left() + inset, body.top() + dy, body.width() - 2 * inset, 1);
    region += QRect(body.left() + inset, body.bottom() - dy, body.width() - 2 * inset, 1);
  }

  // The pointer, one row at a time so that its last row is exactly the tip's pixel. One edge is
  // upright above the tip; the other slants toward the middle of the balloon.
  const bool down = bodyTop == 0;
  const bool slantsRight = tip_.x() < size.width() / 2;
  for (int i = 0; i < kPointer; ++i) {
    const int rowWidth = std::max(1, (kPointerBase * (kPointer - i) + kPointer / 2) / kPointer);
    const int rowY = down ? body.bottom() + 1 + i : body.top() - 1 - i;
    const int rowX = slantsRight ? tip_.x() : tip_.x() - rowWidth + 1;
    region += QRect(rowX, rowY, rowWidth, 1);
  }
  return region;
}

void hostUiBalloonToolTip::beginClose(bool animate) {
  if (state_ != State::kShown) return;
  timer_.stop();
  closePressed_ = closeHot_ = false;
  if (animate && !(options_ & kNoHideAnimation) && isVisible()) {
    state_ = State::kFadingOut;
    fadeIn_->stop();
    fadeOut_->setStartValue(windowOpacity());
    fadeOut_->start();
    return;
  }
  finishClose(false);
}

void hostUiBalloonToolTip::finishClose(bool replacing) {
  state_ = State::kHidden;
  stopAnimations();
  timer_.stop();
  closePressed_ = closeHot_ = false;
  hide();
  setWindowOpacity(1.0);
  linkRect_ = closeRect_ = QRect();
  disconnect(ownerGone_);
  QPointer<hostUiBalloonToolTip> self(this);
  emit closed();
  if (self && !replacing && (options_ & kDeleteSelf)) deleteLater();
}

void hostUiBalloonToolTip::stopAnimations() {
  fadeIn_->stop();
  fadeOut_->stop();
}

void hostUiBalloonToolTip::openLink() const {
  // Only a link that names something openable goes to the desktop: a URL with a scheme, or a
  // file that exists. A phrase such as a command's name opens nothing wherever it is handed,
  // and the desktop would only answer it with an error of its own.
  const QString text = link_.trimmed();
  const QUrl url(text, QUrl::StrictMode);
  if (url.isValid() && url.scheme().size() > 1) {
    QDesktopServices::openUrl(url);
  } else if (QFileInfo fileInfo(text); !text.isEmpty() && fileInfo.exists()) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(fileInfo.absoluteFilePath()));
  }
}

void hostUiBalloonToolTip::setCloseBox(bool hot, bool pressed) {
  if (hot == closeHot_ && pressed == closePressed_) return;
  closeHot_ = hot;
  closePressed_ = pressed;
  update(closeRect_);
}

void hostUiBalloonToolTip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QPalette& colours = palette();
  const QColor text = colours.color(QPalette::ToolTipText);
  painter.fillRect(rect(), colours.color(QPalette::ToolTipBase));
  QColor rim = text;
  rim.setAlphaF(0.5f);
  painter.setClipRegion(border_);
  painter.fillRect(rect(), rim);
  painter.setClipping(false);

  if (!iconRect_.isNull()) icon_.paint(&painter, iconRect_);
  painter.setPen(text);
  painter.setFont(titleFont_);
  const QString title =
      QFontMetricsF(titleFont_).elidedText(title_, Qt::ElideRight, titleRect_.width());
  painter.drawText(titleRect_, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, title);
  painter.setFont(font());
  painter.drawText(contentRect_, kContentFlags, displayText(content_));
  if (!linkRect_.isNull()) {
    painter.setFont(linkFont_);
    painter.setPen(colours.color(QPalette::Link));
    const QString link =
        QFontMetricsF(linkFont_).elidedText(link_, Qt::ElideRight, linkRect_.width());
    painter.drawText(linkRect_, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, link);
  }
  drawCloseBox(painter);
}

void hostUiBalloonToolTip::drawCloseBox(QPainter& painter) const {
  if (closeRect_.isNull()) return;
  // Flat, hot under the mouse, pushed while the press that began on it stays over it.
  const bool hot = closeHot_;
  const bool pushed = closeHot_ && closePressed_;
  QColor ink = palette().color(QPalette::ToolTipText);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  if (hot) {
    QColor fill = ink;
    fill.setAlphaF(pushed ? 0.30f : 0.14f);
    QColor edge = ink;
    edge.setAlphaF(0.45f);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(closeRect_).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
  }
  const qreal inset = closeRect_.width() * 0.3;
  QRectF cross = QRectF(closeRect_).adjusted(inset, inset, -inset, -inset);
  if (pushed) cross.translate(1, 1);
  painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(cross.topLeft(), cross.bottomRight());
  painter.drawLine(cross.topRight(), cross.bottomLeft());
  painter.restore();
}

void hostUiBalloonToolTip::mousePressEvent(QMouseEvent* event) {
  if (state_ != State::kShown || event->button() != Qt::LeftButton) return;
  const QPoint pos = event->position().toPoint();
  if (closeRect_.contains(pos)) {
    // The press holds the mouse (Qt grabs it for the pressed widget) until the release decides.
    setCloseBox(true, true);
  } else if (linkRect_.contains(pos)) {
    QPointer<hostUiBalloonToolTip> self(this);
    emit linkActivated();
    if (self) beginClose(true);
  }
}

void hostUiBalloonToolTip::mouseMoveEvent(QMouseEvent* event) {
  if (state_ != State::kShown) return;
  const QPoint pos = event->position().toPoint();
  if (!closeRect_.isNull()) setCloseBox(closeRect_.contains(pos), closePressed_);
  if (!link_.isEmpty())
    setCursor(linkRect_.contains(pos) ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void hostUiBalloonToolTip::mouseReleaseEvent(QMouseEvent* event) {
  if (state_ != State::kShown || event->button() != Qt::LeftButton) return;
  const QPoint pos = event->position().toPoint();
  if (closePressed_) {
    // A press on the close box decides alone: released elsewhere, it is simply let go.
    const bool inside = closeRect_.contains(pos);
    setCloseBox(inside, false);
    if (inside) beginClose(true);
  } else if (!link_.isEmpty() && rect().contains(pos)) {
    openLink();
    beginClose(true);
  }
}

void hostUiBalloonToolTip::timerEvent(QTimerEvent* event) {
  if (event->timerId() == timer_.timerId())
    beginClose(true);
  else
    QWidget::timerEvent(event);
}

void hostUiBalloonToolTip::closeEvent(QCloseEvent* event) {
  // A close request is never refused; the window goes at once, without fading.
  event->accept();
  if (state_ != State::kHidden) finishClose(false);
}
