#include "StUiCheckStandardsDlg.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "StAppServices.h"
#include "StErrorFlags.h"
#include "StIgnoreMarks.h"
#include "StManager.h"
#include "StSettingsStorage.h"
#include "StStringTable.h"
#include "StUiIcons.h"
#include "StUiObjectUsers.h"
#include "StUiSettingsDlg.h"
#include "StVariantText.h"

namespace stui {

namespace {

// An interface text in the host's language.
QString text(const wchar_t* english) {
  HostServices* host = hostServices();
  return toQString(host ? host->translate(english) : OdString(english));
}

QString stringOf(unsigned id) {
  return toQString(stLoadString(id));
}

// `format` with its first "%s" replaced by `argument`.
QString fillFirst(QString format, const QString& argument) {
  const qsizetype at = format.indexOf(QLatin1String("%s"));
  return at < 0 ? format : format.replace(at, 2, argument);
}

// A count line of the completion message: the text under `id` with its "%d" filled.
QString countLine(unsigned id, std::uint32_t count) {
  return stringOf(id).replace(QLatin1String("%d"), QString::number(count));
}

// The transparent image of the rows that are not recommended, so that every row's name
// starts where the recommended one's does.
QIcon blankIcon() {
  QPixmap pixmap(16, 16);
  pixmap.fill(Qt::transparent);
  return QIcon(pixmap);
}

// The texts of a property's current and standard values. Two different values that read alike
// are shown with every digit needed to tell them apart.
std::pair<OdString, OdString> valueTexts(st::StPropertyFormatter* formatter, const OdString& name,
                                         const OdVariant& current, const OdVariant& standard) {
  auto show = [&](const OdVariant& v) {
    return formatter ? formatter->format(name, v) : st::odVariantToString(v);
  };
  auto exact = [&](const OdVariant& v) {
    if (formatter) return formatter->formatExact(name, v);
    return v.varType() == OdVariant::kDouble ? st::exactRealText(v.getDouble())
                                             : st::odVariantToString(v);
  };
  std::pair<OdString, OdString> texts{show(current), show(standard)};
  if (texts.first == texts.second && !st::compareOdVariant(current, standard))
    texts = {exact(current), exact(standard)};
  return texts;
}

// Runs `act`; a kernel error it throws is told to the user in one message box.
void guarded(const std::function<void()>& act) {
  try {
    act();
  } catch (const OdError& error) {
    if (HostServices* host = hostServices())
      host->messageBox(error.description(), OdString(L"Check Standards"), HostButtons::kOk,
                       HostIcon::kError);
  }
}

QTreeWidget* makeList(const QString& name, QWidget* parent) {
  auto* list = new QTreeWidget(parent);
  list->setObjectName(name);
  list->setRootIsDecorated(false);
  list->setUniformRowHeights(true);
  list->setSelectionMode(QAbstractItemView::SingleSelection);
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setAllColumnsShowFocus(true);
  list->header()->setSectionsMovable(false);
  list->header()->setSectionResizeMode(QHeaderView::Stretch);
  return list;
}

}  // namespace

StUiCheckStandardsDlg::StUiCheckStandardsDlg(st::StManager* manager, QWidget* parent)
    : hostUiDialog(QStringLiteral("Check Standards"), QStringLiteral("IDH_CHECKSTANDARDS"), parent),
      manager_(manager) {
  build();
  if (manager_) manager_->addReactor(this);
}

StUiCheckStandardsDlg::~StUiCheckStandardsDlg() {
  if (manager_) manager_->removeReactor(this);
  highlight(false, false);
}

void StUiCheckStandardsDlg::build() {
  setObjectName(QStringLiteral("CheckStandards"));
  auto* layout = new QVBoxLayout(this);

  auto* problemLabel = new QLabel(text(L"Problem:"), this);
  problem_ = new QPlainTextEdit(this);
  problem_->setObjectName(QStringLiteral("problem"));
  problem_->setReadOnly(true);
  problem_->setLineWrapMode(QPlainTextEdit::NoWrap);
  // The title and the description, with room for a horizontal scroll bar.
  problem_->setFixedHeight(problem_->fontMetrics().lineSpacing() * 4 + 2 * problem_->frameWidth());
  problemLabel->setBuddy(problem_);
  layout->addWidget(problemLabel);
  layout->addWidget(problem_);

  auto* fixesLabel = new QLabel(text(L"Replace with:"), this);
  fixes_ = makeList(QStringLiteral("replacements"), this);
  fixes_->setColumnCount(2);
  fixes_->setIconSize(QSize(16, 16));
  fixesLabel->setBuddy(fixes_);
  layout->addWidget(fixesLabel);
  layout->addWidget(fixes_, 3);

  auto* previewLabel = new QLabel(text(L"Preview of changes:"), this);
  preview_ = makeList(QStringLiteral("preview"), this);
  preview_->setHeaderLabels({stringOf(kStrColumnProperty), stringOf(kStrColumnCurrentValue),
                             stringOf(kStrColumnStandardValue)});
  previewLabel->setBuddy(preview_);
  layout->addWidget(previewLabel);
  layout->addWidget(preview_, 2);

  auto* actions = new QHBoxLayout;
  ignore_ = new QCheckBox(text(L"Mark this problem as ignored"), this);
  ignore_->setObjectName(QStringLiteral("ignore"));
  fix_ = new QPushButton(text(L"Fix"), this);
  next_ = new QPushButton(text(L"Next "), this);
  actions->addWidget(ignore_);
  actions->addStretch();
  actions->addWidget(fix_);
  actions->addWidget(next_);
  layout->addLayout(actions);
  status_ = new QLabel(this);
  status_->setObjectName(QStringLiteral("status"));
  layout->addWidget(status_);

  auto* buttons = new QHBoxLayout;
  settings_ = new QPushButton(text(L"Settings..."), this);
  zoom_ = new QPushButton(text(L"Zoom to"), this);
  close_ = new QPushButton(text(L"Close"), this);
  helpButton_ = new QPushButton(text(L"Help"), this);
  buttons->addWidget(settings_);
  buttons->addWidget(zoom_);
  buttons->addWidget(close_);
  buttons->addStretch();
  buttons->addWidget(helpButton_);
  layout->addLayout(buttons);

  // Enter goes on to the next problem wherever the focus is, except on another button.
  next_->setDefault(true);
  QWidget* order[] = {problem_, fixes_,    preview_, ignore_, fix_,
                      next_,    settings_, zoom_,    close_,  helpButton_};
  for (std::size_t i = 1; i < std::size(order); ++i) setTabOrder(order[i - 1], order[i]);
  fixes_->setFocus();

  // The dialog's frame in its font, as the layout was drawn.
  const QFontMetrics metrics(font());
  resize(433 * metrics.averageCharWidth() / 4, 383 * metrics.height() / 8);

  connect(fixes_, &QTreeWidget::currentItemChanged, this,
          [this](QTreeWidgetItem* item) { previewRow(item); });
  connect(fixes_, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* item) { previewRow(item); });
  fixes_->viewport()->installEventFilter(this);
  connect(fix_, &QPushButton::clicked, this, &StUiCheckStandardsDlg::onFix);
  connect(next_, &QPushButton::clicked, this, &StUiCheckStandardsDlg::onNext);
  connect(ignore_, &QCheckBox::clicked, this, &StUiCheckStandardsDlg::onIgnoreClicked);
  connect(settings_, &QPushButton::clicked, this, [this] {
    StUiSettingsDlg dialog(this);
    dialog.runModal();
  });
  connect(zoom_, &QPushButton::clicked, this, [this] { highlight(true, true); });
  connect(close_, &QPushButton::clicked, this, &StUiCheckStandardsDlg::onClose);
  connect(helpButton_, &QPushButton::clicked, this, &StUiCheckStandardsDlg::help);
}

