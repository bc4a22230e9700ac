#include "StUiSettingsModel.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "StAppServices.h"
#include "StManager.h"
#include "StManagerCache.h"
#include "StRecordLookup.h"
#include "StSettingsStorage.h"

namespace stui {

namespace {

bool isMode(int mode) {
  return mode == st::kStNotifyNone || mode == st::kStNotifyAlert || mode == st::kStNotifyStatusBar;
}

unsigned allCommandBits() {
  unsigned bits = 0;
  for (const auto& box : StUiSettingsModel::commandBoxes()) bits |= box.bit;
  return bits;
}

OdString translated(const wchar_t* text) {
  HostServices* host = hostServices();
  return host ? host->translate(text) : OdString(text);
}

// True when `text` begins with `prefix`, case ignored.
bool startsWithNoCase(const OdString& text, const OdString& prefix) {
  return text.left(prefix.getLength()).iCompare(prefix) == 0;
}

}  // namespace

const std::array<StUiSettingsModel::CommandBox, 5>& StUiSettingsModel::commandBoxes() {
  static const std::array<CommandBox, 5> boxes{{
      {L"Save", st::kStCheckOnSave},
      {L"Save as", st::kStCheckOnSaveAs},
      {L"Import", st::kStCheckOnImport},
      {L"Plot", st::kStCheckOnPlot},
      {L"eTransmit", st::kStCheckOnETransmit},
  }};
  return boxes;
}

StUiSettingsModel::StUiSettingsModel(st::StSettingsStorage* storage) : storage_(storage) {
  HostServices* host = hostServices();
  OdDbDatabase* db = host ? host->currentDatabase() : nullptr;
  OdArray<OdString> files;
  if (db) {
    st::StManagerCache* cache = st::stManagerCache();
    st::StManager* manager = cache ? cache->getManager(db) : nullptr;
    if (manager) files = manager->getStandardsFiles(db);
  }
  load(translated(L"None"), db ? &files : nullptr);
}

StUiSettingsModel::StUiSettingsModel(st::StSettingsStorage* storage, const OdString& noneText,
                                     const OdArray<OdString>* drawingFiles)
    : storage_(storage) {
  load(noneText, drawingFiles);
}

void StUiSettingsModel::load(const OdString& noneText, const OdArray<OdString>* drawingFiles) {
  if (storage_) {
    autoFix_ = storage_->getAutoFixProperties();
    showIgnored_ = storage_->getShowIgnoredProblems();
    mode_ = storage_->getNotificationMode();
    commands_ = storage_->getAutoFixCommands() & allCommandBits();
    storedPreferred_ = storage_->getPreferredFile();
  }
  listFiles(noneText, drawingFiles);
}

void StUiSettingsModel::listFiles(const OdString& noneText, const OdArray<OdString>* drawingFiles) {
  items_.push_back({noneText, OdString()});
  openingIndex_ = 0;
  const OdString& preferred = storedPreferred_;
  if (drawingFiles) {
    bool found = false;
    for (unsigned i = 0; i < drawingFiles->length(); ++i) {
      const OdString& path = (*drawingFiles)[i];
      items_.push_back({st::getFileName(path, false), path});
      found = found || (!preferred.isEmpty() && path == preferred);
    }
    if (found) {
      // The list's own search: from the item after "None" to the end, then round to it.
      const OdString name = st::getFileName(preferred, false);
      const int count = static_cast<int>(items_.size());
      for (int step = 1; step <= count; ++step) {
        const int index = step % count;
        if (startsWithNoCase(items_[index].text, name)) {
          openingIndex_ = index;
          break;
        }
      }
      return;
    }
  }
  if (preferred.isEmpty()) return;
  items_.push_back({st::getFileName(preferred, false), preferred});
  openingIndex_ = static_cast<int>(items_.size()) - 1;
}

int StUiSettingsModel::checkedMode() const {
  return isMode(mode_) ? mode_ : -1;
}

void StUiSettingsModel::setCheckedMode(int mode) {
  if (isMode(mode)) mode_ = mode;
}

void StUiSettingsModel::setCommandChecked(unsigned bit, bool checked) {
  bit &= allCommandBits();
  commands_ = checked ? (commands_ | bit) : (commands_ & ~bit);
}

void StUiSettingsModel::selectFile(int index) {
  if (index < 0 || index >= static_cast<int>(items_.size())) return;
  chosenPreferred_ = index == 0 ? OdString() : items_[index].path;
}

void StUiSettingsModel::apply() {
  if (!storage_) return;
  if (isMode(mode_)) storage_->setNotificationMode(mode_);
  storage_->setShowIgnoredProblems(showIgnored_);
  storage_->setAutoFixProperties(autoFix_);
  storage_->setPreferredFile(chosenPreferred_);
  storage_->setAutoFixCommands(commands_);
}

}  // namespace stui
