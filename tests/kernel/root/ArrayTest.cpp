// Edge cases of OdArray: checked access at the ends, insertion and removal positions, search.

#include <gtest/gtest.h>

#include "OdArray.h"
#include "OdString.h"

namespace {

using Ints = OdArray<int>;

TEST(ArrayTest, CheckedAccessThrowsInvalidIndexOutsideTheArray) {
  Ints empty;
  EXPECT_THROW(empty.at(0), OdError_InvalidIndex);
  EXPECT_THROW(empty.first(), OdError_InvalidIndex);
  EXPECT_THROW(empty.last(), OdError_InvalidIndex);
  EXPECT_THROW(empty.removeLast(), OdError_InvalidIndex);
  EXPECT_THROW(empty.removeAt(0), OdError_InvalidIndex);

  Ints three{10, 20, 30};
  EXPECT_EQ(three.at(2), 30);
  EXPECT_EQ(three.last(), 30);
  try {
    three.at(3);
    FAIL() << "at() past the end passed";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eInvalidIndex);
  }
  EXPECT_THROW(three.setAt(3, 0), OdError_InvalidIndex);
  EXPECT_THROW(three.insertAt(4, 0), OdError_InvalidIndex);
  EXPECT_THROW(three.at(static_cast<Ints::size_type>(-1)), OdError_InvalidIndex);
  EXPECT_EQ(three, (Ints{10, 20, 30})) << "a failed call changed the array";
}

TEST(ArrayTest, InsertRemoveAndFindKeepOrder) {
  OdArray<OdString> names;
  EXPECT_EQ(names.append(OdString(L"b")), 0u);
  EXPECT_EQ(names.append(OdString(L"d")), 1u);
  names.insertAt(0, OdString(L"a")).insertAt(2, OdString(L"c")).insertAt(4, OdString(L"e"));
  ASSERT_EQ(names.size(), 5u);
  EXPECT_TRUE(names[0] == L"a" && names[2] == L"c" && names[4] == L"e");

  names.append(OdString(L"a"));
  Ints::size_type at = 99;
  EXPECT_TRUE(names.find(OdString(L"a"), at));
  EXPECT_EQ(at, 0u);
  EXPECT_TRUE(names.find(OdString(L"a"), at, 1));
  EXPECT_EQ(at, 5u);
  at = 99;
  EXPECT_FALSE(names.find(OdString(L"z"), at));
  EXPECT_FALSE(names.find(OdString(L"a"), at, 6)) << "a start past the end finds nothing";
  EXPECT_EQ(at, 99u) << "a miss must leave the index alone";

  names.removeAt(0).removeLast();
  EXPECT_TRUE(names.first() == L"b" && names.last() == L"e");
  EXPECT_TRUE(names.remove(OdString(L"c")));
  EXPECT_FALSE(names.contains(OdString(L"c")));
  EXPECT_FALSE(names.remove(OdString(L"c")));
  EXPECT_EQ(names.length(), 3u);
}

TEST(ArrayTest, LogicalLengthGrowsWithDefaultsAndShrinks) {
  Ints values{1, 2};
  EXPECT_EQ(values.setLogicalLength(4), (Ints{1, 2, 0, 0}));
  EXPECT_EQ(values.setLogicalLength(1), Ints{1});
}

}  // namespace
