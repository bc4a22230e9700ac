#include "StUiButtonState.h"

#include "StStringTable.h"

namespace stui {

int StUiButtonState::iconId() const {
  return state_ == kAssociated ? kIconAssociated : kIconAttention;
}

unsigned StUiButtonState::tooltipId(bool hasManager) const {
  if (!hasManager) return kStrTipNoStandards;
  switch (state_) {
    case kMissingFile:
      return kStrTipMissingFile;
    case kNewViolation:
      return kStrTipNewViolation;
    case kAssociated:
      break;
  }
  return kStrTipAssociated;
}

OdString StUiButtonState::clickCommand(bool drawingOpen) const {
  if (!drawingOpen) return OdString();
  return state_ == kMissingFile ? L"STANDARDS " : L"CHECKSTANDARDS ";
}

StUiButtonState::Alert StUiButtonState::violationAlert(int mode, bool buttonVisible) {
  if (mode == 2) return buttonVisible ? Alert::kBalloon : Alert::kNone;
  if (mode == 1) return Alert::kTaskDialog;
  return Alert::kNone;
}

}  // namespace stui
