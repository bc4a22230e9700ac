#include "StUiConfigureStandardsDlg.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StManagerCache.h"
#include "StUiPluginsTabDlg.h"
#include "StUiSettingsDlg.h"
#include "StUiStandardsList.h"
#include "StUiStandardsTabDlg.h"

namespace stui {

namespace {

QString text(const wchar_t* english) {
  HostServices* host = hostServices();
  return toQString(host ? host->translate(english) : OdString(english));
}

OdDbDatabase* currentDrawing() {
  HostServices* host = hostServices();
  return host ? host->currentDatabase() : nullptr;
}

}  // namespace

StUiConfigureStandardsDlg::StUiConfigureStandardsDlg(QWidget* parent)
    : hostUiDialog(QStringLiteral("Configure Standards"), QStringLiteral("IDH_STANDARDS"), parent),
      db_(currentDrawing()) {
  build();
}

StUiConfigureStandardsDlg::~StUiConfigureStandardsDlg() = default;

void StUiConfigureStandardsDlg::build() {
  setObjectName(QStringLiteral("ConfigureStandards"));
  auto* layout = new QVBoxLayout(this);
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName(QStringLiteral("tabs"));
  // The buttons first, so that the pages' first updateState finds them.
  check_ = new QPushButton(text(L"Check Standards..."), this);
  settings_ = new QPushButton(text(L"Settings..."), this);
  ok_ = new QPushButton(text(L"OK"), this);
  cancel_ = new QPushButton(text(L"Cancel"), this);
  helpButton_ = new QPushButton(text(L"Help"), this);
  ok_->setDefault(true);
  plugins_ = new StUiPluginsTabDlg(this, tabs_);
  standards_ = new StUiStandardsTabDlg(db_, this, tabs_);
  tabs_->addTab(standards_, text(L"Standards"));
  tabs_->addTab(plugins_, text(L"Plugins"));
  layout->addWidget(tabs_, 1);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(check_);
  buttons->addWidget(settings_);
  buttons->addStretch();
  for (QPushButton* b : {ok_, cancel_, helpButton_}) buttons->addWidget(b);
  layout->addLayout(buttons);

  const QFontMetrics metrics(font());
  resize(423 * metrics.averageCharWidth() / 4, 226 * metrics.height() / 8);

  connect(check_, &QPushButton::clicked, this, &StUiConfigureStandardsDlg::checkStandards);
  connect(settings_, &QPushButton::clicked, this, [this] {
    StUiSettingsDlg dialog(this);
    dialog.runModal();
  });
  connect(ok_, &QPushButton::clicked, this, &StUiConfigureStandardsDlg::accept);
  connect(cancel_, &QPushButton::clicked, this, &StUiConfigureStandardsDlg::reject);
  connect(helpButton_, &QPushButton::clicked, this, &StUiConfigureStandardsDlg::help);
  updateState();
}

void StUiConfigureStandardsDlg::updateState() {
  if (!check_ || !standards_ || !plugins_) return;
  check_->setEnabled(!standards_->files().empty() && plugins_->checkedCount() > 0);
}

void StUiConfigureStandardsDlg::help() {
  HostServices* host = hostServices();
  if (host && !helpKey().isEmpty())
    host->showHelp(toOdString(helpKey()));
  else
    hostUiDialog::help();
}

bool StUiConfigureStandardsDlg::applyPages() {
  st::StManagerCache* cache = st::stManagerCache();
  st::StManager* manager = cache && db_ ? cache->getManager(db_) : nullptr;
  return plugins_->apply(manager) && standards_->apply();
}

void StUiConfigureStandardsDlg::accept() {
  if (applyPages()) hostUiDialog::accept();
}

void StUiConfigureStandardsDlg::reject() {
  done(kCancelled);
}

void StUiConfigureStandardsDlg::checkStandards() {
  applyPages();
  done(kCheckStandards);
  if (HostServices* host = hostServices()) host->sendCommand(L"CHECKSTANDARDS ");
}

}  // namespace stui
