#pragma once

#include "IStUiUnknown.h"

namespace stui {

// What the pages of the Configure Standards dialog know of the dialog that owns them.
class IStUiConfigureStandardsDlg : public IStUiUnknown {
 public:
  // Called by a page whenever its content, its check marks or its selection changed: the
  // dialog brings the buttons that depend on both pages ("Check Standards...") up to date.
  virtual void updateState() = 0;
};

}  // namespace stui
