#pragma once

#include "OdRxModule.h"

namespace stui {

class StUiStandardsAuditButton;

// The module's user interface as a desktop host loads it, after the StandardsAudit module it
// depends on.
//
// initApp fills the engine's dialog table (st::stSetDialogs), places the standards button in
// the host's status bar, makes it the status listener of every check manager (those of
// drawings open already included) and registers the command STANDARDSSETTINGS, which opens
// the Standards Settings dialog. uninitApp takes all of it back, the button last.
//
// It needs a QApplication with widgets: initApp throws OdError(eNotInitializedYet) without one,
// having changed nothing. A host without a status bar gets no button; everything else works.
class StUiModule : public OdRxModule {
 public:
  void initApp() override;
  void uninitApp() override;

  // The button while the module is loaded and the host has a status bar; else null.
  static StUiStandardsAuditButton* button();

 protected:
  StUiModule() = default;
};

}  // namespace stui
