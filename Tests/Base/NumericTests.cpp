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

TEST(PowerTests, ManyProductsAreAsRight) {
    EXPECT_EQ(power(1.5, 1600.0), 0x1.eb24c467b9328p+935);
    EXPECT_EQ(power(1.0009765625, 4096.0), 0x1.b3eef93e249ddp+5);
    EXPECT_EQ(power(1.0009765625, -4096.0), 0x1.2cab72af28a77p-6);
}

TEST(PowerTests, PowersOfTenAreTheNearestDoubles) {
    for (int exponent = -323; exponent <= 308; ++exponent) {
        std::string const text = "1e" + std::to_string(exponent);
        double nearest = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), nearest);
        EXPECT_EQ(power(10.0, exponent), nearest) << text;
    }
}

// Values found with an arithmetic of many digits.  Those of <cmath> here or there differ from most
// of them by a place, or have lost all of them where the angle is large.
TEST(FunctionTests, ResultsAreTheNearestDoubles) {
    struct Row {
        double (*function)(double) noexcept;
        double x;
        double nearest;
    };
    // clang-format off
    Row const rows[] = {
        {&Vn::Numeric::sin, 0.5, 0x1.eaee8744b05fp-2},
        {&Vn::Numeric::sin, 1e8, 0x1.dcffca623a20bp-1},
        {&Vn::Numeric::sin, 1e14, -0x1.acde4341a9ee7p-3},
        {&Vn::Numeric::sin, 1e22, -0x1.b453ab76bf397p-1},
        {&Vn::Numeric::sin, 1.7453292519943296e18, 0x1.39748a8e6abcbp-2},
        {&Vn::Numeric::sin, 0x1.206582030ca64p+6, 0x1.413b8ed739c0bp-3},
        {&Vn::Numeric::sin, 0x1.f9f2d07992aa6p+5, 0x1.99c7acb7a8869p-2},
        {&Vn::Numeric::sin, 0x1.453d95a64bb97p+5, 0x1.79ff9e83c1037p-3},
        {&Vn::Numeric::cos, 0.5, 0x1.c1528065b7d5p-1},
        {&Vn::Numeric::cos, 1e8, -0x1.741b388a8c029p-2},
        {&Vn::Numeric::cos, 1e14, -0x1.f4a5e8cbdb66ap-1},
        {&Vn::Numeric::cos, 1e22, 0x1.0be2cef01c8f4p-1},
        {&Vn::Numeric::cos, 1.7453292519943296e18, -0x1.e76c18cefd49dp-1},
        {&Vn::Numeric::cos, 0x1.8c8908d593d69p+6, 0x1.61dbe6cfcfcbbp-3},
        {&Vn::Numeric::cos, 0x1.53b92c27595a4p+4, -0x1.73aa6a24ee707p-1},
        {&Vn::Numeric::cos, 0x1.eef925148329bp+4, 0x1.c61e22c03bd1fp-1},
        {&Vn::Numeric::tan, 0.5, 0x1.17b4f5bf3474ap-1},
        {&Vn::Numeric::tan, 1e8, -0x1.4829e83f49589p+1},
        {&Vn::Numeric::tan, 1e14, 0x1.b697b22025a6bp-3},
        {&Vn::Numeric::tan, 1e22, -0x1.a0f79c1b6b257p+0},
        {&Vn::Numeric::tan, 1.7453292519943296e18, -0x1.4942c958866eap-2},
        {&Vn::Numeric::tan, 0x1.006263e680d4ap+4, 0x1.4ede51237b755p-2},
        {&Vn::Numeric::tan, 0x1.478bf221bcad1p+6, 0x1.aa5ee244fc1ebp-3},
        {&Vn::Numeric::tan, 0x1.861be819aac2dp+6, 0x1.1c2e9a1566cbfp-3},
        {&Vn::Numeric::asin, 0x1.1b374a2b89a34p-2, 0x1.1ef4ffeaa7a4bp-2},
        {&Vn::Numeric::asin, 0x1.b062a3c99e44bp-1, 0x1.0171568ec9765p+0},
        {&Vn::Numeric::asin, 0x1.5046d9f8c9eep-2, 0x1.56a276ccdefd1p-2},
        {&Vn::Numeric::acos, 0x1.b423eb84d56fp-2, 0x1.217d672e7dd2dp+0},
        {&Vn::Numeric::acos, 0x1.83fda1b0ea4fap-2, 0x1.2ea421cc1c3ffp+0},
        {&Vn::Numeric::acos, 0x1.e40aba2c2eae2p-1, 0x1.53f637e39f265p-2},
        {&Vn::Numeric::atan, 0x1.0a8c1acd54db6p+2, 0x1.55cc5f1543dd7p+0},
        {&Vn::Numeric::atan, 0x1.d3835e38b753ep+2, 0x1.6f4b9b9f99d04p+0},
        {&Vn::Numeric::atan, 0x1.8b2158a47355cp+1, 0x1.41ecd4eb8aeb7p+0},
        {&Vn::Numeric::sinh, 0x1.8a2f5003a630cp-2, 0x1.93fe1342ee721p-2},
        {&Vn::Numeric::sinh, 0x1.205e8de9453d2p+1, 0x1.2d1f30a1b067p+2},
        {&Vn::Numeric::sinh, 0x1.ed45f2d16524p-1, 0x1.1e99e10a69d07p+0},
        {&Vn::Numeric::cosh, 0x1.aec2f4309b4ep+2, 0x1.a2d892bb5422cp+8},
        {&Vn::Numeric::cosh, 0x1.b098bab0de845p+2, 0x1.af077ecc18ac7p+8},
        {&Vn::Numeric::cosh, 0x1.190881ffbaabfp+1, 0x1.2315ff41238b1p+2},
        {&Vn::Numeric::tanh, 0x1.cd6416420861cp-3, 0x1.c5bd83f76b6a6p-3},
        {&Vn::Numeric::tanh, 0x1.5a13c88d7ed04p-1, 0x1.2d802ce78dd05p-1},
        {&Vn::Numeric::tanh, 0x1.9683dd96a352dp-1, 0x1.52415ab2f3c33p-1},
        {&Vn::Numeric::exp, 0x1.1ea5deff8140ap+2, 0x1.608a9f59b3c9bp+6},
        {&Vn::Numeric::exp, 0x1.6cad22fe5e01ap-1, 0x1.04f084fe67e9ap+1},
        {&Vn::Numeric::exp, 0x1.a6f13e1d1bf6ep+2, 0x1.72acef9e102aep+9},
        {&Vn::Numeric::log, 0x1.719cd32e4f2f1p+8, 0x1.7a65ab6e2c877p+2},
        {&Vn::Numeric::log, 0x1.47868c6e33fep+7, 0x1.464c7f1e4b69bp+2},
        {&Vn::Numeric::log, 0x1.75bbb4f251266p+8, 0x1.7b1b50f7d91f9p+2},
        {&Vn::Numeric::log10, 0x1.c293bdbc7c2f7p+7, 0x1.2d268e509a3fbp+1},
        {&Vn::Numeric::log10, 0x1.bf5f1c68ef377p+5, 0x1.bf614b821c6c1p+0},
        {&Vn::Numeric::log10, 0x1.312d39079f03cp+7, 0x1.177da04f7987fp+1},
    };
    // clang-format on
    for (Row const & row : rows)
        EXPECT_EQ(row.function(row.x), row.nearest) << (&row - rows) << " of " << row.x;
}

