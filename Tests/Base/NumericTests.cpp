#include "Platform/Base/Numeric.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

using Vn::Numeric::saturate;

constexpr double c_infinity = std::numeric_limits<double>::infinity();
constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();

static_assert(saturate<int>(3E9) == std::numeric_limits<int>::max());
static_assert(saturate<int>(-2.9) == -2);

template <class Integer>
class SaturateTests : public testing::Test {};

using Integers = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t,
                                std::int32_t, std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(SaturateTests, Integers);

TYPED_TEST(SaturateTests, EndsAndOddValues) {
    using Limits = std::numeric_limits<TypeParam>;
    auto const highest = static_cast<double>(Limits::max());
    auto const lowest = static_cast<double>(Limits::min());
    EXPECT_EQ(saturate<TypeParam>(c_nan), 0);
    EXPECT_EQ(saturate<TypeParam>(-c_nan), 0);
    EXPECT_EQ(saturate<TypeParam>(c_infinity), Limits::max());
    EXPECT_EQ(saturate<TypeParam>(-c_infinity), Limits::min());
    EXPECT_EQ(saturate<TypeParam>(std::numeric_limits<double>::max()), Limits::max());
    EXPECT_EQ(saturate<TypeParam>(std::numeric_limits<double>::lowest()), Limits::min());
    EXPECT_EQ(saturate<TypeParam>(highest), Limits::max());
    EXPECT_EQ(saturate<TypeParam>(lowest), Limits::min());
    EXPECT_EQ(saturate<TypeParam>(std::nextafter(highest, c_infinity)), Limits::max());
    EXPECT_EQ(saturate<TypeParam>(std::nextafter(lowest, -c_infinity)), Limits::min());
    EXPECT_EQ(saturate<TypeParam>(0.99), 0);
    EXPECT_EQ(saturate<TypeParam>(-0.99), 0);
    EXPECT_EQ(saturate<TypeParam>(99.99), 99);
    EXPECT_EQ(saturate<TypeParam>(std::numeric_limits<double>::denorm_min()), 0);
}

TEST(NumericTests, LargestDoubleBelowTheEndConvertsExactly) {
    EXPECT_EQ(saturate<std::int64_t>(std::nextafter(0x1p63, 0.0)), INT64_MAX - 1023);
    EXPECT_EQ(saturate<std::uint64_t>(std::nextafter(0x1p64, 0.0)), UINT64_MAX - 2047);
    EXPECT_EQ(saturate<std::int32_t>(2147483646.9), 2147483646);
    EXPECT_EQ(saturate<std::int32_t>(2147483647.9), 2147483647);
    EXPECT_EQ(saturate<std::int32_t>(-2147483648.9), INT32_MIN);
}

} // namespace
