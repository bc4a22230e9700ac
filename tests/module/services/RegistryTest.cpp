// Start-up of the module's services over a real configuration file: the default plug-in
// registration, the registry's view of it, libraries that load or not, and the in-use switch
// across host runs.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>

#include "ServicesTestSupport.h"
#include "StFileSystemService.h"
#include "StManagerCache.h"
#include "StMessage.h"
#include "StPluginRegistrator.h"
#include "StSettingsStorage.h"
#include "StStateSaver.h"

namespace {

using namespace servicestest;

const std::vector<std::string> kDefaultPlugins{"StDWSLayerPlugin", "StDWSLinetypePlugin",
                                               "StDWSTextstylePlugin", "StDWSDimstylePlugin"};
// The reason depends on whether the library is built: it may be missing, or lack the module.
const char* const kStandardFailure = "Failed to load  plugin: StStandardPlugins.dll: ";

std::vector<std::string> registered() {
  std::vector<std::string> names;
  for (const st::StPluginInfo& info : st::stPluginRegistrator()->getPluginInfos())
    names.push_back(info.className.toUtf8() + (info.inUse ? "" : " (off)"));
  return names;
}

TEST(RegistryTest, FreshTreeGainsTheDefaultRegistrationOnce) {
  ConfigFile config;
  {
    HostRun run(config.path());
    EXPECT_EQ(registered(), kDefaultPlugins);
    st::StPluginInfo info;
    ASSERT_TRUE(st::stPluginRegistrator()->getPluginInfo(L"stdwslayerplugin", info));
    EXPECT_EQ(info.className, OdString(L"StDWSLayerPlugin"));
    EXPECT_FALSE(st::stPluginRegistrator()->getPluginInfo(L"StDWSHatchPlugin", info));
    // The standard library does not load here: reported once, its plug-ins still listed.
    EXPECT_EQ(count(run.output(), kStandardFailure), 1u) << run.output();
  }
  auto tree = config.tree();
  EXPECT_EQ(keys(*tree, kPlugins), std::vector<std::string>{"StStandardPlugins"});
  EXPECT_EQ(tree->getValue(kStandard, "PluginDll")->getString(),
            OdString(L"StStandardPlugins.dll"));
  EXPECT_EQ(keys(*tree, kStandard), kDefaultPlugins);
  for (const std::string& plugin : kDefaultPlugins) {
    EXPECT_EQ(tree->getValue(child(kStandard, plugin), "PluginClassName")->getString(),
              OdString(plugin));
    EXPECT_EQ(tree->getValue(child(kStandard, plugin), "PluginInUse")->getInt32(), 1);
  }
}

TEST(RegistryTest, TreeWithoutCommandDataGetsNoModuleKeys) {
  ConfigFile config;
  config.tree()->deleteKey({}, "cmddata");
  {
    HostRun run(config.path());
    EXPECT_TRUE(registered().empty());
    EXPECT_TRUE(st::stStateSaver()->getLibraryKeys().empty());
    OdVariant value;
    EXPECT_FALSE(st::stStateSaver()->getValue(L"autoFixCommands", value));
    st::stStateSaver()->setPluginValue(L"Lib", L"Plugin", L"PluginInUse", std::int32_t{1});
    stSettingsStorage()->setAutoFixCommands(18);
    EXPECT_EQ(run.output(), "");
  }
  // Only the publisher key the settings open at the root; nothing of the module's own.
  EXPECT_EQ(keys(*config.tree(), {}), std::vector<std::string>{"CadStandardPlugins"});
}

TEST(RegistryTest, DefaultsComeBackOnlyWithTheLibraryKey) {
  ConfigFile config;
  {
    HostRun run(config.path());
    st::stAppServices();
  }
  config.tree()->deleteKey(kStandard, "StDWSTextstylePlugin");
  {
    HostRun run(config.path());
    EXPECT_EQ(registered(), (std::vector<std::string>{"StDWSLayerPlugin", "StDWSLinetypePlugin",
                                                      "StDWSDimstylePlugin"}));
  }
  EXPECT_EQ(keys(*config.tree(), kStandard).size(), 3u);
  config.tree()->setValue(child(kStandard, "StDWSLayerPlugin"), "PluginInUse", std::int32_t{0});
  config.tree()->deleteKey(kPlugins, "StStandardPlugins");
  HostRun run(config.path());
  EXPECT_EQ(registered(), kDefaultPlugins);
}

TEST(RegistryTest, LibrariesThatDoNotLoadAreReportedAndStayListed) {
  ConfigFile config;
  auto tree = config.tree();
  tree->createKey({"cmddata"}, "StandardsAudit");
  tree->createKey(kModule, "Plugins");
  auto addLibrary = [&](const std::string& name, const char* dll, const std::string& plugin) {
    tree->createKey(kPlugins, name);
    if (dll) tree->setValue(child(kPlugins, name), "PluginDll", OdVariant(OdString(dll)));
    tree->createKey(child(kPlugins, name), plugin);
    tree->setValue(child(child(kPlugins, name), plugin), "PluginClassName",
                   OdVariant(OdString(plugin)));
    tree->setValue(child(child(kPlugins, name), plugin), "PluginInUse", std::int32_t{1});
  };
  addLibrary("Missing", "NoSuchPlugins.dll", "MissingPlugin");
  addLibrary("Loads", "ServicesTestPlugins.dll", "LoadedPlugin");
  addLibrary("Broken", "BrokenPlugins.dll", "BrokenPlugin");
  addLibrary("NoDll", nullptr, "OrphanPlugin");
  addLibrary("Pinyin", "插件.dll", "WidePlugin");
  // A file by the right name that is no shared library at all.
  std::ofstream(config.dir() / "libBrokenPlugins.so") << "not a library";
  // A configuration may come from anywhere: a library it names by a path is not loaded, even
  // from a folder on the search path, nor one named by its neighbour's folder.
  const std::string elsewhere = (config.dir() / "libServicesTestPlugins.so").string();
  std::filesystem::copy_file(std::filesystem::path(STAUDIT_BIN_DIR) / "libServicesTestPlugins.so",
                             elsewhere);
  addLibrary("ByPath", elsewhere.c_str(), "PathPlugin");
  addLibrary("Up", "../ServicesTestPlugins.dll", "UpPlugin");
  addLibrary("Dots", "..", "DotsPlugin");
  setenv("STAUDIT_MODULE_PATH", config.dir().c_str(), 1);
  HostRun run(config.path());
  // The registry starts, and loads, on first use.
  const std::vector<std::string> names = registered();
  unsetenv("STAUDIT_MODULE_PATH");

  EXPECT_EQ(names, (std::vector<std::string>{"MissingPlugin", "LoadedPlugin", "BrokenPlugin",
                                             "WidePlugin", "PathPlugin", "UpPlugin", "DotsPlugin",
                                             "StDWSLayerPlugin", "StDWSLinetypePlugin",
                                             "StDWSTextstylePlugin", "StDWSDimstylePlugin"}));
  const std::string& out = run.output();
  // One line each, naming the library and the loader's reason.
  const std::string path = std::string(": not on the module search path: ") +
                           std::filesystem::canonical(STAUDIT_BIN_DIR).string() + ", " +
                           config.dir().string() + "\n";
  for (const std::string& line :
       {std::string("NoSuchPlugins.dll: found no libNoSuchPlugins.so or NoSuchPlugins.so in "),
        "BrokenPlugins.dll: " + (config.dir() / "libBrokenPlugins.so").string() + ": ",
        std::string("插件.dll: found no lib插件.so"), elsewhere + path,
        "../ServicesTestPlugins.dll" + path, ".." + path})
    EXPECT_EQ(count(out, "Failed to load  plugin: " + line), 1u) << line << "\n" << out;
  EXPECT_EQ(count(out, "Failed to load"), 7u) << out;
  EXPECT_EQ(count(out, "\n"), 7u) << out;
}

TEST(RegistryTest, InUseSwitchSurvivesTheNextHostRun) {
  ConfigFile config;
  {
    HostRun run(config.path());
    // Named in any case, the switch is written under the registered spelling.
    st::stPluginRegistrator()->setPluginNotInUse(L"stdwslinetypeplugin");
    st::stPluginRegistrator()->setPluginNotInUse(L"StDWSNoSuchPlugin");
    EXPECT_EQ(registered()[1], "StDWSLinetypePlugin (off)");
  }
  EXPECT_EQ(keys(*config.tree(), kStandard), kDefaultPlugins);
  EXPECT_EQ(
      config.tree()->getValue(child(kStandard, "StDWSLinetypePlugin"), "PluginInUse")->getInt32(),
      0);
  {
    HostRun run(config.path());
    EXPECT_EQ(registered()[1], "StDWSLinetypePlugin (off)");
    st::stPluginRegistrator()->setPluginInUse(L"STDWSLINETYPEPLUGIN");
  }
  {
    HostRun run(config.path());
    EXPECT_EQ(registered(), kDefaultPlugins);
  }
  // The only plug-in of the only library: switched in memory, nothing written.
  auto tree = config.tree();
  tree->deleteKey(kPlugins, "StStandardPlugins");
  tree->createKey(kPlugins, "StStandardPlugins");
  tree->setValue(kStandard, "PluginDll", OdVariant(OdString(L"StStandardPlugins.dll")));
  tree->createKey(kStandard, "Solo");
  tree->setValue(child(kStandard, "Solo"), "PluginClassName", OdVariant(OdString(L"Solo")));
  tree->setValue(child(kStandard, "Solo"), "PluginInUse", std::int32_t{1});
  {
    HostRun run(config.path());
    st::stPluginRegistrator()->setPluginNotInUse(L"solo");
    EXPECT_EQ(registered(), std::vector<std::string>{"Solo (off)"});
  }
  EXPECT_EQ(config.tree()->getValue(child(kStandard, "Solo"), "PluginInUse")->getInt32(), 1);
}

TEST(RegistryTest, ServicesStartOnceInIndexOrderWhicheverIsAskedFirst) {
  const std::vector<std::function<bool()>> accessors{
      [] { return st::stStateSaver() != nullptr; },
      [] { return stSettingsStorage() != nullptr; },
      [] { return st::stPluginRegistrator() != nullptr; },
      [] { return st::stManagerCache() != nullptr; },
      [] { return st::stMessage() != nullptr; },
      [] { return st::stFileSystemService() != nullptr; },
  };
  for (std::size_t first = 0; first < accessors.size(); ++first) {
    SCOPED_TRACE(first);
    ConfigFile config;
    auto tree = config.tree();
    tree->createKey({"cmddata"}, "StandardsAudit");
    tree->setValue(kModule, "autoFixProperties", std::int32_t{1});
    HostRun run(config.path());
    EXPECT_TRUE(accessors[first]());
    for (const auto& accessor : accessors) EXPECT_TRUE(accessor());
    // The store was open before the settings loaded and before the registry read it; the
    // registry ran once; the messages have their texts.
    EXPECT_TRUE(stSettingsStorage()->getAutoFixProperties());
    EXPECT_EQ(registered(), kDefaultPlugins);
    EXPECT_EQ(count(run.output(), kStandardFailure), 1u);
    EXPECT_EQ(st::stMessage()->showMessage(st::kStMsgDuplicateFileName), kHostOk);
    EXPECT_EQ(st::stAppServices()->getService(6), nullptr);
    EXPECT_EQ(st::stAppServices()->getService(-1), nullptr);
  }
}

TEST(RegistryTest, CorruptConfigurationIsSetAsideAndStartsFresh) {
  ConfigFile config;
  std::ofstream(config.path()) << "{\"format\": 1, \"root\": {\"keys\": {\"cmddata\": ";
  HostRun run(config.path());
  EXPECT_EQ(registered(), kDefaultPlugins);
  std::size_t setAside = 0;
  for (const auto& entry : std::filesystem::directory_iterator(config.dir()))
    if (entry.path().filename().string().find("config.json.corrupt-") == 0) ++setAside;
  EXPECT_EQ(setAside, 1u);
  EXPECT_EQ(keys(*config.tree(), kPlugins), std::vector<std::string>{"StStandardPlugins"});
}

}  // namespace