int StUiCheckStandardsDlg::runModal() {
  if (manager_) manager_->startCheck();
  return hostUiDialog::runModal();
}

void StUiCheckStandardsDlg::help() {
  HostServices* host = hostServices();
  if (host && !helpKey().isEmpty())
    host->showHelp(toOdString(helpKey()));
  else
    hostUiDialog::help();
}

bool StUiCheckStandardsDlg::eventFilter(QObject* watched, QEvent* event) {
  // A click beside the rows chooses no replacement: nothing to fix with until a row is chosen.
  if (event->type() == QEvent::MouseButtonRelease && fixes_ && watched == fixes_->viewport() &&
      !fixes_->itemAt(static_cast<QMouseEvent*>(event)->position().toPoint()))
    fix_->setEnabled(false);
  return hostUiDialog::eventFilter(watched, event);
}

void StUiCheckStandardsDlg::checkStarted() {
  fixes_->clear();
  preview_->clear();
  problem_->clear();
  for (QWidget* w : QList<QWidget*>{fix_, fixes_, preview_, ignore_}) w->setEnabled(true);
}

void StUiCheckStandardsDlg::errorFound(st::StDWSPlugin* plugin, st::StError* error) {
  {
    const QSignalBlocker blocker(fixes_);
    fixes_->clear();
  }
  ignore_->setChecked(false);
  status_->clear();
  plugin_ = plugin;
  error_ = plugin ? plugin->getError() : st::StErrorPtr();
  if (error_.isNull()) error_ = error;
  if (error_.isNull() || plugin_.isNull()) return;

  problem_->setPlainText(toQString(error_->name()) + QStringLiteral("\r\n") +
                         toQString(error_->description()));
  problem_->moveCursor(QTextCursor::Start);
  problem_->ensureCursorVisible();

  OdArray<st::StFixPtr> fixes;
  int recommended = -1;
  plugin_->getAllFixes(error_.get(), fixes, recommended);
  st::StSettingsStorage* settings = stSettingsStorage();
  const OdString preferred =
      settings && settings->hasPreferredFile() ? settings->getPreferredFile() : OdString();
  rows_ = StUiFixRows(fixes, recommended, preferred);

  fixes_->setHeaderLabels({toQString(error_->reason()), stringOf(kStrColumnStandardsFile)});
  QTreeWidgetItem* mark = nullptr;
  {
    const QSignalBlocker blocker(fixes_);
    const QIcon recommendedIcon = stIcon(111);
    const QIcon blank = blankIcon();
    for (int i = 0; i < static_cast<int>(rows_.rows().size()); ++i) {
      const StUiFixRows::Row& row = rows_.rows()[i];
      auto* item = new QTreeWidgetItem(fixes_, {toQString(row.name), toQString(row.fileName)});
      item->setData(0, Qt::UserRole, i);
      item->setIcon(0, i == rows_.recommendedRow() ? recommendedIcon : blank);
      if (i == rows_.recommendedRow()) mark = item;
    }
    fixes_->setCurrentItem(mark);
    if (mark) fixes_->scrollToItem(mark);
  }

  const std::uint32_t flags = error_->flags();
  if ((flags & st::kStErrorAlwaysReported) && !mark) {
    fix_->setEnabled(false);
    preview_->clear();
  } else if (flags & st::kStErrorFixable) {
    previewRow(mark);
  }
  if (flags & (st::kStErrorIgnored | st::kStErrorCountedAsIgnored)) {
    if (st::hasObjectIgnoredMark(error_->objectId())) {
      ignore_->setChecked(true);
      showIgnoredBy();
    } else {
      ignore_->setChecked(false);
      status_->clear();
    }
  }
  zoom_->setEnabled(true);
  highlight(true, false);
}

