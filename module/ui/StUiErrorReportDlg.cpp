#include "StUiErrorReportDlg.h"

namespace stui {

StUiErrorReportDlg::StUiErrorReportDlg(st::StManager*, const st::StErrorAccumulatorImpl&,
                                       QWidget* parent)
    : hostUiDialog(QStringLiteral("Standard Errors found"), QString(), parent) {}

StUiErrorReportDlg::~StUiErrorReportDlg() = default;

}  // namespace stui
