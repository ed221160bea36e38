#include "Platform/Base/Numeric.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

using Vn::Numeric::power;
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

TEST(PowerTests, ExactValues) {
    struct Row {
        double base;
        double exponent;
        double power;
    };
    Row const rows[] = {
        {2.0, 10.0, 1024.0},
        {10.0, -2.0, 0.01},
        {10.0, 22.0, 1e22},
        {10.0, -300.0, 1e-300},
        {3.0, -1.0, 1.0 / 3.0},
        {4.0, 0.5, 2.0},
        {-2.0, 3.0, -8.0},
        {-2.0, -3.0, -0.125},
        {-2.0, 4.0, 16.0},
        {-1.0, 1025.0, -1.0},
        {-1.0, 9007199254740991.0, -1.0},
        {-1.0, 9007199254740992.0, 1.0},
        {2.0, -1074.0, std::numeric_limits<double>::denorm_min()},
        {2.0, -1076.0, 0.0},
        {2.0, 1024.0, c_infinity},
        {-2.0, 1025.0, -c_infinity},
        {2.0, -1e300, 0.0},
        {2.0, 1e300, c_infinity},
        {1e-300, -2.0, c_infinity},
        {7.0, 0.0, 1.0},
        {0.0, 0.0, 1.0},
        {0.0, 2.0, 0.0},
        {0.0, -2.0, c_infinity},
        {c_infinity, -1.0, 0.0},
        {-c_infinity, 3.0, -c_infinity},
        {1.0, c_nan, 1.0},
        {2.0, -c_infinity, 0.0},
    };
    for (Row const & row : rows)
        EXPECT_EQ(power(row.base, row.exponent), row.power) << row.base << '^' << row.exponent;
    EXPECT_TRUE(std::isnan(power(-1.0, 0.5)));
    EXPECT_TRUE(std::isnan(power(c_nan, 2.0)));
}

// Whether `power` is the nearest double or a neighbour of it.
bool isNearest(double power, double nearest) {
    return power >= std::nextafter(nearest, 0.0) && power <= std::nextafter(nearest, c_infinity);
}

TEST(PowerTests, ManyProductsAreAsRight) {
    EXPECT_TRUE(isNearest(power(1.5, 1600.0), 0x1.eb24c467b9328p+935));
    EXPECT_TRUE(isNearest(power(1.0009765625, 4096.0), 0x1.b3eef93e249ddp+5));
    EXPECT_TRUE(isNearest(power(1.0009765625, -4096.0), 0x1.2cab72af28a77p-6));
}

TEST(PowerTests, PowersOfTenAreTheNearestDoublesOrTheirNeighbours) {
    for (int exponent = -323; exponent <= 308; ++exponent) {
        std::string const text = "1e" + std::to_string(exponent);
        double nearest = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), nearest);
        EXPECT_TRUE(isNearest(power(10.0, exponent), nearest)) << text;
    }
}

} // namespace
