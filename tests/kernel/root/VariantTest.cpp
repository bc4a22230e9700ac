// OdVariant: type codes, checked getters, unsigned values and held object references.

#include <cstdint>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include "OdError.h"
#include "OdRxObjectImpl.h"
#include "OdVariant.h"

namespace {

// Narrow text must say whether it is Unicode or code-page bytes; other pointers must not
// silently become bools.
static_assert(!std::is_constructible_v<OdVariant, const char*>);
static_assert(!std::is_constructible_v<OdVariant, const int*>);

class VariantPayload : public OdRxObject {};

TEST(VariantTest, EachConstructorGivesItsTypeCode) {
  EXPECT_EQ(OdVariant().varType(), 0);
  EXPECT_EQ(OdVariant(L"text").varType(), 1);
  EXPECT_EQ(OdVariant(OdString(L"text")).varType(), 1);
  EXPECT_EQ(OdVariant(true).varType(), 2);
  EXPECT_EQ(OdVariant(std::int8_t{-1}).varType(), 3);
  EXPECT_EQ(OdVariant(std::int16_t{7}).varType(), 4);
  EXPECT_EQ(OdVariant(7).varType(), 5);
  EXPECT_EQ(OdVariant(std::int64_t{7}).varType(), 6);
  EXPECT_EQ(OdVariant(7LL).varType(), 6);
  EXPECT_EQ(OdVariant(0.5).varType(), 7);
  EXPECT_EQ(OdVariant(0.5f).varType(), 7);
  EXPECT_EQ(OdVariant(OdAnsiString("bytes")).varType(), 8);
  EXPECT_EQ(OdVariant(OdRxObjectPtr()).varType(), 9);
  EXPECT_STREQ(OdVariant::typeName(8), "narrow string");
  EXPECT_STREQ(OdVariant::typeName(64), "unknown");
}

TEST(VariantTest, GettersOfAnotherTypeThrowAndNeverConvert) {
  OdVariant value(std::int16_t{7});
  EXPECT_EQ(value.getInt16(), 7);
  try {
    value.getInt32();
    FAIL() << "an int16 was read as an int32";
  } catch (const OdError& e) {
    EXPECT_EQ(e.code(), eNotThatKindOfClass);
    EXPECT_STREQ(e.what(), "variant holds int16, not int32");
  }
  EXPECT_THROW(OdVariant().getString(), OdError);
  EXPECT_THROW(OdVariant(L"1").getBool(), OdError);
  EXPECT_THROW(OdVariant(OdAnsiString("x")).getString(), OdError);

  value.setString(OdString(L"now text"));
  EXPECT_EQ(value.varType(), OdVariant::kString);
  EXPECT_TRUE(value.getString() == L"now text");
  EXPECT_TRUE(value.setVoid().isVoid());
}

TEST(VariantTest, UnsignedValuesKeepTheirBitsInTheSignedType) {
  // A lineweight of -1 stored as unsigned 32 bits reads back as its two's complement.
  OdVariant weight;
  weight.setUInt32(static_cast<std::uint32_t>(-1));
  EXPECT_EQ(weight.varType(), OdVariant::kInt32);
  EXPECT_EQ(weight.getUInt32(), 0xFFFFFFFFu);
  EXPECT_EQ(weight.getInt32(), -1);

  EXPECT_EQ(OdVariant(std::uint8_t{200}).getUInt8(), 200);
  EXPECT_EQ(OdVariant(std::uint16_t{65535}).getInt16(), -1);
  const auto big = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(OdVariant(big).getUInt64(), big);
}

TEST(VariantTest, ObjectPointerHoldsAReferenceForItsLifetime) {
  OdRxObjectPtr payload = OdRxObjectImpl<VariantPayload>::createObject();
  {
    OdVariant held(payload);
    OdVariant copy = held;
    EXPECT_EQ(payload->numRefs(), 3);
    EXPECT_EQ(copy.getRxObjectPtr(), payload);
    copy.setDouble(1.0);
    EXPECT_EQ(payload->numRefs(), 2) << "replacing the value gave the reference back";
    OdVariant fromRaw(payload.get());
    EXPECT_EQ(payload->numRefs(), 3);
  }
  EXPECT_EQ(payload->numRefs(), 1);
}

}  // namespace
