#include "Platform/Geometry/Tg.h"

#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

#include "Tests/Support/Exactly.h"

TEST(TgTests, TheCrossProductFollowsTheRightHand) {
    EXPECT_EQ(exactly(TgVector3d::kXAxis.crossProduct(TgVector3d::kYAxis)),
              exactly(TgVector3d::kZAxis));
    EXPECT_EQ(exactly(TgVector3d::kYAxis.crossProduct(TgVector3d::kXAxis)),
              exactly(TgVector3d(0, 0, -1)));
    EXPECT_EQ(exactly(TgVector3d(1, 2, 3).crossProduct(TgVector3d(2, 4, 6))),
              exactly(TgVector3d()));
}

TEST(TgTests, ANormalHasLengthOneOrIsTheVectorItself) {
    EXPECT_EQ(exactly(TgVector3d(0, 0, -4).normal(TgContext::gTol)), exactly(TgVector3d(0, 0, -1)));
    EXPECT_NEAR(TgVector3d(1, 2, 3).normal().length(), 1.0, 1e-15);
    EXPECT_EQ(exactly(TgVector3d(1e-11, 0, 0).normal()), exactly(TgVector3d(1e-11, 0, 0)));
    EXPECT_EQ(exactly(TgVector3d(1e-11, 0, 0).normal(TgTol(0, 0))), exactly(TgVector3d::kXAxis));
}

TEST(TgTests, ANormalHasLengthOneWhereTheLengthOverflows) {
    EXPECT_NEAR(TgVector3d(0, 1.5e308, 1.5e308).normal().y, std::numbers::sqrt2 / 2, 1e-15);
    EXPECT_NEAR(TgVector3d(1.7e308, -1.7e308, 1.7e308).normal().length(), 1, 1e-15);
}

TEST(TgTests, LengthsNeitherOverflowNorVanish) {
    EXPECT_DOUBLE_EQ(TgVector3d(3e200, 4e200, 0).length(), 5e200);
    EXPECT_DOUBLE_EQ(TgVector3d(3e-200, 4e-200, 0).length(), 5e-200);
}

TEST(TgTests, PointsAndWaysAddUp) {
    TgPoint3d const a(1, 2, 3);
    TgPoint3d const b(4, 6, 3);
    EXPECT_EQ(exactly(a + (b - a)), exactly(b));
    EXPECT_EQ(a.distanceTo(b), 5);
    EXPECT_TRUE(a.isEqualTo(TgPoint3d(1, 2, 3 + 1e-11)));
    EXPECT_FALSE(a.isEqualTo(TgPoint3d(1, 2, 3 + 1e-9)));
}

template <class T>
class TgEqualityTests : public testing::Test {};
using PointsAndVectors = testing::Types<TgPoint3d, TgVector3d>;
TYPED_TEST_SUITE(TgEqualityTests, PointsAndVectors);

TYPED_TEST(TgEqualityTests, EqualIsWithinTheDefaultTolerance) {
    TypeParam const a(1, 2, 3);
    EXPECT_EQ(a, TypeParam(1, 2, 3 + 0.9e-10));
    EXPECT_NE(a, TypeParam(1, 2, 3 + 1.1e-10));
    // The length of the difference counts, not each component.
    EXPECT_EQ(a, TypeParam(1 + 0.7e-10, 2 + 0.7e-10, 3));
    EXPECT_NE(a, TypeParam(1 + 0.8e-10, 2 + 0.8e-10, 3));
    EXPECT_EQ(TypeParam(0.0, 0, 0), TypeParam(-0.0, 0, 0));
    EXPECT_EQ(TypeParam(1e-300, 0, 0), TypeParam());
    EXPECT_NE(TypeParam(1e308, 0, 0), TypeParam(-1e308, 0, 0));
}

TYPED_TEST(TgEqualityTests, WhatIsntFiniteEqualsNothing) {
    constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double c_inf = std::numeric_limits<double>::infinity();
    for (double const odd : {c_nan, c_inf, -c_inf}) {
        TypeParam const a(1, odd, 3);
        TypeParam const same = a;
        EXPECT_NE(a, same) << odd;
        EXPECT_NE(a, TypeParam(1, 2, 3)) << odd;
        EXPECT_NE(a, TypeParam(c_inf, odd, 3)) << odd;
    }
}

TEST(TgTests, ARotationTurnsAboutItsCenter) {
    TgMatrix3d const turn =
        TgMatrix3d::rotation(std::numbers::pi / 2, TgVector3d(0, 0, 9), TgPoint3d(1, 0, 0));
    EXPECT_TRUE((turn * TgPoint3d(2, 0, 5)).isEqualTo(TgPoint3d(1, 1, 5)));
    EXPECT_TRUE((turn * TgVector3d::kXAxis).isEqualTo(TgVector3d::kYAxis));
    EXPECT_EQ(TgMatrix3d::rotation(1, TgVector3d()), TgMatrix3d::kIdentity);
}

TEST(TgTests, AMapAndItsInverseChangeNothing) {
    TgMatrix3d const map = TgMatrix3d::translation(TgVector3d(1, 2, 3)) *
                           TgMatrix3d::rotation(0.7, TgVector3d(1, 1, 0));
    TgMatrix3d back;
    ASSERT_TRUE(map.inverse(back));
    EXPECT_TRUE((back * (map * TgPoint3d(5, 6, 7))).isEqualTo(TgPoint3d(5, 6, 7)));
    TgMatrix3d flat;
    flat.entry(2, 2, 0);
    TgMatrix3d untouched = back;
    EXPECT_FALSE(flat.inverse(untouched));
    EXPECT_EQ(untouched, back);
}
