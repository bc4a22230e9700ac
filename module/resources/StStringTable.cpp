#include "StStringTable.h"

#include <algorithm>
#include <iterator>

namespace {

struct Entry {
  unsigned id;
  const wchar_t* text;
};

// Sorted by id.
constexpr Entry kTable[] = {
    {kStrDuplicateFileName,
     L"Duplicate file name: a standards file with the same name is already associated with the "
     L"current drawing."},
    {kStrNoPluginChecked,
     L"Standards has detected that no plug-ins are currently checked. Choose the Plug-ins tab in "
     L"this dialog box and check at least one plug-in."},
    {kStrNoStandardsAssociated,
     L"There are no standards files associated with the current drawing.\r\nChoose OK to "
     L"associate standards files with the drawing, or Cancel to dismiss this alert."},
    {kStrAssociateStandardsCaption, L"Associate Standards"},
    {kStrCheckNotFinished,
     L"Check Standards has not finished checking the current drawing.\r\nAre you sure you want "
     L"to close the Check Standards dialog box?"},
    {kStrCheckNotFinishedCaption, L"Checking Not Finished."},
    {kStrFailedToCreatePluginObject, L"Failed to create plugin object %s\n"},
    {kStrMissingStandardsFileCaption, L"Missing Standards File"},
    {kStrMissingStandardsFile,
     L"One or more standards files associated with this drawing can't be located.\nUse Configure "
     L"Standards dialog box\nto locate these missing files."},
    {kStrStandardsViolationTitle, L"Standards Violation"},
    // The misspellings are the text users know; kept as it is shown.
    {kStrStandardsViolation,
     L"A standards violation has occured. Run Check Standards \r\n to view all standards "
     L"violatios in the current drawing."},
    {kStrModuleTitle, L"Standards Audit"},
    {kStrMenuCheckStandards, L"Check Standards..."},
    {kStrMenuConfigureStandards, L"Configure Standards..."},
    {kStrMenuEnableNotifications, L"Enable Notifications"},
    {kStrMenuSettings, L"Settings..."},
    {kStrTipAssociated, L"Associated standard file(s)"},
    {kStrTipMissingFile, L"Missing standard file(s)"},
    {kStrTipNewViolation, L"New standards violation"},
    {kStrTipNoStandards, L"No standards file(s) associated with the current drawing"},
    {kStrFileNotFound, L"\n(File not found)"},
    {kStrPurpose, L"Purpose:\n"},
    {kStrVersion, L"Version:\n"},
    {kStrPublisher, L"Publisher:\n"},
    {kStrStandardsFileLabel, L"Standards file:\n"},
    {kStrLastModified, L"Last Modified:\n"},
    {kStrFailedToCreatePlugin,
     L"Failed to create plugin: %s. Please check correct plugin registration\n"},
    {kStrColumnProperty, L"Property"},
    {kStrColumnCurrentValue, L"Current value"},
    {kStrColumnStandardValue, L"Standard value"},
    {kStrIgnoredBy, L"Ignored by: %s"},
    {kStrColumnStandardsFile, L"Standards file"},
    {kStrChooseNext, L"Choose Next to check this drawing"},
    {kStrProblemsFound, L"Problems found: %d"},
    {kStrFixedAutomatically, L"Fixed automatically: %d"},
    {kStrFixedManually, L"Fixed manually: %d"},
    {kStrIgnoredInCheck, L"Ignored in current check: %d"},
    {kStrCheckComplete, L"The standards check is complete.\n%s\n%s\n%s\n%s"},
    {kStrCheckCompleteCaption, L"Check Standards - Check complete"},
    // Two blanks before "plugin": the line users and scripts have always seen.
    {kStrFailedToLoadPlugin, L"Failed to load  plugin: %s\n"},
    {kStrRunCheckStandards, L"Run Check Standards"},
};

static_assert(std::is_sorted(std::begin(kTable), std::end(kTable),
                             [](const Entry& a, const Entry& b) { return a.id < b.id; }),
              "the string table is kept sorted by id");

}  // namespace

OdString stLoadString(unsigned id) {
  const Entry* end = std::end(kTable);
  const Entry* found = std::lower_bound(
      std::begin(kTable), end, id, [](const Entry& e, unsigned wanted) { return e.id < wanted; });
  return (found != end && found->id == id) ? OdString(found->text) : OdString();
}

OdString stFormatString(unsigned id, const OdString& argument) {
  std::wstring text = stLoadString(id).str();
  std::size_t marker = text.find(L"%s");
  if (marker != std::wstring::npos) text.replace(marker, 2, argument.str());
  return OdString(std::move(text));
}
