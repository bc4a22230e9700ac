#pragma once

#include "HostConfigKey.h"
#include "OdRxObject.h"
#include "OdRxObjectImpl.h"

class HostApplication;
class HostApp;
using HostAppPtr = OdSmartPtr<HostApp>;

// The application object that GetApp() (HostEntryPoints.h) hands out, with a reference the
// caller releases. It outlives the host application safely: once the host has shut down it
// answers null.
class HostApp : public OdRxObject {
 public:
  // The root key of the host's configuration tree; null once the host has shut down.
  HostConfigKeyPtr configuration() const;
  // The host application, or null once it has shut down.
  HostApplication* application() const noexcept { return app_; }

 protected:
  explicit HostApp(HostApplication* app) : app_(app) {}
  ~HostApp() override = default;

 private:
  friend class HostApplication;
  friend class OdRxObjectImpl<HostApp>;
  HostApplication* app_;
};
