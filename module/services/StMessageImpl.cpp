#include "StMessageImpl.h"

#include "HostEntryPoints.h"
#include "HostServices.h"
#include "StStringTable.h"

namespace st {

namespace {

int show(const std::map<int, OdString>& table, int number, HostIcon icon) {
  auto found = table.find(number);
  HostServices* host = hostServices();
  if (found == table.end() || !host) return 0;
  return host->messageBox(found->second, OdString(), HostButtons::kOk, icon);
}

}  // namespace

void StMessageImpl::init() {
  notices_[kStMsgDuplicateFileName] = stLoadString(kStrDuplicateFileName);
  errors_[kStMsgNoPluginChecked] = stLoadString(kStrNoPluginChecked);
}

int StMessageImpl::showMessage(int number) {
  return show(notices_, number, HostIcon::kNone);
}

int StMessageImpl::showError(int number) {
  return show(errors_, number, HostIcon::kError);
}

}  // namespace st
