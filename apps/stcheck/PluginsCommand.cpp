#include "PluginsCommand.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "ModuleHost.h"
#include "OdError.h"
#include "OdRxClass.h"
#include "StAppServices.h"
#include "StDWSPlugin.h"
#include "StPluginRegistrator.h"

namespace stcheck {

namespace {

struct PluginsOptions {
  std::vector<std::string> enable;
  std::vector<std::string> disable;
};

int runPlugins(const PluginsOptions& options) {
  try {
    ModuleHost module(ModuleHost::Config::kUser);
    st::StPluginRegistrator* registry = st::stPluginRegistrator();
    auto known = [&](const std::string& cls) {
      st::StPluginInfo info;
      if (registry->getPluginInfo(OdString::fromUtf8(cls), info)) return true;
      std::fprintf(stderr, "stcheck: no plug-in %s is registered (see 'stcheck plugins')\n",
                   cls.c_str());
      return false;
    };
    for (const std::string& cls : options.enable)
      if (!known(cls)) return 2;
    for (const std::string& cls : options.disable)
      if (!known(cls)) return 2;
    for (const std::string& cls : options.enable) registry->setPluginInUse(OdString::fromUtf8(cls));
    for (const std::string& cls : options.disable)
      registry->setPluginNotInUse(OdString::fromUtf8(cls));

    for (const st::StPluginInfo& info : registry->getPluginInfos()) {
      st::StDWSPluginPtr plugin = st::StDWSPlugin::cast(odrxCreateObject(info.className).get());
      std::string what = plugin.isNull()
                             ? std::string("(cannot be created: its library did not load)")
                             : plugin->name().toUtf8() + " " + plugin->version().toUtf8() + ": " +
                                   plugin->purpose().toUtf8();
      std::printf("%-24s %-7s %s\n", info.className.toUtf8().c_str(), info.inUse ? "in use" : "off",
                  what.c_str());
    }
    return 0;
  } catch (const OdError& e) {
    std::fprintf(stderr, "stcheck: %s\n", e.description().toUtf8().c_str());
    return 2;
  }
}

}  // namespace

void PluginsCommand::add(CLI::App& app, int& exitCode) {
  auto options = std::make_shared<PluginsOptions>();
  CLI::App* cmd =
      app.add_subcommand("plugins", "List the standards plug-ins, switch them on or off");
  cmd->add_option("--enable", options->enable, "Put a plug-in (by class name) in use");
  cmd->add_option("--disable", options->disable, "Take a plug-in (by class name) out of use");
  cmd->callback([options, &exitCode] { exitCode = runPlugins(*options); });
}

}  // namespace stcheck
