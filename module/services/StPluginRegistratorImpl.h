#pragma once

#include <vector>

#include "StPluginRegistrator.h"

namespace st {

// The plug-in registry over the configuration store (StStateSaver) and the kernel's dynamic
// linker.
class StPluginRegistratorImpl : public StPluginRegistrator {
 public:
  // One plug-in library: its key name in the configuration, its module file ("PluginDll"),
  // whether the linker has it, and its plug-ins in registration order.
  struct Library {
    OdString name;
    OdString dllName;
    bool loaded = false;
    std::vector<StPluginInfo> plugins;
  };

  StPluginRegistratorImpl() = default;

  // Reads the registrations (a library key without a text "PluginDll" is skipped; a plug-in
  // without "PluginInUse" is not in use), then loads each library by its name from the module
  // search path; a library named by a path is refused unread. A library that does not load
  // is reported on the host's command line, one line each with the loader's reason, and
  // stays listed.
  void init() override;
  void setPluginInUse(const OdString& className) override { setInUse(className, true); }
  void setPluginNotInUse(const OdString& className) override { setInUse(className, false); }
  bool getPluginInfo(const OdString& className, StPluginInfo& info) override;
  OdArray<StPluginInfo> getPluginInfos() override;

  // The libraries as read, for diagnostics.
  const std::vector<Library>& libraries() const noexcept { return libraries_; }

 private:
  void readRegistrations();
  void loadLibraries();
  StPluginInfo* find(const OdString& className);
  void setInUse(const OdString& className, bool inUse);
  // The library key under which the in-use switch of `className` is written.
  OdString persistenceLibrary(const OdString& className) const;

  std::vector<Library> libraries_;
};

}  // namespace st
