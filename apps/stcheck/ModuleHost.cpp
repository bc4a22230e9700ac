#include "ModuleHost.h"

#include "HeadlessHost.h"
#include "OdError.h"
#include "StAppServices.h"

namespace stcheck {

ModuleHost::ModuleHost(Config config)
    : host_(std::make_unique<HeadlessHost>(
          HeadlessHost::Options{{}, stderr, config == Config::kPrivateCopy})) {
  host_->loadModule(L"StandardsAudit");
  if (!st::stManagerCache() || !::stSettingsStorage() || !st::stPluginRegistrator())
    throw OdError(eNotInitializedYet, "the standards module did not start its services");
}

ModuleHost::~ModuleHost() = default;

}  // namespace stcheck
