#include "StUiSettingsDlg.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StSettingsStorage.h"

namespace stui {

namespace {

// An interface text in the host's language.
QString text(const wchar_t* english) {
  HostServices* host = hostServices();
  return toQString(host ? host->translate(english) : OdString(english));
}

// Object names of the command boxes, in the model's order.
const char* const kCommandNames[] = {"checkOnSave", "checkOnSaveAs", "checkOnImport", "checkOnPlot",
                                     "checkOnETransmit"};

// Room for a standards file name of ordinary length, so that the list neither squeezes
// names nor grows with a long one.
constexpr int kFileNameChars = 32;

}  // namespace

StUiSettingsDlg::StUiSettingsDlg(QWidget* parent) : StUiSettingsDlg(stSettingsStorage(), parent) {}

StUiSettingsDlg::StUiSettingsDlg(st::StSettingsStorage* storage, QWidget* parent)
    : hostUiDialog(QStringLiteral("Standards Settings"), QStringLiteral("IDH_STANDARDSSETTINGS"),
                   parent),
      model_(storage) {
  build();
  showModel();
  // Bound only now, so that what the dialog showed when it opened is no choice of the user.
  connectControls();
}

StUiSettingsDlg::~StUiSettingsDlg() = default;

void StUiSettingsDlg::build() {
  setObjectName(QStringLiteral("StandardsSettings"));

  auto* notification = new QGroupBox(text(L"Notification settings"), this);
  auto* notificationLayout = new QVBoxLayout(notification);
  // Exclusive, yet it may start with no button checked: a stored mode outside 0..2 shows so.
  modes_ = new QButtonGroup(this);
  const wchar_t* const modeTexts[] = {L"Disable standards notifications",
                                      L"Display alert upon standards violation",
                                      L"Display standards status bar icon"};
  const char* const modeNames[] = {"notifyNone", "notifyAlert", "notifyStatusBar"};
  for (int mode = 0; mode < 3; ++mode) {
    auto* button = new QRadioButton(text(modeTexts[mode]), notification);
    button->setObjectName(modeNames[mode]);
    modes_->addButton(button, mode);
    notificationLayout->addWidget(button);
  }

  auto* commands = new QGroupBox(text(L"Check standards by command:"), this);
  auto* commandLayout = new QGridLayout(commands);
  const auto& boxes = StUiSettingsModel::commandBoxes();
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    commands_[i] = new QCheckBox(text(boxes[i].text), commands);
    commands_[i]->setObjectName(kCommandNames[i]);
    // Save, Save as and Import on the first row; Plot and eTransmit under them.
    const int row = i < 3 ? 0 : 1;
    const int column = i < 3 ? static_cast<int>(i) : static_cast<int>(i) - 3;
    commandLayout->addWidget(commands_[i], row, column);
  }
  // The boxes keep their natural spacing at the left rather than spreading over the group.
  commandLayout->setColumnStretch(3, 1);

  auto* check = new QGroupBox(text(L"Check Standards settings"), this);
  auto* checkLayout = new QVBoxLayout(check);
  autoFix_ = new QCheckBox(text(L"Automatically fix non-standard properties"), check);
  autoFix_->setObjectName("autoFix");
  showIgnored_ = new QCheckBox(text(L"Show ignored problems"), check);
  showIgnored_->setObjectName("showIgnored");
  preferredLabel_ = new QLabel(text(L"Preferred standards file to use for replacements:"), check);
  preferredLabel_->setObjectName("preferredFileLabel");
  preferredFile_ = new QComboBox(check);
  preferredFile_->setObjectName("preferredFile");
  preferredFile_->setEditable(false);
  preferredFile_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  preferredFile_->setMinimumContentsLength(kFileNameChars);
  preferredLabel_->setBuddy(preferredFile_);
  checkLayout->addWidget(autoFix_);
  checkLayout->addWidget(showIgnored_);
  checkLayout->addSpacing(checkLayout->spacing());
  checkLayout->addWidget(preferredLabel_);
  checkLayout->addWidget(preferredFile_);

  buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  ok_ = buttons_->button(QDialogButtonBox::Ok);
  ok_->setObjectName("ok");
  cancel_ = buttons_->button(QDialogButtonBox::Cancel);
  cancel_->setObjectName("cancel");
  help_ = addHelpButton(buttons_);
  help_->setObjectName("help");
  ok_->setDefault(true);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(notification);
  layout->addWidget(commands);
  layout->addWidget(check);
  layout->addWidget(buttons_);
  // The dialog keeps the size its contents ask for; there is nothing to gain by stretching it.
  layout->setSizeConstraint(QLayout::SetFixedSize);

  // Tab goes through the controls in the order they read.
  QWidget* order[] = {modes_->button(0), modes_->button(1),
                      modes_->button(2), commands_[0],
                      commands_[1],      commands_[2],
                      commands_[3],      commands_[4],
                      autoFix_,          showIgnored_,
                      preferredFile_,    ok_,
                      cancel_,           help_};
  for (std::size_t i = 1; i < std::size(order); ++i) setTabOrder(order[i - 1], order[i]);
}

void StUiSettingsDlg::showModel() {
  if (QAbstractButton* mode = modes_->button(model_.checkedMode())) mode->setChecked(true);
  const auto& boxes = StUiSettingsModel::commandBoxes();
  for (std::size_t i = 0; i < boxes.size(); ++i)
    commands_[i]->setChecked(model_.commandChecked(boxes[i].bit));
  autoFix_->setChecked(model_.autoFix());
  showIgnored_->setChecked(model_.showIgnored());
  for (const StUiSettingsModel::FileItem& item : model_.fileItems()) {
    preferredFile_->addItem(toQString(item.text), toQString(item.path));
    // The full path tells apart files of one name in different folders.
    if (!item.path.isEmpty())
      preferredFile_->setItemData(preferredFile_->count() - 1, toQString(item.path),
                                  Qt::ToolTipRole);
  }
  preferredFile_->setCurrentIndex(model_.openingIndex());
}

void StUiSettingsDlg::connectControls() {
  connect(modes_, &QButtonGroup::idToggled, this, [this](int mode, bool checked) {
    if (checked) model_.setCheckedMode(mode);
  });
  const auto& boxes = StUiSettingsModel::commandBoxes();
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const unsigned bit = boxes[i].bit;
    connect(commands_[i], &QCheckBox::toggled, this,
            [this, bit](bool on) { model_.setCommandChecked(bit, on); });
  }
  connect(autoFix_, &QCheckBox::toggled, this, [this](bool on) { model_.setAutoFix(on); });
  connect(showIgnored_, &QCheckBox::toggled, this, [this](bool on) { model_.setShowIgnored(on); });
  connect(preferredFile_, &QComboBox::currentIndexChanged, this,
          [this](int index) { model_.selectFile(index); });
  connect(buttons_, &QDialogButtonBox::accepted, this, &StUiSettingsDlg::accept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &StUiSettingsDlg::reject);
}

void StUiSettingsDlg::accept() {
  model_.apply();
  hostUiDialog::accept();
}

QRadioButton* StUiSettingsDlg::notificationButton(int mode) const {
  return qobject_cast<QRadioButton*>(modes_->button(mode));
}

QCheckBox* StUiSettingsDlg::commandBox(unsigned bit) const {
  const auto& boxes = StUiSettingsModel::commandBoxes();
  for (std::size_t i = 0; i < boxes.size(); ++i)
    if (boxes[i].bit == bit) return commands_[i];
  return nullptr;
}

}  // namespace stui
