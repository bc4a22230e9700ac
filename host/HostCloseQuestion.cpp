#include "HostCloseQuestion.h"

#include "HostApplication.h"
#include "HostDocumentSave.h"
#include "HostFrontend.h"

bool hostConfirmClose(HostDocument* doc) {
  if (!doc || !doc->isOpen()) return false;
  if (!doc->isModified()) return true;
  HostApplication& app = HostApplication::running();
  HostMessageBox box{OdString(L"Save changes to ") + doc->title() + L"?", L"Close",
                     HostButtons::kYesNoCancel, HostIcon::kQuestion, kHostYes};
  switch (app.front().showMessageBox(box)) {
    case kHostYes:
      return hostSaveDocument(doc, OdString(), std::nullopt, L"CLOSE");
    case kHostNo:
      return true;
    default:
      return false;
  }
}
