#include "StUiStandardsTabDlg.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QStyle>
#include <QTextEdit>
#include <QUrl>
#include <QVBoxLayout>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "IStUiConfigureStandardsDlg.h"
#include "OdDbDatabase.h"
#include "OdError.h"
#include "StAppServices.h"
#include "StDbReaderWriter.h"
#include "StDwsFileDialog.h"
#include "StFileSystemService.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StMessage.h"
#include "StStandardsPaths.h"
#include "StStringTable.h"
#include "StUiIcons.h"

namespace stui {

namespace {

constexpr int kIconPresent = 113;
constexpr int kIconMissing = 114;

QString text(const wchar_t* english) {
  HostServices* host = hostServices();
  return toQString(host ? host->translate(english) : OdString(english));
}

QPushButton* iconButton(QStyle::StandardPixmap pixmap, const QString& name, QWidget* parent) {
  auto* button = new QPushButton(parent);
  button->setIcon(parent->style()->standardIcon(pixmap));
  button->setAccessibleName(name);
  button->setToolTip(name);
  button->setFixedWidth(button->sizeHint().height() * 3 / 2);
  return button;
}

// The local files of a drag, or none when it carries anything else.
QStringList droppedFiles(const QMimeData* data) {
  QStringList files;
  if (!data || !data->hasUrls()) return files;
  for (const QUrl& url : data->urls()) {
    if (!url.isLocalFile()) return {};
    files << url.toLocalFile();
  }
  return files;
}

}  // namespace

StUiStandardsTabDlg::StUiStandardsTabDlg(OdDbDatabase* db, IStUiConfigureStandardsDlg* owner,
                                         QWidget* parent)
    : QWidget(parent), db_(db), owner_(owner) {
  build();
  fill();
}

StUiStandardsTabDlg::~StUiStandardsTabDlg() = default;

void StUiStandardsTabDlg::build() {
  setObjectName(QStringLiteral("StandardsPage"));
  auto* grid = new QGridLayout(this);
  auto* listLabel = new QLabel(text(L"Standards files associated with the current drawing:"), this);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("standardsFiles"));
  list_->setViewMode(QListView::ListMode);
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->setIconSize(QSize(16, 16));
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  list_->setAcceptDrops(true);
  list_->setDragDropMode(QAbstractItemView::DropOnly);
  list_->viewport()->installEventFilter(this);
  listLabel->setBuddy(list_);

  add_ = iconButton(QStyle::SP_FileDialogNewFolder, QStringLiteral("+"), this);
  remove_ = iconButton(QStyle::SP_DialogDiscardButton, QStringLiteral("-"), this);
  up_ = iconButton(QStyle::SP_ArrowUp, QStringLiteral("Up"), this);
  down_ = iconButton(QStyle::SP_ArrowDown, QStringLiteral("Down"), this);
  locate_ = new QPushButton(text(L"Locate..."), this);
  locate_->setObjectName(QStringLiteral("locate"));
  auto* buttons = new QVBoxLayout;
  for (QPushButton* b : {add_, remove_, up_, down_}) buttons->addWidget(b);
  buttons->addStretch();

  auto* descriptionLabel = new QLabel(text(L"Description:"), this);
  description_ = new QTextEdit(this);
  description_->setObjectName(QStringLiteral("description"));
  description_->setReadOnly(true);
  description_->setStyleSheet(QStringLiteral("QTextEdit { background: rgb(228, 228, 228); }"));
  descriptionLabel->setBuddy(description_);

  grid->addWidget(listLabel, 0, 0);
  grid->addWidget(list_, 1, 0);
  grid->addLayout(buttons, 1, 1);
  grid->addWidget(descriptionLabel, 0, 2);
  grid->addWidget(description_, 1, 2);
  grid->addWidget(locate_, 2, 0, Qt::AlignLeft);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(2, 1);

  connect(add_, &QPushButton::clicked, this, &StUiStandardsTabDlg::onAdd);
  connect(remove_, &QPushButton::clicked, this, &StUiStandardsTabDlg::onRemove);
  connect(up_, &QPushButton::clicked, this, [this] { onMove(true); });
  connect(down_, &QPushButton::clicked, this, [this] { onMove(false); });
  connect(locate_, &QPushButton::clicked, this, [this] { locate(list_->currentRow()); });
  connect(list_, &QListWidget::currentRowChanged, this, &StUiStandardsTabDlg::selectionChanged);
  connect(list_, &QListWidget::itemClicked, this, &StUiStandardsTabDlg::selectionChanged);
  connect(list_, &QListWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    QListWidgetItem* item = list_->itemAt(at);
    if (!item || item->data(Qt::UserRole).toBool()) return;
    const int row = list_->row(item);
    QMenu menu(this);
    connect(menu.addAction(text(L"Locate...")), &QAction::triggered, this,
            [this, row] { locate(row); });
    menu.exec(list_->viewport()->mapToGlobal(at));
  });
}

void StUiStandardsTabDlg::fill() {
  if (db_) {
    st::StDbReaderWriterPtr reader = st::StDbReaderWriter::createObject();
    OdArray<OdString> paths;
    if (reader->setDatabase(db_) && reader->hasStandardsEntry() && reader->readStandardFiles(paths))
      files_ = StUiStandardsList(paths);
  }
  showRows(files_.empty() ? -1 : 0);
  list_->setFocus();
}

