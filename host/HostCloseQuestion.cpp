#include "HostCloseQuestion.h"

#include "HostApplication.h"
#include "HostDocumentSave.h"
#include "HostFrontend.h"
#include "HostSilentCheck.h"

bool hostConfirmClose(HostDocument* doc) {
  if (!doc || !doc->isOpen()) return false;
  if (!doc->isModified()) return true;
  HostApplication& app = HostApplication::running();
  HostMessageBox box{OdString(L"Save changes to ") + doc->title() + L"?", L"Close",
                     HostButtons::kYesNoCancel, HostIcon::kQuestion, kHostYes};
  switch (app.front().showMessageBox(box)) {
    case kHostYes:
      // A save is a save: the standards check the settings ask for on SAVE runs here too (it
      // looks at the current drawing, which a closing drawing is unless a caller chose another).
      if (app.documents().curDocument() == doc) hostRunSilentCheck(kHostCheckSave);
      return hostSaveDocument(doc, OdString(), std::nullopt, L"CLOSE");
    case kHostNo:
      return true;
    default:
      return false;
  }
}
