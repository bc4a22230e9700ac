#include "ModuleHost.h"

#include <cstdlib>
#include <system_error>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "OdError.h"
#include "StAppServices.h"

namespace stcheck {

ModuleHost::ModuleHost(Config config) {
  std::filesystem::path file;
  if (config == Config::kPrivateCopy) {
    std::string pattern = (std::filesystem::temp_directory_path() / "stcheck-XXXXXX").string();
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back('\0');
    if (!mkdtemp(buf.data()))
      throw OdError(eFileWriteError, "cannot make a temporary folder under " +
                                         std::filesystem::temp_directory_path().string());
    privateDir_ = buf.data();
    file = privateDir_ / "config.json";
    std::error_code ec;
    std::filesystem::path user = HostConfigTree::defaultPath();
    if (std::filesystem::exists(user, ec)) std::filesystem::copy_file(user, file, ec);
  }
  host_ = std::make_unique<HeadlessHost>(HeadlessHost::Options{file, stderr});
  host_->loadModule(L"StandardsAudit");
  if (!st::stManagerCache() || !::stSettingsStorage() || !st::stPluginRegistrator())
    throw OdError(eNotInitializedYet, "the standards module did not start its services");
}

ModuleHost::~ModuleHost() {
  host_.reset();
  if (!privateDir_.empty()) {
    std::error_code ec;
    std::filesystem::remove_all(privateDir_, ec);
  }
}

}  // namespace stcheck
