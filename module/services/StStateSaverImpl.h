#pragma once

#include "HostConfigKey.h"
#include "StStateSaver.h"

namespace st {

// The configuration store over the host's configuration tree, reached through the host's
// application object (GetApp). Holds the module key and the plug-in key open from init until
// it is destroyed.
class StStateSaverImpl : public StStateSaver {
 public:
  StStateSaverImpl() = default;
  ~StStateSaverImpl() override;

  void init() override;
  void setValue(const OdString& name, OdVariant value) override;
  void setLibraryValue(const OdString& library, const OdString& name, OdVariant value) override;
  void setPluginValue(const OdString& library, const OdString& plugin, const OdString& name,
                      OdVariant value) override;
  bool getValue(const OdString& name, OdVariant& value) override;
  bool getLibraryValue(const OdString& library, const OdString& name, OdVariant& value) override;
  bool getPluginValue(const OdString& library, const OdString& plugin, const OdString& name,
                      OdVariant& value) override;
  OdArray<OdString> getPluginKeys(const OdString& library) override;
  OdArray<OdString> getLibraryKeys() override;

  // The root of the host's configuration tree, or null when no host provides one.
  static HostConfigKeyPtr configurationRoot();

 private:
  // The library key, or null; created when `create`.
  HostConfigKeyPtr libraryKey(const OdString& library, bool create) const;
  void writeDefaultRegistration();

  HostConfigKeyPtr moduleKey_;
  HostConfigKeyPtr pluginsKey_;
};

}  // namespace st
