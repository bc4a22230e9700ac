// The settings record over a real configuration file: what loads, what every setter writes,
// and the notification mode kept in the current drawing's system variable.

#include <gtest/gtest.h>

#include "OdDbDatabase.h"
#include "ServicesTestSupport.h"
#include "StSettingsStorage.h"

namespace {

using namespace servicestest;

// A configuration whose module key holds `values` before the run.
void prepare(const ConfigFile& config,
             const std::vector<std::pair<std::string, OdVariant>>& values) {
  auto tree = config.tree();
  tree->createKey({"cmddata"}, "StandardsAudit");
  for (const auto& [name, value] : values) tree->setValue(kModule, name, value);
}

TEST(SettingsTest, LoadsStoredValuesStrictly) {
  ConfigFile config;
  prepare(config, {{"autoFixProperties", std::int32_t{2}},
                   {"showIgnoredProblems", std::int64_t{1}},
                   {"preferredFile", OdString(L"/std/Büro.dws")},
                   {"autoFixCommands", std::int32_t{1 | 18 | 64}}});
  {
    HostRun run(config.path());
    st::StSettingsStorage* settings = stSettingsStorage();
    EXPECT_FALSE(settings->getAutoFixProperties());  // only 1 is true
    EXPECT_TRUE(settings->getShowIgnoredProblems());
    EXPECT_EQ(settings->getPreferredFile(), OdString(L"/std/Büro.dws"));
    EXPECT_TRUE(settings->hasPreferredFile());
    EXPECT_EQ(settings->getAutoFixCommands(), 83u);
  }
  // Values of another type than they should have keep the defaults.
  ConfigFile wrong;
  prepare(wrong, {{"autoFixProperties", OdString(L"1")},
                  {"autoFixCommands", 2.5},
                  {"preferredFile", std::int32_t{7}}});
  HostRun run(wrong.path());
  EXPECT_FALSE(stSettingsStorage()->getAutoFixProperties());
  EXPECT_EQ(stSettingsStorage()->getAutoFixCommands(), 0u);
  EXPECT_FALSE(stSettingsStorage()->hasPreferredFile());
}

TEST(SettingsTest, EverySetterRewritesAllFourValues) {
  ConfigFile config;
  prepare(config, {{"autoFixCommands", std::int32_t{64}}});
  {
    HostRun run(config.path());
    stSettingsStorage()->setAutoFixCommands(st::kStCheckOnSave | st::kStCheckOnPlot);
    run.host().app().configTree().deleteValue(kModule, "autoFixProperties");
    run.host().app().configTree().deleteValue(kModule, "autoFixCommands");
    stSettingsStorage()->setPreferredFile(L"/std/office.dws");
    stSettingsStorage()->setShowIgnoredProblems(true);
  }
  auto tree = config.tree();
  EXPECT_EQ(tree->valueNames(kModule),
            (std::vector<std::string>{"showIgnoredProblems", "preferredFile", "autoFixProperties",
                                      "autoFixCommands"}));
  EXPECT_EQ(tree->getValue(kModule, "autoFixCommands")->getInt32(), 18);
  EXPECT_EQ(tree->getValue(kModule, "autoFixProperties")->getInt32(), 0);
  EXPECT_EQ(tree->getValue(kModule, "showIgnoredProblems")->getInt32(), 1);
  EXPECT_EQ(tree->getValue(kModule, "preferredFile")->getString(), OdString(L"/std/office.dws"));

  HostRun run(config.path());
  stSettingsStorage()->setAutoFixProperties(true);
  EXPECT_TRUE(stSettingsStorage()->getShowIgnoredProblems());
  EXPECT_EQ(stSettingsStorage()->getAutoFixCommands(), 18u);
  EXPECT_EQ(config.tree()->getValue(kModule, "autoFixProperties")->getInt32(), 1);
}

TEST(SettingsTest, NotificationModeFollowsTheCurrentDrawing) {
  ConfigFile config;
  HostRun run(config.path());
  st::StSettingsStorage* settings = stSettingsStorage();
  settings->setNotificationMode(st::kStNotifyAlert);  // no drawing: ignored
  EXPECT_EQ(settings->getNotificationMode(), st::kStNotifyStatusBar);

  auto drawing = config.dir() / "plan.dxf";
  OdDbDatabase::createEmpty()->writeFile(drawing);
  run.host().openDrawing(drawing);
  EXPECT_EQ(settings->getNotificationMode(), st::kStNotifyStatusBar);
  settings->setNotificationMode(st::kStNotifyNone);
  EXPECT_EQ(settings->getNotificationMode(), st::kStNotifyNone);
  EXPECT_EQ(run.host().app().getSysVar(L"STANDARDSVIOLATION")->getInt32(), 0);
  settings->setNotificationMode(7);  // out of range: the host keeps the old value
  EXPECT_EQ(settings->getNotificationMode(), st::kStNotifyNone);
  EXPECT_TRUE(config.tree()->valueNames(kModule).empty());  // nothing goes to the configuration
}

TEST(SettingsTest, PublisherTextsFromTheHostKeyOrDefaults) {
  ConfigFile config;
  auto tree = config.tree();
  tree->createKey({}, "CadStandardPlugins");
  tree->setValue({"CadStandardPlugins"}, "developer", OdVariant(OdString()));
  tree->setValue({"CadStandardPlugins"}, "WEBSITE", OdVariant(OdString(L"https://std.test")));
  HostRun run(config.path());
  EXPECT_FALSE(stSettingsStorage()->getDeveloper().isEmpty());
  EXPECT_EQ(stSettingsStorage()->getWebSite(), OdString(L"https://std.test"));
}

}  // namespace
