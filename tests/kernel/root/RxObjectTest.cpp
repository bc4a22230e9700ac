// Reference counting, smart pointers and run-time class checks of OdRxObject.

#include <gtest/gtest.h>

#include "OdError.h"
#include "OdRxClassDictionary.h"
#include "OdRxMacros.h"
#include "OdRxModule.h"
#include "TestSupport.h"

namespace {

// Counts its live instances, so that a missed or extra release shows up as a count.
class RxCounted : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(RxCounted);
  RxCounted() { ++alive; }
  ~RxCounted() override { --alive; }
  static inline int alive = 0;
};
class RxCountedChild : public RxCounted {
 public:
  ODRX_DECLARE_MEMBERS(RxCountedChild);
};
class RxStranger : public OdRxObject {
 public:
  ODRX_DECLARE_MEMBERS(RxStranger);
};

ODRX_DEFINE_MEMBERS(RxCounted, OdRxObject);
ODRX_DEFINE_MEMBERS(RxCountedChild, RxCounted);
ODRX_DEFINE_MEMBERS(RxStranger, OdRxObject);

class RxObjectTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RxCounted::rxInit();
    RxCountedChild::rxInit();
    RxStranger::rxInit();
  }
  void TearDown() override {
    RxStranger::rxUninit();
    RxCountedChild::rxUninit();
    RxCounted::rxUninit();
    EXPECT_EQ(RxCounted::alive, 0) << "an object outlived its last reference";
  }
};

TEST_F(RxObjectTest, ObjectIsFreedExactlyWhenTheLastReferenceGoes) {
  OdSmartPtr<RxCounted> first = RxCounted::createObject();
  EXPECT_EQ(first->numRefs(), 1);
  {
    OdSmartPtr<RxCounted> copy = first;
    OdRxObjectPtr asBase = copy;
    EXPECT_EQ(first->numRefs(), 3);
    OdSmartPtr<RxCounted> moved = std::move(copy);
    EXPECT_TRUE(copy.isNull());
    EXPECT_EQ(first->numRefs(), 3);
    OdSmartPtr<RxCounted>& same = first;
    first = same;  // assigning a pointer to itself keeps the reference
    EXPECT_EQ(first->numRefs(), 3);
  }
  EXPECT_EQ(first->numRefs(), 1);
  EXPECT_EQ(RxCounted::alive, 1);
  first.release();
  EXPECT_EQ(RxCounted::alive, 0);

  // Attaching takes over a reference; detaching hands it out again.
  RxCounted* raw = RxCounted::createObject().detach();
  EXPECT_EQ(raw->numRefs(), 1);
  OdSmartPtr<RxCounted> attached(raw, kOdRxObjAttach);
  EXPECT_EQ(raw->numRefs(), 1);
  OdSmartPtr<RxCounted> added(raw);
  EXPECT_EQ(raw->numRefs(), 2);
  added.attach(attached.detach());  // gives back added's own reference
  EXPECT_EQ(raw->numRefs(), 1);
  EXPECT_TRUE(attached.isNull());
  added = nullptr;
  EXPECT_EQ(RxCounted::alive, 0);
}

TEST_F(RxObjectTest, ClassChecksFollowTheHierarchy) {
  OdRxObjectPtr child = RxCountedChild::createObject();
  EXPECT_EQ(child->isA(), RxCountedChild::desc());
  EXPECT_TRUE(child->isKindOf(RxCounted::desc()));
  EXPECT_TRUE(child->isKindOf(OdRxObject::desc()));
  EXPECT_FALSE(child->isKindOf(RxStranger::desc()));
  EXPECT_FALSE(child->isKindOf(nullptr));

  // A checked construction up the hierarchy works and shares the object.
  OdSmartPtr<RxCounted> asParent(child);
  EXPECT_EQ(asParent, child);
  EXPECT_EQ(child->numRefs(), 2);

  // queryX hands out a reference only on success.
  OdRxObject* found = child->queryX(RxCounted::desc());
  ASSERT_EQ(found, child.get());
  found->release();
  EXPECT_EQ(child->queryX(RxStranger::desc()), nullptr);
  EXPECT_EQ(child->queryX(nullptr), nullptr);
  EXPECT_EQ(child->numRefs(), 2);
}

TEST_F(RxObjectTest, WrongClassThrowsOnConstructionAndCastGivesNull) {
  OdRxObjectPtr parent = RxCounted::createObject();
  try {
    OdSmartPtr<RxCountedChild> child(parent);
    FAIL() << "a parent object was taken for a child";
  } catch (const OdError_NotThatKindOfClass& e) {
    EXPECT_EQ(e.code(), eNotThatKindOfClass);
    EXPECT_STREQ(e.what(), "an object of class RxCounted is not a RxCountedChild");
  }
  EXPECT_THROW(OdSmartPtr<RxStranger>{parent.get()}, OdError_NotThatKindOfClass);
  EXPECT_TRUE(RxCountedChild::cast(parent.get()).isNull());
  EXPECT_TRUE(RxStranger::cast(nullptr).isNull());
  EXPECT_EQ(RxCounted::cast(parent.get()), parent);
  EXPECT_EQ(parent->numRefs(), 1) << "a failed check kept a reference";

  // Attaching with a check gives the caller's reference back even when the check fails.
  parent->addRef();
  EXPECT_THROW((OdSmartPtr<RxStranger>(parent.get(), kOdRxObjAttach)), OdError_NotThatKindOfClass);
  EXPECT_EQ(parent->numRefs(), 1);
}

TEST(RxObjectRootTest, KernelClassesAreRegisteredWhenTheLibraryLoads) {
  ASSERT_NE(OdRxObject::desc(), nullptr);
  EXPECT_EQ(odrxClassDictionary()->getAt(OdString(L"OdRxObject")), OdRxObject::desc());
  EXPECT_EQ(OdRxObject::desc()->myParent(), nullptr);
  EXPECT_EQ(OdRxModule::desc()->myParent(), OdRxObject::desc());
  EXPECT_TRUE(odrxCreateObject(OdString(L"OdRxObject")).isNull()) << "OdRxObject is abstract";
}

}  // namespace

namespace {

// Reference counting done wrong must not go unseen: in the sanitizer build a reference that
// is never released is reported as a leak when the program ends.
TEST(RxObjectLeakTest, AnUnreleasedReferenceIsReportedInTheSanitizerBuild) {
#if defined(__SANITIZE_ADDRESS__)
  const std::string probe = STAUDIT_BIN_DIR "/rx_leak_probe";
  auto balanced = testsupport::runCommand("ASAN_OPTIONS=detect_leaks=1 " + probe + " balanced");
  EXPECT_EQ(balanced.exitCode, 0) << balanced.output;
  auto leaked = testsupport::runCommand("ASAN_OPTIONS=detect_leaks=1 " + probe + " leak");
  EXPECT_NE(leaked.exitCode, 0);
  EXPECT_NE(leaked.output.find("detected memory leaks"), std::string::npos) << leaked.output;
  EXPECT_NE(leaked.output.find("odrxAlloc"), std::string::npos)
      << "the report names the kernel allocation: " << leaked.output;
#else
  GTEST_SKIP() << "the leak checker runs in the AddressSanitizer build only";
#endif
}

}  // namespace
