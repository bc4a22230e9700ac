#pragma once

#include <array>
#include <vector>

#include "OdArray.h"
#include "OdString.h"

namespace st {
class StSettingsStorage;
}

namespace stui {

// What the Standards Settings dialog shows and what its OK writes, without a screen: the
// notification mode, the commands that trigger a silent check, the two check options and the
// list of standards files offered as the preferred one for replacements. The widget binds
// each control to one accessor pair and calls apply() on OK; nothing is written before that.
class StUiSettingsModel {
 public:
  // One "Check standards by command:" box: its text and its bit of the command set.
  struct CommandBox {
    const wchar_t* text;
    unsigned bit;
  };
  // The boxes in the dialog's order: Save 0x02, Save as 0x20, Import 0x04, Plot 0x10,
  // eTransmit 0x08.
  static const std::array<CommandBox, 5>& commandBoxes();

  // One entry of the preferred-file list: the file name it shows (without extension) and the
  // full path it stands for; item 0 is "None", with an empty path.
  struct FileItem {
    OdString text;
    OdString path;
  };

  // Reads everything the dialog opens with from `storage` (not owned; null leaves every
  // value unset and makes apply() write nothing), and lists the standards files of the
  // host's current drawing (none when the drawing has no check manager).
  explicit StUiSettingsModel(st::StSettingsStorage* storage);
  // The same with the parts given: `noneText` is item 0's text, `drawingFiles` the standards
  // files of the current drawing in its order, or null when no drawing is open.
  StUiSettingsModel(st::StSettingsStorage* storage, const OdString& noneText,
                    const OdArray<OdString>* drawingFiles);

  // The checked notification button: 0 none, 1 alert, 2 status-bar icon; -1 when none is
  // checked (a stored value outside 0..2, which apply() then leaves as it is).
  int checkedMode() const;
  void setCheckedMode(int mode);

  bool commandChecked(unsigned bit) const { return (commands_ & bit) != 0; }
  void setCommandChecked(unsigned bit, bool checked);
  // The sum of the checked boxes' bits; bits no box stands for are not kept.
  unsigned commands() const { return commands_; }

  bool autoFix() const { return autoFix_; }
  void setAutoFix(bool on) { autoFix_ = on; }
  bool showIgnored() const { return showIgnored_; }
  void setShowIgnored(bool on) { showIgnored_ = on; }

  // The preferred file as stored when the dialog opened.
  const OdString& storedPreferredFile() const { return storedPreferred_; }
  // The drop-down list: "None", then the drawing's standards files in its order (or, without
  // a drawing, nothing), then the stored preferred file when it is none of those.
  const std::vector<FileItem>& fileItems() const { return items_; }
  // The item shown selected when the dialog opens. A stored preferred file found among the
  // drawing's files (full paths compared with case respected) selects the first item after
  // "None" whose text begins with its file name, case ignored, as a drop-down list's own
  // search does: of two files of one name the first is shown.
  int openingIndex() const { return openingIndex_; }

  // A selection change in the list: item 0 chooses no preferred file, another item its path;
  // an index outside the list (no selection) changes nothing.
  void selectFile(int index);
  // What OK writes as the preferred file: empty until the selection was changed, so that
  // opening and pressing OK at once clears the preference. This is intended.
  const OdString& chosenPreferredFile() const { return chosenPreferred_; }

  // OK: writes, in this order, the notification mode (only when a button is checked), show
  // ignored problems, fix automatically, the preferred file and the command set.
  void apply();

 private:
  void load(const OdString& noneText, const OdArray<OdString>* drawingFiles);
  void listFiles(const OdString& noneText, const OdArray<OdString>* drawingFiles);

  st::StSettingsStorage* storage_;
  int mode_ = -1;
  unsigned commands_ = 0;
  bool autoFix_ = false;
  bool showIgnored_ = false;
  OdString storedPreferred_;
  std::vector<FileItem> items_;
  int openingIndex_ = 0;
  OdString chosenPreferred_;
};

}  // namespace stui
