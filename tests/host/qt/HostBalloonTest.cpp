// The balloon pop-up: shown without taking the focus, its pointer's tip on the anchor whichever
// way it is placed, its time-out, close box, link line and close request, and its end when the
// object is deleted or its owner goes away while it shows.

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QMainWindow>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include "hostUiBalloonToolTip.h"

using Balloon = hostUiBalloonToolTip;

namespace {
// Turns the tooltip effects on or off for one test and back off after it.
struct TooltipEffects {
  explicit TooltipEffects(bool on) { set(on); }
  ~TooltipEffects() { set(false); }
  static void set(bool on) {
    QApplication::setEffectEnabled(Qt::UI_General, on);
    QApplication::setEffectEnabled(Qt::UI_AnimateTooltip, on);
    QApplication::setEffectEnabled(Qt::UI_FadeTooltip, on);
  }
};

QRect screenArea() {
  return QGuiApplication::primaryScreen()->availableGeometry();
}
}  // namespace

class HostBalloonTest : public QObject {
  Q_OBJECT

 public slots:
  // The desktop's handler for the test's own URL scheme.
  void openUrl(const QUrl& url) { opened.append(url); }

 private slots:
  void init() { TooltipEffects::set(false); }
  void showsWithoutTakingFocusAndReplaces();
  void pointerTipOnAnchor_data();
  void pointerTipOnAnchor();
  void timeOutClosesAndDeletes();
  void closeBoxAndLink();
  void closeRequestOwnerGoneAndDelete();

 private:
  QList<QUrl> opened;
};

void HostBalloonTest::showsWithoutTakingFocusAndReplaces() {
  QMainWindow window;
  window.show();
  QApplication::setActiveWindow(&window);
  QVERIFY(QTest::qWaitForWindowActive(&window));

  Balloon balloon;
  QSignalSpy closed(&balloon, &Balloon::closed);
  const QPoint anchor = screenArea().bottomRight() - QPoint(60, 10);
  balloon.showBalloon("Standards Violation",
                      "A standards violation has occured. Run Check Standards \r\n to view all "
                      "standards violatios in the current drawing.",
                      anchor, &window, Balloon::kCloseButton | Balloon::kTopMost,
                      "Run Check Standards", 8000);
  QVERIFY(balloon.isVisible());
  QCOMPARE(balloon.windowTitle(), QStringLiteral("Standards Violation"));
  QVERIFY(!balloon.isActiveWindow());
  QCOMPARE(QApplication::activeWindow(), &window);
  QVERIFY(balloon.windowFlags() & Qt::WindowStaysOnTopHint);
  // Without effects, neither showing nor hiding is animated.
  QCOMPARE(balloon.options() & 0xC000u, 0xC000u);
  QVERIFY(balloon.timerRunning());

  // The link line lies under the text, the close box in the top-right corner, both inside the
  // shape.
  const QRect link = balloon.linkRect(), box = balloon.closeBoxRect();
  QVERIFY(balloon.mask().contains(link) && balloon.mask().contains(box));
  QVERIFY(box.right() > balloon.width() * 3 / 4 && box.top() < 12);
  QVERIFY(link.top() > box.bottom() + QFontMetrics(balloon.font()).height());
  QVERIFY(QDir().mkpath("/tmp/staudit-qt-shots"));
  QVERIFY(balloon.grab().save("/tmp/staudit-qt-shots/balloon-link-close.png"));

  // "\r\n" is one line break: the same text with "\n" gives the same height, "\n\n" a taller one.
  auto heightFor = [&](const QString& content) {
    balloon.showBalloon("Missing Standards File", content, anchor, &window, Balloon::kNoShadow);
    return balloon.height();
  };
  QCOMPARE(heightFor("one\r\ntwo"), heightFor("one\ntwo"));
  QVERIFY(heightFor("one\n\ntwo") > heightFor("one\ntwo"));

  // Showing again replaced what was shown: each replaced balloon told closed(), the last shows.
  QCOMPARE(closed.count(), 4);
  balloon.showBalloon(
      "Missing Standards File",
      "One or more standards files associated with this drawing can't be "
      "located.\nUse Configure Standards dialog box\nto locate these missing files.",
      anchor, &window, Balloon::kNoShadow);
  QCOMPARE(closed.count(), 5);
  QVERIFY(balloon.isVisible() && balloon.linkRect().isEmpty() && balloon.closeBoxRect().isEmpty());
  QVERIFY(!balloon.timerRunning());  // a time-out of 0 stops the one that ran
  QCOMPARE(balloon.windowFlags() & (Qt::NoDropShadowWindowHint | Qt::WindowStaysOnTopHint),
           Qt::NoDropShadowWindowHint);
  QVERIFY(balloon.grab().save("/tmp/staudit-qt-shots/balloon-plain.png"));
  QCOMPARE(QApplication::activeWindow(), &window);
}

void HostBalloonTest::pointerTipOnAnchor_data() {
  QTest::addColumn<QPointF>("where");  // the anchor as a fraction of the screen
  QTest::newRow("status bar, right") << QPointF(0.98, 0.99);
  QTest::newRow("bottom left") << QPointF(0.0, 0.9);
  QTest::newRow("top left") << QPointF(0.02, 0.01);
  QTest::newRow("top right edge") << QPointF(1.0, 0.3);
}

