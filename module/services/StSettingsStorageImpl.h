#pragma once

#include <cstdint>

#include "StSettingsStorage.h"

namespace st {

// The settings record: fields with their defaults, loaded by init through the configuration
// store (StStateSaver), which must be initialised first.
class StSettingsStorageImpl : public StSettingsStorage {
 public:
  StSettingsStorageImpl() = default;

  // Loads the persisted values (a value absent, or not of its type, keeps the default; an
  // integer flag is true only when it is 1), then the publisher texts.
  void init() override;

  OdString getPreferredFile() override { return preferredFile_; }
  int getNotificationMode() override;
  unsigned getAutoFixCommands() override { return autoFixCommands_; }
  bool hasPreferredFile() override { return !preferredFile_.isEmpty(); }
  bool getAutoFixProperties() override { return autoFixProperties_; }
  bool getShowIgnoredProblems() override { return showIgnoredProblems_; }
  void setShowIgnoredProblems(bool show) override;
  void setAutoFixProperties(bool autoFix) override;
  void setNotificationMode(int mode) override;
  void setPreferredFile(const OdString& path) override;
  void setAutoFixCommands(unsigned commands) override;
  OdString getDeveloper() override { return developer_; }
  OdString getWebSite() override { return webSite_; }

 private:
  void save();
  void loadPublisher();

  std::uint32_t autoFixCommands_ = 0;
  bool autoFixProperties_ = false;
  bool showIgnoredProblems_ = false;
  OdString preferredFile_;
  OdString developer_;
  OdString webSite_;
};

}  // namespace st
