#include "HostQtFront.h"

#include <QBuffer>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QUrl>
#include <filesystem>
#include <memory>
#include <string_view>

#include "HostQtCommandLine.h"
#include "HostQtStatusBar.h"
#include "HostQtTaskDialog.h"
#include "HostQtText.h"
#include "HostViewRenderer.h"
#include "HostViewScene.h"
#include "OdAtomicFile.h"
#include "OdDbDatabase.h"
#include "OdError.h"

namespace {
QMessageBox::Icon messageIcon(HostIcon icon) {
  switch (icon) {
    case HostIcon::kInformation:
      return QMessageBox::Information;
    case HostIcon::kWarning:
      return QMessageBox::Warning;
    case HostIcon::kError:
      return QMessageBox::Critical;
    case HostIcon::kQuestion:
      return QMessageBox::Question;
    case HostIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButton standardButton(int answer) {
  switch (answer) {
    case kHostOk:
      return QMessageBox::Ok;
    case kHostCancel:
      return QMessageBox::Cancel;
    case kHostRetry:
      return QMessageBox::Retry;
    case kHostYes:
      return QMessageBox::Yes;
    case kHostNo:
      return QMessageBox::No;
    default:
      return QMessageBox::NoButton;
  }
}
}  // namespace

HostQtFront::HostQtFront(QObject* parent) : QObject(parent) {}

HostQtFront::~HostQtFront() = default;

void HostQtFront::setMainWindow(QWidget* window) {
  mainWindow_ = window;
}

QWidget* HostQtFront::mainWindow() const {
  return mainWindow_.data();
}

void HostQtFront::setCommandLine(HostQtCommandLine* commandLine) {
  commandLine_ = commandLine;
}

void HostQtFront::setStatusBar(QStatusBar* bar) {
  statusBar_ = bar ? std::make_unique<HostQtStatusBar>(bar) : nullptr;
}

int HostQtFront::showMessageBox(const HostMessageBox& box) {
  QMessageBox dialog(mainWindow_.data());
  dialog.setWindowTitle(plainLines(box.caption));
  dialog.setTextFormat(Qt::PlainText);
  dialog.setText(plainLines(box.text));
  dialog.setIcon(messageIcon(box.icon));

  // The buttons in their usual order; answers() puts the default first.
  HostMessageBox natural = box;
  natural.defaultAnswer = 0;
  const std::vector<int> order = natural.answers();
  const int defaultAnswer = box.answers().front();
  std::vector<std::pair<QAbstractButton*, int>> buttons;
  QAbstractButton* escape = nullptr;
  for (int answer : order) {
    QPushButton* button = dialog.addButton(standardButton(answer));
    buttons.emplace_back(button, answer);
    if (answer == defaultAnswer) dialog.setDefaultButton(button);
    // Escape and the close box choose Cancel where the box has it; a box without Cancel
    // answers No (yes/no) or its only button (OK), which is also what Qt would pick.
    if (answer == kHostCancel || (answer == kHostNo && !escape)) escape = button;
  }
  if (!escape && buttons.size() == 1) escape = buttons.front().first;
  if (escape) dialog.setEscapeButton(escape);

  dialog.exec();
  QAbstractButton* clicked = dialog.clickedButton();
  for (const auto& [button, answer] : buttons)
    if (button == clicked) return answer;
  // Closed without a button (the window went): what Escape would have given.
  for (const auto& [button, answer] : buttons)
    if (button == escape) return answer;
  return kHostCancel;
}

int HostQtFront::showTaskDialog(const HostTaskDialog& dialog) {
  HostQtTaskDialog window(dialog, mainWindow_.data());
  return window.run();
}

void HostQtFront::writeCommandLine(const OdString& text) {
  const QString qtext = toQString(text);
  if (commandLine_) commandLine_->append(qtext);
  if (echo_) {
    const std::string utf8 = text.toUtf8();
    std::fwrite(utf8.data(), 1, utf8.size(), echo_);
    std::fflush(echo_);
  }
  emit commandLineWritten(qtext);
}

bool HostQtFront::showHelpPage(const OdString& page) {
  const QUrl url(toQString(page));
  return url.isValid() && QDesktopServices::openUrl(url);
}

bool HostQtFront::readCommandInput(OdString& line) {
  if (scriptRunning_ || !commandLine_) return false;
  QString typed;
  if (!commandLine_->waitForLine(typed)) return false;
  line = toOdString(typed);
  return true;
}

HostStatusBar* HostQtFront::statusBar() {
  return statusBar_.get();
}

bool HostQtFront::plotToPdf(OdDbDatabase& db, const OdString& path, OdString& error) {
  const QString file = toQString(path);
  QByteArray bytes;
  try {
    const std::optional<PlotView> shown = plotArea_ ? plotArea_(db) : std::nullopt;
    std::unique_ptr<HostViewScene> read;
    const HostViewScene* scene = shown ? shown->scene : nullptr;
    if (!scene) scene = (read = std::make_unique<HostViewScene>(db)).get();
    const HostViewBox box = shown && !shown->area.empty() ? shown->area : scene->extents();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    const QString drawing = toQString(db.getFilename());
    writer.setTitle(drawing.isEmpty() ? QStringLiteral("Untitled")
                                      : QFileInfo(drawing).completeBaseName());
    writer.setCreator(QStringLiteral("standards-audit"));
    // Fine enough for hairlines, small enough that a pixel-sized detail is still one.
    writer.setResolution(300);
    const bool wide = box.width() >= box.height();
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
                                     wide ? QPageLayout::Landscape : QPageLayout::Portrait,
                                     QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter));
    QPainter painter;
    if (!painter.begin(&writer)) {
      error =
          toOdString(QStringLiteral("cannot plot to %1: the PDF could not be started").arg(file));
      return false;
    }
    const QRect page = writer.pageLayout().paintRectPixels(writer.resolution());
    const HostViewTransform view = HostViewTransform::fit(box, QSizeF(page.size()), 0);
    HostViewRenderer::Options options;
    options.background = Qt::white;
    options.antialias = true;
    HostViewRenderer().paint(painter, *scene, view, options);
    painter.end();
  } catch (const std::exception& e) {
    error =
        toOdString(QStringLiteral("cannot plot to %1: %2").arg(file, QString::fromUtf8(e.what())));
    return false;
  }
  try {
    // File names are bytes on this system; Qt knows how it encodes them.
    OdAtomicFile out(std::filesystem::path(QFile::encodeName(file).toStdString()));
    out.write(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    out.commit();
  } catch (const OdError& e) {
    error = toOdString(QString::fromUtf8(e.what()));  // names the file and the system's reason
    return false;
  } catch (const std::exception& e) {
    error =
        toOdString(QStringLiteral("cannot write %1: %2").arg(file, QString::fromUtf8(e.what())));
    return false;
  }
  return true;
}