void StUiCheckStandardsDlg::previewRow(QTreeWidgetItem* item) {
  preview_->clear();
  fix_->setEnabled(true);
  if (!item || error_.isNull() || plugin_.isNull()) return;
  const int index = item->data(0, Qt::UserRole).toInt();
  if (index < 0 || index >= static_cast<int>(rows_.rows().size())) return;
  st::StFix* fix = rows_.rows()[index].fix.get();
  if (!fix) return;

  OdArray<OdString> names;
  OdArray<OdVariant> current;
  plugin_->getPropertyDiffs(error_.get(), fix, names, current, OdArray<OdVariant>());
  const st::StPropertyFormatterPtr formatter = plugin_->propertyFormatter();
  struct Line {
    OdString name, current, standard;
  };
  std::vector<Line> lines;
  for (unsigned i = 0; i < names.length(); ++i) {
    OdVariant standard;
    fix->propertyValue(names[i], standard);
    auto [now, wanted] = valueTexts(formatter.get(), names[i],
                                    i < current.length() ? current[i] : OdVariant(), standard);
    lines.push_back({names[i], now, wanted});
  }
  // The list reads in the order of its property column.
  std::stable_sort(lines.begin(), lines.end(),
                   [](const Line& a, const Line& b) { return a.name.iCollate(b.name) < 0; });
  for (const Line& line : lines)
    new QTreeWidgetItem(preview_,
                        {toQString(line.name), toQString(line.current), toQString(line.standard)});
}

