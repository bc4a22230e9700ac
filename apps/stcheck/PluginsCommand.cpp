#include "PluginsCommand.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "HeadlessHost.h"
#include "HostConfigTree.h"
#include "ModuleHost.h"
#include "OdError.h"
#include "OdRxClass.h"
#include "StAppServices.h"
#include "StDWSPlugin.h"
#include "StPluginRegistrator.h"

namespace stcheck {

namespace {

// One --enable or --disable word, in command-line order.
struct Switch {
  std::string plugin;
  bool inUse;
};

int runPlugins(const std::vector<Switch>& switches) {
  try {
    // Listing reads the user's configuration without writing it, so it creates no file.
    ModuleHost module(switches.empty() ? ModuleHost::Config::kPrivateCopy
                                       : ModuleHost::Config::kUser);
    st::StPluginRegistrator* registry = st::stPluginRegistrator();
    // Every name is checked before anything changes. The registry knows a plug-in by its
    // class name in any case; the last word on each plug-in wins.
    std::vector<std::pair<OdString, bool>> wanted;
    for (const Switch& s : switches) {
      st::StPluginInfo info;
      if (!registry->getPluginInfo(OdString::fromUtf8(s.plugin), info)) {
        std::fprintf(stderr, "stcheck: no plug-in %s is registered (see 'stcheck plugins')\n",
                     s.plugin.c_str());
        return 2;
      }
      std::erase_if(wanted, [&](const auto& w) { return w.first == info.className; });
      wanted.emplace_back(info.className, s.inUse);
    }
    HostConfigTree& tree = module.host().app().configTree();
    {
      HostConfigTree::Batch batch(tree);
      for (const auto& [cls, inUse] : wanted)
        inUse ? registry->setPluginInUse(cls) : registry->setPluginNotInUse(cls);
    }
    // The tree has said which file it could not write, and why.
    if (!tree.lastSaveError().empty()) return 2;

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
  auto switches = std::make_shared<std::vector<Switch>>();
  CLI::App* cmd =
      app.add_subcommand("plugins", "List the standards plug-ins, switch them on or off");
  // Each switch is recorded as it is parsed, so that their order is the command line's.
  auto record = [switches](bool inUse) {
    return [switches, inUse](const std::vector<std::string>& plugins) {
      for (const std::string& p : plugins) switches->push_back({p, inUse});
    };
  };
  cmd->add_option_function<std::vector<std::string>>("--enable", record(true),
                                                     "Put a plug-in (by class name) in use")
      ->trigger_on_parse();
  cmd->add_option_function<std::vector<std::string>>("--disable", record(false),
                                                     "Take a plug-in (by class name) out of use")
      ->trigger_on_parse();
  cmd->callback([switches, &exitCode] { exitCode = runPlugins(*switches); });
}

}  // namespace stcheck
