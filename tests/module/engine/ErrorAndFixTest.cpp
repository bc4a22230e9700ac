// Errors and fixes as plug-ins make and read them, and the class factories of the engine's
// run-time classes.

#include <gtest/gtest.h>

#include <climits>

#include "OdError.h"
#include "StDWSPluginImpl.h"
#include "StEnumDWSPlugin.h"
#include "StErrorFlags.h"
#include "StErrorImpl.h"
#include "StFixImpl.h"

namespace {

// The code of the OdError that `action` throws, or eOk when it throws none.
template <class Action>
int thrownCode(Action action) {
  try {
    action();
  } catch (const OdError& e) {
    return e.code();
  }
  return eOk;
}

// Registers the engine's classes for one test only, so that no test depends on another's
// registrations.
class EngineClassesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    st::StError::rxInit();
    st::StFix::rxInit();
    st::StDWSPlugin::rxInit();
    st::StEnumDWSPlugin::rxInit();
  }
  void TearDown() override {
    st::StEnumDWSPlugin::rxUninit();
    st::StDWSPlugin::rxUninit();
    st::StFix::rxUninit();
    st::StError::rxUninit();
  }
};

TEST_F(EngineClassesTest, ErrorKeepsWhatThePluginSetAndListsItsPropertiesInOrder) {
  st::StErrorPtr error = st::StError::createObject();
  error->setFlags(st::kStErrorFixable | st::kStErrorIgnored);
  error->setFlags(st::kStErrorAlwaysReported);
  EXPECT_EQ(error->flags(), 0x80u) << "flags are replaced, not added";

  OdString name;
  OdVariant value(L"untouched");
  EXPECT_FALSE(error->property(0, name, value)) << "no properties yet";
  EXPECT_FALSE(error->propertyValue(L"Color", value));
  EXPECT_EQ(value.getString(), L"untouched");

  error->addProperty(L"Color", OdVariant(std::int32_t(1)));
  error->addProperty(L"Linetype", OdVariant(L"Dashed"));
  error->addProperty(L"Color", OdVariant(std::int32_t(7)));
  ASSERT_EQ(error->propertyCount(), 3u) << "a repeated name keeps both pairs";
  ASSERT_TRUE(error->propertyValue(L"Color", value));
  EXPECT_EQ(value.getInt32(), 1) << "the first pair of a name wins";
  EXPECT_FALSE(error->propertyValue(L"color", value)) << "names compare exactly";
  ASSERT_TRUE(error->property(2, name, value));
  EXPECT_EQ(name, L"Color");
  EXPECT_EQ(value.getInt32(), 7);

  // Outside the list: negative indices, and the index equal to the count that the bound test
  // itself lets through.
  for (std::int32_t index : {-1, INT_MIN, 3, 4, INT_MAX}) {
    SCOPED_TRACE(index);
    name = L"kept";
    EXPECT_FALSE(error->property(index, name, value));
    EXPECT_EQ(name, L"kept");
  }
}

TEST_F(EngineClassesTest, FixReplacesAPropertyThatIsSetAgain) {
  st::StFixPtr fix = st::StFix::createObject();
  fix->setPropertyValue(L"Color", OdVariant(std::int32_t(1)));
  fix->setPropertyValue(L"Lineweight", OdVariant(std::int32_t(25)));
  fix->setPropertyValue(L"Color", OdVariant(std::int32_t(3)));
  OdVariant value;
  ASSERT_TRUE(fix->propertyValue(L"Color", value));
  EXPECT_EQ(value.getInt32(), 3);
  EXPECT_FALSE(fix->propertyValue(L"Plot", value));
  EXPECT_EQ(value.getInt32(), 3) << "a miss leaves the output alone";
}

TEST_F(EngineClassesTest, ClassesAreMadeByNameAndCastOnlyToWhatTheyAre) {
  OdRxObjectPtr error = odrxCreateObject(L"StError");
  OdRxObjectPtr fix = odrxCreateObject(L"StFix");
  OdRxObjectPtr plugin = odrxCreateObject(L"StDWSPlugin");
  ASSERT_FALSE(error.isNull());
  EXPECT_NE(dynamic_cast<st::StErrorImpl*>(error.get()), nullptr);
  EXPECT_NE(dynamic_cast<st::StFixImpl*>(fix.get()), nullptr);
  EXPECT_NE(dynamic_cast<st::StDWSPluginImpl*>(plugin.get()), nullptr);
  EXPECT_EQ(error->isA(), st::StError::desc());
  EXPECT_EQ(st::StDWSPlugin::desc()->myParent(), OdRxObject::desc());

  EXPECT_FALSE(st::StError::cast(error.get()).isNull());
  EXPECT_TRUE(st::StError::cast(fix.get()).isNull());
  EXPECT_TRUE(st::StFix::cast(plugin.get()).isNull());
  EXPECT_THROW(st::StFixPtr{error}, OdError_NotThatKindOfClass);

  // The enumerator is made by the manager only.
  EXPECT_EQ(st::StEnumDWSPlugin::desc()->constructor(), nullptr);
  EXPECT_TRUE(odrxCreateObject(L"StEnumDWSPlugin").isNull());
}

TEST_F(EngineClassesTest, RegisteringTwiceOrUnregisteringAClassNotRegisteredThrows) {
  EXPECT_EQ(thrownCode([] { st::StError::rxInit(); }), eAlreadyRegistered);
  st::StFix::rxUninit();
  EXPECT_TRUE(odrxCreateObject(L"StFix").isNull());
  EXPECT_EQ(thrownCode([] { st::StFix::rxUninit(); }), 255) << "the class is not registered";

  // The second form of registration records the application-name callback.
  OdRxClass::AppNameChangeFuncPtr callback = [](const OdRxClass*, OdString& name, int) {};
  st::StFix::rxInit(callback);
  EXPECT_EQ(st::StFix::desc()->appNameCallbackPtr(), callback);
}

}  // namespace
