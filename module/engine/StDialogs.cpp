#include "StDialogs.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "StErrorAccumulatorImpl.h"

namespace st {

namespace {

StDialogs g_dialogs;

void print(const OdString& text) {
  if (HostServices* host = hostServices()) host->cmdPrint(text);
}

void sayNeedsDesktop(const wchar_t* dialog) {
  print(
      OdString::format(L"the %ls dialog needs the desktop host with the module's user interface "
                       L"(StandardsAuditUi)\n",
                       dialog));
}

// "name: description (plug-in)", the plug-in left out when unknown.
OdString describe(const StErrorAccumulatorImpl::Entry& entry) {
  OdString line = L"  " + entry.error->name();
  const OdString description = entry.error->description();
  if (!description.isEmpty()) line += L": " + description;
  if (entry.fix) line += L"; fixed by " + entry.fix->name();
  if (!entry.pluginName.isEmpty()) line += L" (" + entry.pluginName + L")";
  return line + L"\n";
}

}  // namespace

const StDialogs& stDialogs() noexcept {
  return g_dialogs;
}

void stSetDialogs(const StDialogs& dialogs) noexcept {
  g_dialogs = dialogs;
}

int stRunCheckStandardsDialog(StManager* manager) {
  if (g_dialogs.checkStandards) return g_dialogs.checkStandards(manager);
  sayNeedsDesktop(L"check standards");
  return kStNoDialog;
}

int stRunConfigureStandardsDialog(StManager* manager) {
  if (g_dialogs.configureStandards) return g_dialogs.configureStandards(manager);
  sayNeedsDesktop(L"configure standards");
  return kStNoDialog;
}

int stRunErrorReport(StManager* manager, const StErrorAccumulatorImpl& found) {
  if (g_dialogs.errorReport) return g_dialogs.errorReport(manager, found);
  OdString report = OdString::format(
      L"standards check: %d problem(s) not fixed, %d fixed automatically\n",
      static_cast<int>(found.errors().size()), static_cast<int>(found.fixedErrors().size()));
  if (!found.errors().empty()) report += L"not fixed:\n";
  for (const auto& entry : found.errors()) report += describe(entry);
  if (!found.fixedErrors().empty()) report += L"fixed automatically:\n";
  for (const auto& entry : found.fixedErrors()) report += describe(entry);
  print(report);
  return 1;
}

}  // namespace st
