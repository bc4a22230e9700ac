#include "StUiPluginsTabDlg.h"

#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QPixmap>
#include <QTextEdit>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "IStUiConfigureStandardsDlg.h"
#include "OdRxClass.h"
#include "StAppServices.h"
#include "StIcon.h"
#include "StManager.h"
#include "StMessage.h"
#include "StPluginInfo.h"
#include "StPluginRegistrator.h"
#include "StStringTable.h"

namespace stui {

namespace {

QString text(const wchar_t* english) {
  HostServices* host = hostServices();
  return toQString(host ? host->translate(english) : OdString(english));
}

// The plug-in's own image, freed once copied; null when it has none.
QIcon iconOf(const st::StDWSPlugin& plugin) {
  st::StIconHandle handle = plugin.icon();
  const st::StIcon* icon = st::stIconImage(handle);
  QIcon out;
  if (icon) {
    QImage image(st::StIcon::kSize, st::StIcon::kSize, QImage::Format_ARGB32);
    for (int y = 0; y < st::StIcon::kSize; ++y)
      for (int x = 0; x < st::StIcon::kSize; ++x)
        image.setPixel(x, y, icon->pixels[static_cast<std::size_t>(y * st::StIcon::kSize + x)]);
    out = QIcon(QPixmap::fromImage(image));
  }
  st::stFreeIcon(handle);
  return out;
}

}  // namespace

StUiPluginsTabDlg::StUiPluginsTabDlg(IStUiConfigureStandardsDlg* owner, QWidget* parent)
    : QWidget(parent), owner_(owner) {
  build();
  fill();
}

StUiPluginsTabDlg::~StUiPluginsTabDlg() = default;

void StUiPluginsTabDlg::build() {
  setObjectName(QStringLiteral("PluginsPage"));
  auto* grid = new QGridLayout(this);
  auto* listLabel = new QLabel(text(L"Plug-ins used when checking standards:"), this);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("plugins"));
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->setIconSize(QSize(16, 16));
  listLabel->setBuddy(list_);
  auto* descriptionLabel = new QLabel(text(L"Description:"), this);
  description_ = new QTextEdit(this);
  description_->setObjectName(QStringLiteral("description"));
  description_->setReadOnly(true);
  description_->setStyleSheet(QStringLiteral("QTextEdit { background: rgb(228, 228, 228); }"));
  descriptionLabel->setBuddy(description_);
  grid->addWidget(listLabel, 0, 0);
  grid->addWidget(list_, 1, 0);
  grid->addWidget(descriptionLabel, 0, 1);
  grid->addWidget(description_, 1, 1);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);

  connect(list_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
    describe(list_->row(item));
    if (owner_) owner_->updateState();
  });
  connect(list_, &QListWidget::currentRowChanged, this, [this](int row) {
    describe(row);
    if (owner_) owner_->updateState();
  });
}

void StUiPluginsTabDlg::fill() {
  st::StPluginRegistrator* registry = st::stPluginRegistrator();
  if (!registry) return;
  const QSignalBlocker blocker(list_);
  for (const st::StPluginInfo& listed : registry->getPluginInfos()) {
    st::StPluginInfo info;
    if (!registry->getPluginInfo(listed.className, info)) continue;
    OdRxObjectPtr created = odrxCreateObject(listed.className);
    st::StDWSPluginPtr plugin = st::StDWSPlugin::cast(created.get());
    if (plugin.isNull()) {
      if (HostServices* host = hostServices())
        host->cmdPrint(stFormatString(kStrFailedToCreatePlugin, listed.className));
      continue;
    }
    auto* item = new QListWidgetItem(iconOf(*plugin), toQString(plugin->name()), list_);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(info.inUse ? Qt::Checked : Qt::Unchecked);
    plugins_.push_back(plugin);
  }
}

void StUiPluginsTabDlg::describe(int row) {
  st::StDWSPlugin* plugin = pluginAt(row);
  if (!plugin) return;
  description_->setPlainText(
      toQString(stLoadString(kStrPurpose)) + toQString(plugin->purpose()) + "\n\n" +
      toQString(stLoadString(kStrVersion)) + toQString(plugin->version()) + "\n\n" +
      toQString(stLoadString(kStrPublisher)) + toQString(plugin->publisher()) + "\n" +
      toQString(plugin->furtherInfo()));
}

st::StDWSPlugin* StUiPluginsTabDlg::pluginAt(int row) const {
  return row >= 0 && static_cast<std::size_t>(row) < plugins_.size()
             ? plugins_[static_cast<std::size_t>(row)].get()
             : nullptr;
}

int StUiPluginsTabDlg::checkedCount() const {
  int count = 0;
  for (int row = 0; row < list_->count(); ++row)
    if (list_->item(row)->checkState() == Qt::Checked) ++count;
  return count;
}

bool StUiPluginsTabDlg::apply(st::StManager* manager) {
  if (checkedCount() == 0) {
    if (st::StMessage* messages = st::stMessage()) messages->showError(st::kStMsgNoPluginChecked);
    return false;
  }
  st::StPluginRegistrator* registry = st::stPluginRegistrator();
  for (int row = 0; row < list_->count(); ++row) {
    st::StDWSPlugin* plugin = pluginAt(row);
    const OdString className = plugin->isA()->name();
    if (list_->item(row)->checkState() == Qt::Checked) {
      if (registry) registry->setPluginInUse(className);
      if (manager) manager->registerPlugin(plugin);
    } else {
      if (registry) registry->setPluginNotInUse(className);
      if (manager) manager->unregisterPlugin(plugin);
    }
  }
  return true;
}

}  // namespace stui