void StUiStandardsTabDlg::showRows(int row) {
  {
    const QSignalBlocker blocker(list_);
    list_->clear();
    st::StFileSystemService* files = st::stFileSystemService();
    for (int i = 0; i < files_.size(); ++i) {
      const OdString place = placeOf(i);
      const bool exists = files && files->getFileInfo(place).exists;
      auto* item = new QListWidgetItem(stIcon(exists ? kIconPresent : kIconMissing),
                                       toQString(files_.at(i).name), list_);
      item->setToolTip(toQString(place));
      item->setData(Qt::UserRole, exists);
    }
    list_->setCurrentRow(row);
  }
  selectionChanged();
}

void StUiStandardsTabDlg::selectionChanged() {
  const int row = list_->currentRow();
  const StUiStandardsList::Buttons buttons = files_.buttonsFor(row);
  remove_->setEnabled(buttons.remove);
  up_->setEnabled(buttons.up);
  down_->setEnabled(buttons.down);
  QListWidgetItem* item = list_->item(row);
  locate_->setEnabled(item && !item->data(Qt::UserRole).toBool());
  describe(row);
  if (owner_) owner_->updateState();
}

void StUiStandardsTabDlg::describe(int row) {
  description_->clear();
  st::StFileSystemService* files = st::stFileSystemService();
  if (row < 0 || row >= files_.size() || !files) return;
  const st::StFileInfo info = files->getFileInfo(placeOf(row));
  QString out = toQString(stLoadString(kStrStandardsFileLabel)) + toQString(info.path) + "\n\n";
  if (info.exists)
    out += toQString(stLoadString(kStrLastModified)) + toQString(info.lastModified) + "\n\n";
  description_->setPlainText(out);
}

OdString StUiStandardsTabDlg::placeOf(int row) const {
  return st::StStandardsPaths::resolve(files_.at(row).path, db_);
}

bool StUiStandardsTabDlg::readable(const OdString& path) {
  try {
    OdDbDatabase::readFile(path.toUtf8());
    return true;
  } catch (const OdError& error) {
    if (HostServices* host = hostServices())
      host->messageBox(error.description(), OdString(L"Configure Standards"), HostButtons::kOk,
                       HostIcon::kError);
    return false;
  }
}

bool StUiStandardsTabDlg::accepted(const OdString& path, int except) {
  if (files_.isDuplicate(path, except)) {
    if (st::StMessage* messages = st::stMessage())
      messages->showMessage(st::kStMsgDuplicateFileName);
    return false;
  }
  return readable(path);
}

bool StUiStandardsTabDlg::addFile(const OdString& path) {
  if (!accepted(path, -1) || !files_.add(path)) return false;
  showRows(files_.size() - 1);
  return true;
}

bool StUiStandardsTabDlg::locateFile(int row, const OdString& path) {
  if (row < 0 || row >= files_.size() || !accepted(path, row) || !files_.replace(row, path))
    return false;
  showRows(row);
  return true;
}

void StUiStandardsTabDlg::locate(int row) {
  OdString path;
  if (row >= 0 && row < files_.size() && st::showSelectDwsFileDialog(this, path))
    locateFile(row, path);
  list_->setFocus();
}

void StUiStandardsTabDlg::onAdd() {
  OdString path;
  if (st::showSelectDwsFileDialog(this, path)) addFile(path);
  list_->setFocus();
}

void StUiStandardsTabDlg::onRemove() {
  const int row = list_->currentRow();
  if (!files_.remove(row)) return;
  showRows(std::min(row, files_.size() - 1));
}

void StUiStandardsTabDlg::onMove(bool up) {
  const int row = up ? files_.moveUp(list_->currentRow()) : files_.moveDown(list_->currentRow());
  if (row >= 0) showRows(row);
}

bool StUiStandardsTabDlg::eventFilter(QObject* watched, QEvent* event) {
  if (watched == list_->viewport()) {
    switch (event->type()) {
      case QEvent::DragEnter:
      case QEvent::DragMove: {
        auto* drag = static_cast<QDropEvent*>(event);
        if (!droppedFiles(drag->mimeData()).isEmpty())
          drag->acceptProposedAction();
        else
          drag->ignore();
        return true;
      }
      case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        const QStringList dropped = droppedFiles(drop->mimeData());
        if (dropped.isEmpty()) return true;
        drop->acceptProposedAction();
        for (const QString& file : dropped)
          if (!addFile(toOdString(file))) break;
        return true;
      }
      default:
        break;
    }
  }
  return QWidget::eventFilter(watched, event);
}

bool StUiStandardsTabDlg::apply() {
  st::StManagerCache* cache = st::stManagerCache();
  if (!db_ || !cache) return true;
  const OdArray<OdString> paths = files_.paths();
  if (cache->hasManager(db_)) {
    if (st::StManager* manager = cache->getManager(db_)) manager->setStandardsFiles(db_, paths);
  } else if (!paths.empty()) {
    st::StDbReaderWriterPtr writer = st::StDbReaderWriter::createObject();
    if (writer->setDatabase(db_) && writer->writeStandardFiles(paths)) cache->attachDatabase(db_);
  }
  if (paths.empty()) {
    if (cache->hasManager(db_)) cache->detachDatabase(db_);
  } else if (st::StManager* manager = cache->getManager(db_)) {
    manager->restartCheck();
  }
  return true;
}

}  // namespace stui
