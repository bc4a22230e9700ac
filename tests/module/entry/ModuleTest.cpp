// The module object and its plain exports: the classes it registers and deletes, in their
// order, and the answers of the exported functions without and with a host.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "EntryTestSupport.h"
#include "OdError.h"
#include "OdRxDynamicLinker.h"
#include "StAppServices.h"
#include "StAttachedStandards.h"
#include "StError.h"
#include "StExports.h"
#include "StModule.h"
#include "StSettingsStorage.h"

namespace {

using entrytest::ModuleHost;

OdResult codeThrownBy(void (*action)()) {
  try {
    action();
  } catch (const OdError& e) {
    return e.code();
  }
  return eOk;
}

TEST(StModule, RegistersItsClassesInOrderAndDeletesThemInTheSameOrder) {
  std::vector<std::string> names;
  for (const auto& cls : st::StModule::registeredClasses()) names.push_back(cls.name);
  EXPECT_EQ(names, (std::vector<std::string>{"StAppServices", "StDbReactor", "StDbReaderWriter",
                                             "StBlockProxy", "StTableProxy", "StError", "StFix",
                                             "StDWSPlugin", "StManager"}));

  OdSmartPtr<st::StModule> module = OdRxObjectImpl<st::StModule>::createObject();
  module->initApp();
  for (const auto& cls : st::StModule::registeredClasses()) {
    ASSERT_NE(cls.desc(), nullptr) << cls.name;
    EXPECT_EQ(cls.desc()->name(), OdString::fromUtf8(cls.name));
  }
  module->uninitApp();
  for (const auto& cls : st::StModule::registeredClasses()) EXPECT_EQ(cls.desc(), nullptr);

  // Nothing left registered: a second uninitApp, like a second rxUninit, is the kernel's
  // error for a class that is not registered; the module can start again afterwards.
  EXPECT_EQ(codeThrownBy([] { OdRxObjectImpl<st::StModule>::createObject()->uninitApp(); }),
            eNotInitializedYet);
  EXPECT_EQ(codeThrownBy([] { st::StError::rxUninit(); }), 255);

  // A class registered already: initApp fails and undoes what it did, so it can run again.
  st::StError::rxInit();
  EXPECT_EQ(codeThrownBy([] { OdRxObjectImpl<st::StModule>::createObject()->initApp(); }),
            eAlreadyRegistered);
  EXPECT_EQ(st::StModule::registeredClasses().front().desc(), nullptr);
  st::StError::rxUninit();
  module->initApp();
  module->uninitApp();
}

TEST(StExports, AnswerWithoutAndWithSettings) {
  EXPECT_FALSE(stIsDatabaseHasAttachedStandards(nullptr));
  stCheckStandards();  // no host, no drawing: nothing to do, nothing thrown

  ModuleHost m;
  st::StSettingsStorage* settings = stSettingsStorage();
  ASSERT_NE(settings, nullptr);
  settings->setAutoFixCommands(0xFFFFFFFFu);
  EXPECT_FALSE(stIsCheckAllowed(0));
  EXPECT_TRUE(stIsCheckAllowed(-1));
  settings->setAutoFixCommands(st::kStCheckOnSave | st::kStCheckOnPlot);
  EXPECT_TRUE(stIsCheckAllowed(0x10));
  EXPECT_FALSE(stIsCheckAllowed(0x20 | 0x04 | 0x08));

  // The host finds both by name in the loaded module.
  EXPECT_EQ(odrxDynamicLinker()->findSymbol("stIsCheckAllowed"),
            reinterpret_cast<void*>(&stIsCheckAllowed));
  EXPECT_EQ(odrxDynamicLinker()->findSymbol("stCheckStandards"),
            reinterpret_cast<void*>(&stCheckStandards));
}

}  // namespace
