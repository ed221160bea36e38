#include "Platform/Geometry/Tg.h"

#include <cmath>
#include <limits>
#include <numbers>

#include <gtest/gtest.h>

TEST(TgTests, TheCrossProductFollowsTheRightHand) {
    EXPECT_EQ(TgVector3d::kXAxis.crossProduct(TgVector3d::kYAxis), TgVector3d::kZAxis);
    EXPECT_EQ(TgVector3d::kYAxis.crossProduct(TgVector3d::kXAxis), -TgVector3d::kZAxis);
    EXPECT_EQ(TgVector3d(1, 2, 3).crossProduct(TgVector3d(2, 4, 6)), TgVector3d());
}

TEST(TgTests, ANormalHasLengthOneOrIsTheVectorItself) {
    EXPECT_EQ(TgVector3d(0, 0, -4).normal(TgContext::gTol), -TgVector3d::kZAxis);
    EXPECT_NEAR(TgVector3d(1, 2, 3).normal().length(), 1.0, 1e-15);
    EXPECT_EQ(TgVector3d(1e-11, 0, 0).normal(), TgVector3d(1e-11, 0, 0));
    EXPECT_EQ(TgVector3d(1e-11, 0, 0).normal(TgTol(0, 0)), TgVector3d::kXAxis);
}

TEST(TgTests, LengthsNeitherOverflowNorVanish) {
    EXPECT_DOUBLE_EQ(TgVector3d(3e200, 4e200, 0).length(), 5e200);
    EXPECT_DOUBLE_EQ(TgVector3d(3e-200, 4e-200, 0).length(), 5e-200);
}

TEST(TgTests, PointsAndWaysAddUp) {
    TgPoint3d const a(1, 2, 3);
    TgPoint3d const b(4, 6, 3);
    EXPECT_EQ(a + (b - a), b);
    EXPECT_EQ(a.distanceTo(b), 5);
    EXPECT_TRUE(a.isEqualTo(TgPoint3d(1, 2, 3 + 1e-11)));
    EXPECT_FALSE(a.isEqualTo(TgPoint3d(1, 2, 3 + 1e-9)));
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
