#pragma once

#include "OdString.h"
#include "StService.h"

namespace st {

// Bits of the command set that triggers a silent standards check (getAutoFixCommands): a set
// bit means running that host command checks the drawing. Other bits are kept as stored.
enum StCheckCommand : unsigned {
  kStCheckOnSave = 2,
  kStCheckOnImport = 4,
  kStCheckOnETransmit = 8,
  kStCheckOnPlot = 16,
  kStCheckOnSaveAs = 32,
};

// How standards violations are announced: the host system variable STANDARDSVIOLATION of the
// current drawing.
enum StNotificationMode : int {
  kStNotifyNone = 0,
  kStNotifyAlert = 1,
  kStNotifyStatusBar = 2,  // also what is read when no drawing is open
};

// The user's standards-audit preferences. Every setter writes the persisted values through
// at once (autoFixProperties, showIgnoredProblems, preferredFile, autoFixCommands, in that
// order); the notification mode lives in the current drawing's system variable instead, and
// developer and web site are read-only texts about the plug-ins' publisher.
// Reached through stSettingsStorage() (StAppServices.h); it carries no data of its own.
class ST_EXPORT StSettingsStorage : public StService {
 public:
  StSettingsStorage();
  StSettingsStorage(const StSettingsStorage& other);
  StSettingsStorage& operator=(const StSettingsStorage& other);
  ~StSettingsStorage() override;

  virtual OdString getPreferredFile() = 0;
  // STANDARDSVIOLATION of the current drawing; kStNotifyStatusBar when the host gives none.
  virtual int getNotificationMode() = 0;
  virtual unsigned getAutoFixCommands() = 0;
  virtual bool hasPreferredFile() = 0;
  virtual bool getAutoFixProperties() = 0;
  virtual bool getShowIgnoredProblems() = 0;
  virtual void setShowIgnoredProblems(bool show) = 0;
  virtual void setAutoFixProperties(bool autoFix) = 0;
  // Writes STANDARDSVIOLATION of the current drawing; nothing when no drawing is open or the
  // host refuses the value.
  virtual void setNotificationMode(int mode) = 0;
  virtual void setPreferredFile(const OdString& path) = 0;
  virtual void setAutoFixCommands(unsigned commands) = 0;
  virtual OdString getDeveloper() = 0;
  virtual OdString getWebSite() = 0;
};

}  // namespace st
