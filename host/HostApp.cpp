#include "HostApp.h"

#include "HostApplication.h"

HostConfigKeyPtr HostApp::configuration() const {
  return app_ ? app_->configRoot() : nullptr;
}
