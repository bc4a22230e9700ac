#include "StUiSettingsDlg.h"

namespace stui {

StUiSettingsDlg::StUiSettingsDlg(QWidget* parent)
    : hostUiDialog(QStringLiteral("Standards Settings"), QStringLiteral("IDH_STANDARDSSETTINGS"),
                   parent) {}

StUiSettingsDlg::~StUiSettingsDlg() = default;

}  // namespace stui
