// Registering, looking up, creating and removing run-time classes.

#include <gtest/gtest.h>

#include "OdError.h"
#include "OdRxClassDictionary.h"
#include "OdRxMacros.h"

namespace {

// An interface whose factory makes its implementation class, as engine interfaces do.
class RxShape : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(RxShape);
  virtual int corners() const = 0;
};
class RxShapeImpl : public RxShape {
 public:
  int corners() const override { return 4; }
};
// Abstract, with no constructor.
class RxAbstract : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(RxAbstract);
};
class RxConcrete : public RxAbstract {
 public:
  ODRX_DECLARE_MEMBERS(RxConcrete);
};

ODRX_DEFINE_MEMBERS_IMPL(RxShape, OdRxObject, RxShapeImpl);
ODRX_NO_CONS_DEFINE_MEMBERS(RxAbstract, OdRxObject);
ODRX_DXF_DEFINE_MEMBERS(RxConcrete, RxAbstract, "CONCRETE", "RxTests");

int g_renames = 0;
void renameForOldFiles(const OdRxClass* cls, OdString& appName, int saveVersion) {
  ++g_renames;
  if (saveVersion < 20) appName = cls->name() + OdString(L"-old");
}

int expectCode(OdResult code, void (*action)()) {
  try {
    action();
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), code) << e.what();
    return 1;
  }
  ADD_FAILURE() << "nothing was thrown, expected " << odResultName(code);
  return 0;
}

TEST(RxClassTest, RegisteringTwiceAndUnregisteringTwiceAreErrors) {
  RxShape::rxInit();
  EXPECT_TRUE(odrxClassDictionary()->names().contains(OdString(L"RxShape")));
  expectCode(eAlreadyRegistered, [] { RxShape::rxInit(); });
  // The name is taken however the second registration is made.
  expectCode(eAlreadyRegistered, [] { newOdRxClass(OdString(L"RxShape"), OdRxObject::desc()); });
  RxShape::rxUninit();
  EXPECT_EQ(RxShape::desc(), nullptr);
  EXPECT_EQ(odrxClassDictionary()->getAt(OdString(L"RxShape")), nullptr);
  try {
    RxShape::rxUninit();
    FAIL() << "unregistering an unregistered class passed";
  } catch (const OdError& e) {
    EXPECT_EQ(static_cast<int>(e.code()), 255);
    EXPECT_NE(std::string(e.what()).find("RxShape"), std::string::npos) << e.what();
  }
  expectCode(eNotInitializedYet, [] { deleteOdRxClass(nullptr); });
}

TEST(RxClassTest, CreatingByNameMakesTheImplementation) {
  RxShape::rxInit();
  RxAbstract::rxInit();
  RxConcrete::rxInit();

  OdRxObjectPtr made = odrxCreateObject(OdString(L"RxShape"));
  ASSERT_FALSE(made.isNull());
  EXPECT_EQ(made->numRefs(), 1);
  EXPECT_EQ(made->isA(), RxShape::desc());
  EXPECT_EQ(RxShape::cast(made.get())->corners(), 4);
  OdRxObject* raw = RxShape::pseudoConstructor();
  EXPECT_EQ(raw->numRefs(), 1);
  raw->release();

  EXPECT_TRUE(odrxCreateObject(OdString(L"RxAbstract")).isNull());
  EXPECT_TRUE(odrxCreateObject(OdString(L"NoSuchClass")).isNull());
  EXPECT_TRUE(odrxCreateObject(OdString(L"rxshape")).isNull()) << "names are case-sensitive";
  EXPECT_FALSE(RxConcrete::desc()->create().isNull());

  const OdRxClass* concrete = RxConcrete::desc();
  EXPECT_EQ(concrete->myParent(), RxAbstract::desc());
  EXPECT_TRUE(concrete->isDerivedFrom(OdRxObject::desc()));
  EXPECT_FALSE(RxAbstract::desc()->isDerivedFrom(concrete));
  EXPECT_TRUE(concrete->dxfName() == L"CONCRETE");
  EXPECT_TRUE(concrete->appName() == L"RxTests");

  // A parent goes only after its children, so no descriptor points at a freed one.
  expectCode(eInvalidInput, [] { RxAbstract::rxUninit(); });
  EXPECT_NE(RxAbstract::desc(), nullptr);
  RxConcrete::rxUninit();
  RxAbstract::rxUninit();
  RxShape::rxUninit();
}

TEST(RxClassTest, ParentMustBeRegisteredFirst) {
  expectCode(eNotInitializedYet, [] { RxConcrete::rxInit(); });
  EXPECT_EQ(RxConcrete::desc(), nullptr);
  expectCode(eInvalidInput, [] { newOdRxClass(OdString(), OdRxObject::desc()); });
}

TEST(RxClassTest, AppNameCallbackIsKeptAndCalled) {
  RxShape::rxInit(&renameForOldFiles);
  const OdRxClass* cls = RxShape::desc();
  EXPECT_EQ(cls->appNameCallbackPtr(), &renameForOldFiles);
  OdString name(L"App");
  EXPECT_TRUE(cls->notifyAppNameChange(name, 15));
  EXPECT_TRUE(name == L"RxShape-old");
  EXPECT_EQ(g_renames, 1);
  RxShape::rxUninit();

  RxShape::rxInit();
  OdString unchanged(L"App");
  EXPECT_FALSE(RxShape::desc()->notifyAppNameChange(unchanged, 15));
  EXPECT_TRUE(unchanged == L"App");
  RxShape::rxUninit();
}

}  // namespace