void StUiCheckStandardsDlg::onFix() {
  if (plugin_.isNull()) return;
  QTreeWidgetItem* item = fixes_->currentItem();
  const int index = item ? item->data(0, Qt::UserRole).toInt() : -1;
  st::StFix* fix = index >= 0 && index < static_cast<int>(rows_.rows().size())
                       ? rows_.rows()[index].fix.get()
                       : nullptr;
  if (fix && !error_.isNull()) guarded([&] { plugin_->fixError(error_.get(), fix); });
  // A plug-in that is through waits for Next; otherwise the next problem comes at once.
  if (!plugin_->done() && manager_) manager_->nextError();
}

void StUiCheckStandardsDlg::onNext() {
  if (!manager_) return;
  if (!manager_->isCheckComplete()) {
    ignore_->setChecked(false);
    status_->clear();
    manager_->nextError();
  } else {
    manager_->resetCheck();
    manager_->startCheck();
  }
}

void StUiCheckStandardsDlg::onIgnoreClicked(bool checked) {
  if (error_.isNull()) return;
  const OdDbObjectId id = error_->objectId();
  if (checked) {
    error_->setFlags(error_->flags() | st::kStErrorIgnored);
    guarded([&] { st::writeObjectIgnoredMark(id, st::getLogin()); });
    showIgnoredBy();
  } else {
    error_->setFlags(error_->flags() & ~st::kStErrorIgnored);
    guarded([&] {
      if (st::hasObjectIgnoredMark(id)) st::eraseObjectIgnoredMark(id);
    });
    status_->clear();
  }
}

void StUiCheckStandardsDlg::showIgnoredBy() {
  status_->setText(
      toQString(stFormatString(kStrIgnoredBy, st::getObjectIgnoredBy(error_->objectId()))));
}

void StUiCheckStandardsDlg::checkFinished() {
  ignore_->setChecked(false);
  status_->clear();
  fixes_->clear();
  preview_->clear();
  problem_->clear();
  for (QWidget* w : QList<QWidget*>{fix_, fixes_, preview_, ignore_, zoom_}) w->setEnabled(false);
  problem_->setPlainText(stringOf(kStrChooseNext));
  error_.release();
  plugin_.release();
  rows_ = StUiFixRows();
  highlight(false, false);
}

void StUiCheckStandardsDlg::checkStatistics(std::uint32_t found, std::uint32_t fixedAutomatically,
                                            std::uint32_t fixedManually, std::uint32_t ignored) {
  QString message = stringOf(kStrCheckComplete);
  for (const QString& line :
       {countLine(kStrProblemsFound, found), countLine(kStrFixedAutomatically, fixedAutomatically),
        countLine(kStrFixedManually, fixedManually), countLine(kStrIgnoredInCheck, ignored)})
    message = fillFirst(message, line);
  if (HostServices* host = hostServices())
    host->messageBox(toOdString(message), stLoadString(kStrCheckCompleteCaption), HostButtons::kOk,
                     HostIcon::kNone);
}

void StUiCheckStandardsDlg::reject() {
  onClose();
}

void StUiCheckStandardsDlg::onClose() {
  if (manager_ && !manager_->isCheckComplete()) {
    HostServices* host = hostServices();
    if (!host || host->messageBox(stLoadString(kStrCheckNotFinished),
                                  stLoadString(kStrCheckNotFinishedCaption), HostButtons::kOkCancel,
                                  HostIcon::kWarning) != kHostOk)
      return;
  }
  if (manager_) manager_->resetCheck();
  highlight(false, false);
  done(kClosed);
}

void StUiCheckStandardsDlg::highlight(bool users, bool zoom) {
  HostServices* host = hostServices();
  if (!host) return;
  if (users && !error_.isNull()) {
    const OdDbObjectId id = error_->objectId();
    if (OdDbDatabase* db = id.database()) {
      // A host without a view of the drawing answers false; there is nothing else to show.
      host->highlightObjects(db, stObjectUsers(id), zoom);
      litDatabase_ = db;
    }
  } else if (litDatabase_) {
    host->highlightObjects(litDatabase_, OdDbObjectIdArray(), false);
    litDatabase_ = nullptr;
  }
}

}  // namespace stui
