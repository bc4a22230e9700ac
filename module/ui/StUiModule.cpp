#include "StUiModule.h"

#include <QApplication>

#include "HostApplication.h"
#include "HostEntryPoints.h"
#include "HostQtStatusBar.h"
#include "ICmdFactory.h"
#include "OdError.h"
#include "StAppServices.h"
#include "StDialogs.h"
#include "StManagerCache.h"
#include "StManagerImpl.h"
#include "StUiCheckStandardsDlg.h"
#include "StUiConfigureStandardsDlg.h"
#include "StUiErrorReportDlg.h"
#include "StUiSettingsDlg.h"
#include "StUiStandardsAuditButton.h"

namespace stui {

namespace {

const wchar_t* const kCommandGroup = L"STANDARDSAUDITUI";
const wchar_t* const kSettingsCommand = L"STANDARDSSETTINGS";

// Module-wide: there is one button, touched only on the host's one thread.
StUiStandardsAuditButton* g_button = nullptr;

class SettingsCmd : public UICmdProcess {
 public:
  bool execute() override {
    StUiSettingsDlg dialog;
    return dialog.runModal() == QDialog::Accepted;
  }
};

st::StManagerReactor* statusListener(st::StManagerImpl*) {
  return g_button;
}

// Brings the status listener of the manager of every open drawing in line with the factory.
void updateManagers() {
  HostApDocManager* documents = hostDocManager();
  st::StManagerCache* cache = st::stManagerCache();
  if (!documents || !cache) return;
  for (HostDocument* doc : documents->documents()) {
    auto* manager = dynamic_cast<st::StManagerImpl*>(cache->getManager(doc->database()));
    if (manager) manager->updateStatusListener();
  }
}

HostQtStatusBar* qtStatusBar() {
  HostApplication* app = HostApplication::current();
  HostStatusBar* bar = app ? app->statusBar() : nullptr;
  if (!bar || bar->toolkit() != L"qt") return nullptr;
  return static_cast<HostQtStatusBar*>(bar);
}

}  // namespace

StUiStandardsAuditButton* StUiModule::button() {
  return g_button;
}

void StUiModule::initApp() {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
    throw OdError(eNotInitializedYet, "the standards user interface needs a desktop host");
  st::StDialogs dialogs;
  dialogs.checkStandards = [](st::StManager* manager) {
    StUiCheckStandardsDlg dialog(manager);
    return dialog.runModal();
  };
  // The dialog works on the current drawing, whose manager the command passes.
  dialogs.configureStandards = [](st::StManager*) {
    StUiConfigureStandardsDlg dialog;
    return dialog.runModal();
  };
  dialogs.errorReport = [](st::StManager* manager, const st::StErrorAccumulatorImpl& found) {
    StUiErrorReportDlg dialog(manager, found);
    return dialog.runModal();
  };
  st::stSetDialogs(dialogs);
  if (HostQtStatusBar* bar = qtStatusBar()) {
    g_button = new StUiStandardsAuditButton;
    if (!bar->addModuleWidget(g_button)) {
      delete g_button;
      g_button = nullptr;
    } else {
      // The bar deletes the button with the window, which may go before the module does;
      // no manager may tell it anything after that.
      QObject::connect(g_button, &QObject::destroyed, [] {
        g_button = nullptr;
        st::StManagerImpl::setStatusListenerFactory(nullptr);
        updateManagers();
      });
    }
  }
  st::StManagerImpl::setStatusListenerFactory(g_button ? &statusListener : nullptr);
  updateManagers();
  ICmdFactoryPtr factory(new_ICmdFactory(), kOdRxObjAttach);
  if (factory)
    factory->registerCommand(kSettingsCommand, kCommandGroup, 0, &createCommand<SettingsCmd>);
}

void StUiModule::uninitApp() {
  ICmdFactoryPtr factory(new_ICmdFactory(), kOdRxObjAttach);
  if (factory) factory->unregisterGroup(kCommandGroup);
  st::StManagerImpl::setStatusListenerFactory(nullptr);
  updateManagers();
  st::stSetDialogs(st::StDialogs{});
  if (StUiStandardsAuditButton* button = g_button) {
    QObject::disconnect(button, &QObject::destroyed, nullptr, nullptr);
    g_button = nullptr;
    if (HostQtStatusBar* bar = qtStatusBar()) bar->removeModuleWidget(button);
    delete button;
  }
}

}  // namespace stui

extern "C" __attribute__((visibility("default"))) OdRxModule* odrxCreateModuleObject() {
  return OdRxObjectImpl<stui::StUiModule>::createObject().detach();
}

extern "C" __attribute__((visibility("default"))) OdRxApiVersion odrxGetAPIVersion() {
  return kOdRxApiVersion;
}
