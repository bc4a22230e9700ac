#include "StUiCheckStandardsDlg.h"

namespace stui {

StUiCheckStandardsDlg::StUiCheckStandardsDlg(st::StManager*, QWidget* parent)
    : hostUiDialog(QStringLiteral("Check Standards"), QStringLiteral("IDH_CHECKSTANDARDS"),
                   parent) {}

StUiCheckStandardsDlg::~StUiCheckStandardsDlg() = default;

}  // namespace stui
