#include "StUiErrorReportDlg.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cstring>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "StEnumDWSPlugin.h"
#include "StIcon.h"
#include "StManager.h"
#include "StUiObjectUsers.h"

namespace stui {

namespace {

// An interface text in the host's language.
QString text(const wchar_t* english) {
  HostServices* host = hostServices();
  return toQString(host ? host->translate(english) : OdString(english));
}

constexpr int kColumnWidth = 150;
// An error's name ("The layer "..." is not in the standards") is the one text worth room of
// its own; the description takes what is left and shows whole as the row's tool tip.
constexpr int kWidestNameColumn = 340;
constexpr int kStartWidth = 880;
constexpr int kStartHeight = 460;

QTreeWidget* makeList(QWidget* parent, const char* name,
                      std::initializer_list<const wchar_t*> titles) {
  auto* list = new QTreeWidget(parent);
  list->setObjectName(name);
  list->setRootIsDecorated(false);
  list->setUniformRowHeights(true);
  list->setAllColumnsShowFocus(true);
  list->setSelectionMode(QAbstractItemView::SingleSelection);
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setIconSize(QSize(st::StIcon::kSize, st::StIcon::kSize));
  QStringList headers;
  for (const wchar_t* title : titles) headers << text(title);
  list->setHeaderLabels(headers);
  for (int column = 0; column < list->columnCount(); ++column)
    list->setColumnWidth(column, kColumnWidth);
  // Room for a few rows however small the window starts; the window's growth goes to the lists.
  list->setMinimumHeight(list->fontMetrics().height() * 5);
  list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  return list;
}

// A row of `list` at the top, so that the last added reads first. Each text also serves as
// its tool tip: a description is often longer than its column.
void addRow(QTreeWidget* list, std::size_t index, const QIcon& icon, const QStringList& texts) {
  auto* row = new QTreeWidgetItem(texts);
  row->setIcon(0, icon);
  row->setData(0, Qt::UserRole, static_cast<qulonglong>(index));
  for (int column = 0; column < texts.size(); ++column) row->setToolTip(column, texts[column]);
  list->insertTopLevelItem(0, row);
}

QString nameOf(const st::StErrorPtr& error) {
  return error.isNull() ? QString() : toQString(error->name());
}

QString descriptionOf(const st::StErrorPtr& error) {
  return error.isNull() ? QString() : toQString(error->description());
}

}  // namespace

StUiErrorReportDlg::StUiErrorReportDlg(st::StManager* manager,
                                       const st::StErrorAccumulatorImpl& found, QWidget* parent)
    : hostUiDialog(QStringLiteral("Standard Errors found"), QString(), parent),
      errors_(found.errors()),
      fixed_(found.fixedErrors()) {
  // The manager's plug-ins first, in its order, as the lists' icons are wanted anyway.
  if (manager)
    for (st::StEnumDWSPluginPtr it = manager->getPlugins(); !it.isNull() && it->current();
         it->next())
      addIcon(it->current().get());
  build();
  fill();
}

StUiErrorReportDlg::~StUiErrorReportDlg() = default;

void StUiErrorReportDlg::addIcon(st::StDWSPlugin* plugin) {
  if (!plugin) return;
  const OdString name = plugin->name();
  if (icons_.count(name)) return;
  QIcon icon;
  const st::StIconHandle handle = plugin->icon();
  if (const st::StIcon* image = st::stIconImage(handle)) {
    QImage pixels(st::StIcon::kSize, st::StIcon::kSize, QImage::Format_ARGB32);
    for (int y = 0; y < st::StIcon::kSize; ++y)
      std::memcpy(pixels.scanLine(y), image->pixels.data() + y * st::StIcon::kSize,
                  st::StIcon::kSize * sizeof(std::uint32_t));
    icon = QIcon(QPixmap::fromImage(pixels));
  }
  st::stFreeIcon(handle);
  icons_.emplace(name, icon);
}

QIcon StUiErrorReportDlg::iconOf(const OdString& name, st::StDWSPlugin* plugin) {
  auto found = icons_.find(name);
  if (found != icons_.end()) return found->second;
  addIcon(plugin);
  found = icons_.find(name);
  return found != icons_.end() ? found->second : QIcon();
}

void StUiErrorReportDlg::build() {
  setObjectName(QStringLiteral("StandardErrorsFound"));

  auto* unfixedLabel = new QLabel(text(L"List of non-fixed errors:"), this);
  unfixedList_ = makeList(this, "unfixedList", {L"Error", L"Description", L"Plugin"});
  unfixedLabel->setBuddy(unfixedList_);
  auto* fixedLabel = new QLabel(text(L"List of automatically fixed errors:"), this);
  fixedList_ = makeList(this, "fixedList", {L"Error", L"Description", L"Fixed by", L"Plugin"});
  fixedLabel->setBuddy(fixedList_);

  zoom_ = new QPushButton(text(L"Zoom to"), this);
  zoom_->setObjectName("zoomTo");
  zoom_->setEnabled(false);
  auto* buttons = new QDialogButtonBox(this);
  fix_ = buttons->addButton(text(L"Fix errors"), QDialogButtonBox::AcceptRole);
  fix_->setObjectName("fixErrors");
  close_ = buttons->addButton(text(L"Cancel"), QDialogButtonBox::RejectRole);
  close_->setObjectName("cancel");

  auto* buttonRow = new QHBoxLayout;
  buttonRow->addWidget(zoom_);
  buttonRow->addStretch(1);
  buttonRow->addWidget(buttons);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(unfixedLabel);
  layout->addWidget(unfixedList_, 1);
  layout->addSpacing(layout->spacing());
  layout->addWidget(fixedLabel);
  layout->addWidget(fixedList_, 1);
  layout->addLayout(buttonRow);

  // Room for an error's name and a fair part of its description, within the screen.
  const QRect screenRoom = screen()->availableGeometry();
  resize(std::min(kStartWidth, screenRoom.width() * 9 / 10),
         std::min(kStartHeight, screenRoom.height() * 9 / 10));
  setSizeGripEnabled(true);

  // Tab goes through the controls in the order they read.
  QWidget* order[] = {unfixedList_, fixedList_, zoom_, fix_, close_};
  for (std::size_t i = 1; i < std::size(order); ++i) setTabOrder(order[i - 1], order[i]);

  connect(fix_, &QPushButton::clicked, this, [this] { done(kFixErrors); });
  connect(close_, &QPushButton::clicked, this, &StUiErrorReportDlg::reject);
  connect(zoom_, &QPushButton::clicked, this, [this] { highlight(true); });
  connect(unfixedList_, &QTreeWidget::itemSelectionChanged, this,
          [this] { selectionChanged(unfixedList_); });
  connect(fixedList_, &QTreeWidget::itemSelectionChanged, this,
          [this] { selectionChanged(fixedList_); });
}

void StUiErrorReportDlg::fill() {
  for (std::size_t i = 0; i < errors_.size(); ++i) {
    const auto& entry = errors_[i];
    addRow(unfixedList_, i, iconOf(entry.pluginName, entry.plugin.get()),
           {nameOf(entry.error), descriptionOf(entry.error), toQString(entry.pluginName)});
  }
  for (std::size_t i = 0; i < fixed_.size(); ++i) {
    const auto& entry = fixed_[i];
    const QString fix = entry.fix.isNull() ? QString() : toQString(entry.fix->name());
    addRow(fixedList_, i, iconOf(entry.pluginName, entry.plugin.get()),
           {nameOf(entry.error), descriptionOf(entry.error), fix, toQString(entry.pluginName)});
  }
  fitColumns();
  if (errors_.empty()) {
    fix_->setEnabled(false);
    close_->setText(text(L"Close"));
    close_->setDefault(true);
    fixedList_->setFocus();
  } else {
    fix_->setDefault(true);
    unfixedList_->setFocus();
  }
}

void StUiErrorReportDlg::fitColumns() {
  // Both lists give the error's name one width, so that their columns line up.
  int nameWidth = kColumnWidth;
  for (QTreeWidget* list : {unfixedList_, fixedList_}) {
    list->resizeColumnToContents(0);
    nameWidth = std::max(nameWidth, std::min(list->columnWidth(0), kWidestNameColumn));
  }
  for (QTreeWidget* list : {unfixedList_, fixedList_}) {
    list->setColumnWidth(0, nameWidth);
    // "Fixed by" and "Plugin" hold short names: as wide as they need and no wider.
    for (int column = 2; column < list->columnCount(); ++column)
      list->resizeColumnToContents(column);
    QHeaderView* header = list->header();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(1, QHeaderView::Stretch);
  }
}

void StUiErrorReportDlg::selectionChanged(QTreeWidget* list) {
  const QList<QTreeWidgetItem*> selected = list->selectedItems();
  if (!selected.isEmpty()) {
    // One error at a time is shown in the drawing: the other list lets go of its row.
    QTreeWidget* other = list == unfixedList_ ? fixedList_ : unfixedList_;
    const QSignalBlocker quiet(other);
    other->clearSelection();
  } else if (!unfixedList_->selectedItems().isEmpty() || !fixedList_->selectedItems().isEmpty()) {
    return;
  }
  users_.clear();
  usersDb_ = nullptr;
  if (!selected.isEmpty()) {
    const auto& entries = list == unfixedList_ ? errors_ : fixed_;
    const auto index = selected.front()->data(0, Qt::UserRole).toULongLong();
    if (index < entries.size() && !entries[index].error.isNull()) {
      const OdDbObjectId id = entries[index].error->objectId();
      users_ = stObjectUsers(id);
      usersDb_ = id.database();
    }
  }
  zoom_->setEnabled(!users_.isEmpty());
  highlight(false);
}

void StUiErrorReportDlg::highlight(bool zoom) {
  HostServices* host = hostServices();
  if (!host) return;
  // A new error's object in another drawing (or none) leaves nothing lit in the old one.
  if (litDb_ && litDb_ != usersDb_) host->highlightObjects(litDb_, OdDbObjectIdArray(), false);
  litDb_ = nullptr;
  if (!usersDb_) return;
  // A host without a view of the drawing answers false; the report reads as well without it.
  host->highlightObjects(usersDb_, users_, zoom);
  litDb_ = usersDb_;
}

void StUiErrorReportDlg::done(int code) {
  if (litDb_) {
    if (HostServices* host = hostServices())
      host->highlightObjects(litDb_, OdDbObjectIdArray(), false);
    litDb_ = nullptr;
  }
  hostUiDialog::done(code);
}

void StUiErrorReportDlg::reject() {
  done(kClose);
}

}  // namespace stui
