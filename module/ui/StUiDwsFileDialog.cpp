#include <QFileDialog>

#include "HostEntryPoints.h"
#include "HostQtText.h"
#include "HostServices.h"
#include "StDwsFileDialog.h"

namespace st {

bool showSelectDwsFileDialog(QWidget* parent, OdString& path) {
  HostServices* host = hostServices();
  auto text = [host](const wchar_t* english) {
    return toQString(host ? host->translate(english) : OdString(english));
  };
  // The widget dialog rather than the platform's, so that it looks the same everywhere and
  // scripts and tests can drive it.
  QFileDialog dialog(parent, text(L"Select Standards File"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setObjectName(QStringLiteral("SelectStandardsFile"));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setOption(QFileDialog::ReadOnly, false);
  dialog.setDefaultSuffix(QStringLiteral("dws"));
  dialog.setNameFilters({text(L"Drawing Standard (*.dws)"), text(L"All drawings (*.dws *.dxf)")});
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
  path = toOdString(dialog.selectedFiles().constFirst());
  return true;
}

}  // namespace st
