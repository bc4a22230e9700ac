#include "StUiStandardsAuditButton.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <memory>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StManagerCache.h"
#include "StSettingsStorage.h"
#include "StStringTable.h"
#include "StUiIcons.h"
#include "StUiSettingsDlg.h"

namespace stui {

namespace {

constexpr int kSide = 20;
constexpr int kIconOffset = 2;
constexpr int kIconSide = 16;

QString text(unsigned id) {
  return plainLines(stLoadString(id));
}

// A text of the host's own, in the user's language.
OdString translated(const wchar_t* text) {
  HostServices* host = hostServices();
  return host ? host->translate(text) : OdString(text);
}

void send(const OdString& command) {
  if (HostServices* host = hostServices(); host && !command.isEmpty()) host->sendCommand(command);
}

OdDbDatabase* currentDrawing() {
  HostServices* host = hostServices();
  return host ? host->currentDatabase() : nullptr;
}

}  // namespace

StUiStandardsAuditButton::StUiStandardsAuditButton(QWidget* parent) : QWidget(parent) {
  setObjectName("StandardsAuditButton");
  setAccessibleName(text(kStrModuleTitle));
  setFixedSize(kSide, kSide);
  setAttribute(Qt::WA_OpaquePaintEvent, false);
  setCursor(Qt::ArrowCursor);
}

StUiStandardsAuditButton::~StUiStandardsAuditButton() {
  // A balloon still up points at a button that is no more.
  delete balloon_.data();
}

QString StUiStandardsAuditButton::tooltipText() const {
  OdDbDatabase* db = currentDrawing();
  st::StManagerCache* cache = st::stManagerCache();
  const bool hasManager = db && cache && cache->getManager(db);
  return text(state_.tooltipId(hasManager));
}

QMenu* StUiStandardsAuditButton::createMenu() {
  auto* menu = new QMenu;
  menu->setObjectName("StandardsAuditMenu");
  auto add = [&](unsigned textId, int command) {
    QAction* action = menu->addAction(text(textId));
    action->setData(command);
    return action;
  };
  add(kStrMenuCheckStandards, kMenuCheckStandards);
  add(kStrMenuConfigureStandards, kMenuConfigureStandards);
  QAction* notifications = add(kStrMenuEnableNotifications, kMenuEnableNotifications);
  notifications->setCheckable(true);
  st::StSettingsStorage* settings = ::stSettingsStorage();
  notifications->setChecked(settings &&
                            StUiButtonState::notificationsEnabled(settings->getNotificationMode()));
  menu->addSeparator();
  add(kStrMenuSettings, kMenuSettings);
  return menu;
}

void StUiStandardsAuditButton::runMenuCommand(int command) {
  switch (command) {
    case kMenuCheckStandards:
      send(L"CHECKSTANDARDS ");
      break;
    case kMenuConfigureStandards:
      send(L"STANDARDS ");
      break;
    case kMenuEnableNotifications:
      if (st::StSettingsStorage* settings = ::stSettingsStorage())
        settings->setNotificationMode(
            StUiButtonState::toggledNotificationMode(settings->getNotificationMode()));
      break;
    case kMenuSettings: {
      StUiSettingsDlg dialog;
      dialog.runModal();
      break;
    }
    default:
      break;
  }
}

void StUiStandardsAuditButton::checkFinished() {
  setState(StUiButtonState::kAssociated);
}

void StUiStandardsAuditButton::checkInterrupted() {
  setState(StUiButtonState::kNewViolation);
}

void StUiStandardsAuditButton::newViolation(st::StDWSPlugin*, st::StError*) {
  st::StSettingsStorage* settings = ::stSettingsStorage();
  const int mode = settings ? settings->getNotificationMode() : st::kStNotifyNone;
  int answer = kHostCancel;
  switch (StUiButtonState::violationAlert(mode, isVisible())) {
    case StUiButtonState::Alert::kBalloon:
      showBalloon(text(kStrStandardsViolationTitle), text(kStrStandardsViolation),
                  text(kStrRunCheckStandards));
      break;
    case StUiButtonState::Alert::kTaskDialog:
      if (HostServices* host = hostServices()) {
        HostTaskDialog dialog;
        dialog.windowTitle = stLoadString(kStrModuleTitle);
        dialog.mainInstruction = translated(L"Standards - Violation Found");
        dialog.content = translated(
            L"The previous operation created an object\nthat does not comply with "
            L"standards.\nWhat do you want to do?");
        dialog.icon = HostIcon::kWarning;
        dialog.commandLinks = true;
        dialog.buttons = {
            {kAnswerCheck, translated(L"Choose a standard object to replace this once\nThe "
                                      L"Check Standards dialog box will open.")},
            {kAnswerKeep,
             translated(L"Keep non standard object\nThe object will remain unchanged.")}};
        answer = host->taskDialog(dialog);
      }
      break;
    case StUiButtonState::Alert::kNone:
      break;
  }
  setState(StUiButtonState::kNewViolation);
  if (answer == kAnswerCheck) send(L"CHECKSTANDARDS ");
}

void StUiStandardsAuditButton::missingStandardsFile() {
  setState(StUiButtonState::kMissingFile);
  showBalloon(text(kStrMissingStandardsFileCaption), text(kStrMissingStandardsFile), QString());
}

bool StUiStandardsAuditButton::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    // Worked out when shown: it depends on the drawing current at the time.
    auto* help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(
        help->globalPos(),
        QStringLiteral("<b>%1</b><br>%2")
            .arg(text(kStrModuleTitle).toHtmlEscaped(), tooltipText().toHtmlEscaped()),
        this);
    return true;
  }
  return QWidget::event(event);
}

void StUiStandardsAuditButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  stIcon(state_.iconId()).paint(&painter, QRect(kIconOffset, kIconOffset, kIconSide, kIconSide));
}

void StUiStandardsAuditButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  send(state_.clickCommand(currentDrawing() != nullptr));
}

void StUiStandardsAuditButton::contextMenuEvent(QContextMenuEvent*) {
  std::unique_ptr<QMenu> menu(createMenu());
  if (QAction* chosen = menu->exec(mapToGlobal(rect().center())))
    runMenuCommand(chosen->data().toInt());
}

void StUiStandardsAuditButton::setState(StUiButtonState::State state) {
  state_.setState(state);
  setProperty("standardsState", int(state));
  update();
}

void StUiStandardsAuditButton::showBalloon(const QString& title, const QString& content,
                                           const QString& link) {
  // One balloon at a time: a newer notice replaces the one still up.
  if (balloon_) balloon_->closeBalloon();
  auto* balloon = new hostUiBalloonToolTip;
  balloon->setIcon(style()->standardIcon(QStyle::SP_MessageBoxInformation));
  connect(balloon, &hostUiBalloonToolTip::linkActivated, this, [] { send(L"CHECKSTANDARDS "); });
  balloon_ = balloon;
  balloon->showBalloon(title, content, mapToGlobal(rect().center()), window(),
                       hostUiBalloonToolTip::kCloseButton | hostUiBalloonToolTip::kNoHideAnimation |
                           hostUiBalloonToolTip::kDeleteSelf,
                       link, kBalloonTimeoutMs);
}

}  // namespace stui