void HostBalloonTest::pointerTipOnAnchor() {
  QFETCH(QPointF, where);
  const QRect screen = screenArea();
  const QPoint anchor(screen.left() + int(where.x() * (screen.width() - 1)),
                      screen.top() + int(where.y() * (screen.height() - 1)));
  Balloon balloon;
  balloon.showBalloon("Standards Violation", "Text\nof two lines", anchor, nullptr,
                      Balloon::kCloseButton, "Run Check Standards");
  const QPoint tip = balloon.tipPoint();
  QVERIFY(balloon.mask().contains(tip));
  QCOMPARE(balloon.mapToGlobal(tip), anchor);
  // Above an anchor in the lower half, below one in the upper half; inside the screen as far as
  // the tip allows (it may stick out by the corner's radius at the very edge).
  const QRect frame = balloon.geometry();
  if (where.y() > 0.5)
    QCOMPARE(frame.bottom(), anchor.y());
  else
    QCOMPARE(frame.top(), anchor.y());
  QVERIFY(frame.left() >= screen.left() - 12 && frame.right() <= screen.right() + 12);
  // The pointer's tip is alone in its row: a point, not a blunt end.
  const QRect tipRow = (balloon.mask() & QRect(0, tip.y(), balloon.width(), 1)).boundingRect();
  QCOMPARE(tipRow, QRect(tip, QSize(1, 1)));
}

void HostBalloonTest::timeOutClosesAndDeletes() {
  const QPoint anchor = screenArea().center();
  {
    Balloon balloon;
    balloon.showBalloon("t", "c", anchor, nullptr, Balloon::kNoAutoClose, QString(), 50);
    QVERIFY(!balloon.timerRunning());
    QTest::qWait(120);
    QVERIFY(balloon.isVisible());
  }
  // With the effects on it fades in and out, and still goes away by itself.
  TooltipEffects effects(true);
  QPointer<Balloon> balloon = new Balloon;
  QSignalSpy closed(balloon.data(), &Balloon::closed);
  balloon->showBalloon("t", "c", anchor, nullptr, Balloon::kDeleteSelf, QString(), 50);
  QCOMPARE(balloon->options() & 0xC000u, 0u);
  QVERIFY(balloon->timerRunning());
  QTRY_VERIFY(balloon.isNull());
  QCOMPARE(closed.count(), 1);
}

void HostBalloonTest::closeBoxAndLink() {
  const QPoint anchor = screenArea().center();
  Balloon balloon;
  QSignalSpy closed(&balloon, &Balloon::closed);
  QSignalSpy activated(&balloon, &Balloon::linkActivated);
  auto show = [&](const QString& link) {
    balloon.showBalloon("Standards Violation", "A violation.", anchor, nullptr,
                        Balloon::kCloseButton, link);
  };

  // A press in the close box released outside it lets go; pressed and released in it, it closes.
  show("Run Check Standards");
  const QPoint box = balloon.closeBoxRect().center();
  const QPoint text = balloon.linkRect().topLeft() - QPoint(0, 8);
  QTest::mousePress(&balloon, Qt::LeftButton, {}, box);
  QTest::mouseMove(&balloon, text);
  QTest::mouseRelease(&balloon, Qt::LeftButton, {}, text);
  QVERIFY(balloon.isVisible());
  QCOMPARE(closed.count(), 0);
  QTest::mouseClick(&balloon, Qt::LeftButton, {}, box);
  QVERIFY(!balloon.isVisible());
  QCOMPARE(closed.count(), 1);
  QCOMPARE(activated.count(), 0);

  // The hand over the link line; a press on it tells linkActivated and closes.
  show("Run Check Standards");
  QTest::mouseMove(&balloon, balloon.linkRect().center());
  QCOMPARE(balloon.cursor().shape(), Qt::PointingHandCursor);
  QTest::mouseMove(&balloon, text);
  QCOMPARE(balloon.cursor().shape(), Qt::ArrowCursor);
  QTest::mousePress(&balloon, Qt::LeftButton, {}, balloon.linkRect().center());
  QCOMPARE(activated.count(), 1);
  QVERIFY(!balloon.isVisible());
  QCOMPARE(closed.count(), 2);

  // A click elsewhere hands a URL link to the desktop and closes.
  QDesktopServices::setUrlHandler("staudit-test", this, "openUrl");
  show("staudit-test://report/1");
  QTest::mouseClick(&balloon, Qt::LeftButton, {}, text);
  QDesktopServices::unsetUrlHandler("staudit-test");
  QCOMPARE(opened, QList<QUrl>{QUrl("staudit-test://report/1")});
  QVERIFY(!balloon.isVisible());
  QCOMPARE(closed.count(), 3);
  QCOMPARE(activated.count(), 1);
}

void HostBalloonTest::closeRequestOwnerGoneAndDelete() {
  const QPoint anchor = screenArea().center();
  // A close request is granted, and the balloon deletes itself.
  QPointer<Balloon> balloon = new Balloon;
  QSignalSpy closed(balloon.data(), &Balloon::closed);
  balloon->showBalloon("t", "c", anchor, nullptr, Balloon::kDeleteSelf, "link", 8000);
  QVERIFY(balloon->close());
  QCOMPARE(closed.count(), 1);
  QTRY_VERIFY(balloon.isNull());

  // Its owner going away closes it.
  auto* owner = new QWidget;
  Balloon owned;
  owned.showBalloon("t", "c", anchor, owner, 0, QString(), 8000);
  delete owner;
  QVERIFY(!owned.isVisible() && !owned.timerRunning());
  QVERIFY(owned.owner() == nullptr);

  // Deleted while it fades in, or while it fades out: nothing left running touches it after.
  TooltipEffects effects(true);
  for (bool fadingOut : {false, true}) {
    auto* fading = new Balloon;
    fading->showBalloon("t", "c", anchor, nullptr, Balloon::kDeleteSelf, QString(), 100);
    if (fadingOut) fading->closeBalloon();
    delete fading;
  }
  QTest::qWait(400);
}

QTEST_MAIN(HostBalloonTest)
#include "HostBalloonTest.moc"