TEST(FunctionTests, WhatHasNoValueIsNaN) {
    EXPECT_TRUE(std::isnan(Vn::Numeric::sin(c_infinity)));
    EXPECT_TRUE(std::isnan(Vn::Numeric::cos(-c_infinity)));
    EXPECT_TRUE(std::isnan(Vn::Numeric::tan(c_nan)));
    EXPECT_TRUE(std::isnan(Vn::Numeric::asin(1.0000001)));
    EXPECT_TRUE(std::isnan(Vn::Numeric::acos(-2.0)));
    EXPECT_TRUE(std::isnan(Vn::Numeric::log(-1.0)));
    EXPECT_TRUE(std::isnan(Vn::Numeric::log10(-1.0)));
}

TEST(FunctionTests, EndsAreThoseOfTheFunctions) {
    EXPECT_EQ(Vn::Numeric::exp(710.0), c_infinity);
    EXPECT_EQ(Vn::Numeric::exp(-746.0), 0.0);
    EXPECT_EQ(Vn::Numeric::exp(-745.0), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Vn::Numeric::exp(-c_infinity), 0.0);
    EXPECT_EQ(Vn::Numeric::cosh(-c_infinity), c_infinity);
    EXPECT_EQ(Vn::Numeric::sinh(-711.0), -c_infinity);
    EXPECT_EQ(Vn::Numeric::tanh(400.0), 1.0);
    EXPECT_EQ(Vn::Numeric::log(0.0), -c_infinity);
    EXPECT_EQ(Vn::Numeric::log10(1000.0), 3.0);
    EXPECT_EQ(Vn::Numeric::log10(std::numeric_limits<double>::denorm_min()), -0x1.434e6420f4374p+8);
    EXPECT_EQ(Vn::Numeric::atan(c_infinity), 0x1.921fb54442d18p+0);
    EXPECT_EQ(Vn::Numeric::cos(0.0), 1.0);
    EXPECT_TRUE(std::signbit(Vn::Numeric::sin(-0.0)));
    EXPECT_EQ(Vn::Numeric::sin(std::numeric_limits<double>::denorm_min()),
              std::numeric_limits<double>::denorm_min());
}

} // namespace
