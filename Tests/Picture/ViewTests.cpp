#include "Platform/Picture/View.h"

#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "Tests/Picture/PictureTesting.h"

namespace Vn::Picture {

namespace {

using namespace Testing;

constexpr double c_nan = std::numeric_limits<double>::quiet_NaN();

View from(TgPoint3d const & position, TgVector3d const & up = TgVector3d::kZAxis) {
    View view;
    view.position = position;
    view.up = up;
    return view;
}

TEST(ViewTests, AFrameIsSound) {
    ViewFrame frame;
    ASSERT_TRUE(makeFrame(from({0, -10, 0}), 1, frame));
    EXPECT_TRUE(frame.right.isEqualTo({1, 0, 0}));
    EXPECT_TRUE(frame.up.isEqualTo({0, 0, 1}));
    EXPECT_TRUE(frame.back.isEqualTo({0, -1, 0}));
    EXPECT_EQ(frame.distance, 10);
    EXPECT_TRUE(frame.seen({3, -10, 4}).isEqualTo({3, 4, 0}));
    EXPECT_TRUE(frame.seen({0, 0, 0}).isEqualTo({0, 0, -10}));
}

TEST(ViewTests, ADirectionOfUpThatIsNoneIsReplaced) {
    ViewFrame frame;
    for (TgVector3d const & up : {TgVector3d(0, -5, 0), TgVector3d(0, 0, 0), TgVector3d(0, 1, 0)}) {
        ASSERT_TRUE(makeFrame(from({0, -10, 0}, up), 1, frame));
        EXPECT_TRUE(frame.up.isEqualTo({0, 0, 1}));
    }
    ASSERT_TRUE(makeFrame(from({0, 0, 10}), 1, frame)); // from above, with z up
    EXPECT_TRUE(frame.up.isEqualTo({0, 1, 0}));
    EXPECT_TRUE(frame.right.isEqualTo({1, 0, 0}));
}

TEST(ViewTests, ViewsThatShowNothingAreRefused) {
    ViewFrame frame;
    auto const why = [&](View const & view) { return makeFrame(view, 1, frame).cause(); };
    EXPECT_EQ(why(from({0, 0, 0})), "it looks in no direction");
    EXPECT_EQ(why(from({c_nan, 0, 0})), "its position or target isn't finite");
    EXPECT_EQ(why(from({1, 0, 0}, {0, c_nan, 0})), "its direction of up isn't finite");
    for (double const size : {0.0, -1.0, c_nan, std::numeric_limits<double>::infinity()}) {
        View view = from({1, 0, 0});
        view.height = size;
        EXPECT_EQ(why(view), "its extents aren't above 0");
    }
}

TEST(ViewTests, SizesAreWidenedToTheShapeOfThePicture) {
    View view = from({1, 0, 0});
    view.width = 4;
    view.height = 3;
    ViewFrame frame;
    ASSERT_TRUE(makeFrame(view, 2, frame));
    EXPECT_EQ(frame.width, 6);
    EXPECT_EQ(frame.height, 3);
    ASSERT_TRUE(makeFrame(view, 1, frame));
    EXPECT_EQ(frame.width, 4);
    EXPECT_EQ(frame.height, 4);
}

// How far out of the middle a point is seen, 1 being the border.
double outward(ViewFrame const & frame, TgPoint3d const & point) {
    TgVector3d const seen = frame.seen(point);
    double const scale = frame.perspective ? frame.distance / -seen.z : 1;
    return std::max(std::fabs(seen.x) * scale * 2 / frame.width,
                    std::fabs(seen.y) * scale * 2 / frame.height);
}

TEST(ViewTests, AFittedViewShowsTheWholeBoxAndFillsThePicture) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> number(-1, 1);
    auto const point = [&](double size) {
        return TgPoint3d(number(random) * size, number(random) * size, number(random) * size);
    };
    for (int i = 0; i < 500; ++i) {
        double const size = std::pow(10, number(random) * 7);
        BoundingBox box = BoundingBox::of(point(size * 10));
        box.add(BoundingBox::of(box.low + point(size).asVector()));
        View view = from(point(1));
        view.target = point(1);
        view.perspective = i % 2 == 0;
        double const aspect = std::pow(4, number(random));
        View fitted;
        ASSERT_TRUE(fit(view, box, aspect, fitted));
        ViewFrame before;
        ViewFrame frame;
        ASSERT_TRUE(makeFrame(view, aspect, before));
        ASSERT_TRUE(makeFrame(fitted, aspect, frame));
        EXPECT_TRUE(frame.back.isEqualTo(before.back, TgTol(1e-6, 1e-6)));
        double farthest = 0;
        for (int corner = 0; corner < 8; ++corner) {
            TgPoint3d const at{corner & 1 ? box.high.x : box.low.x,
                               corner & 2 ? box.high.y : box.low.y,
                               corner & 4 ? box.high.z : box.low.z};
            EXPECT_LT(frame.seen(at).z, 0) << i; // in front of the eye
            farthest = std::max(farthest, outward(frame, at));
        }
        EXPECT_LE(farthest, 1) << i;
        EXPECT_GE(farthest, 0.9) << i;
    }
}

TEST(ViewTests, APointIsShownWithACentimetreAroundIt) {
    for (bool const perspective : {false, true}) {
        View view = from({0, -10, 0});
        view.perspective = perspective;
        View fitted;
        ASSERT_TRUE(fit(view, BoundingBox::of({5, 5, 5}), 2, fitted));
        EXPECT_NEAR(fitted.height, 1, 1e-9);
        EXPECT_NEAR(fitted.width, 2, 1e-9);
        EXPECT_TRUE(fitted.target.isEqualTo({5, 5, 5}));
    }
}

TEST(ViewTests, WhatNumbersDontReachIsRefused) {
    double const most = std::numeric_limits<double>::max();
    View fitted;
    EXPECT_EQ(fit(from({0, -10, 0}), {{-most, 0, 0}, {most, 1, 1}}, 1, fitted).code(),
              StatusUnsupported);
    EXPECT_EQ(fit(from({0, 0, 0}), BoundingBox::of({1, 1, 1}), 1, fitted).code(),
              StatusInvalidArgument);
}

TEST(ViewTests, ProjectionsHaveNumbers) {
    TgVector3d const slanted(1, 1, 0);
    TgVector3d const along(0, -3, 0);
    EXPECT_FALSE(isPerspective(0, false, slanted));
    EXPECT_TRUE(isPerspective(2, false, slanted));
    EXPECT_TRUE(isPerspective(2, false, along));
    EXPECT_TRUE(isPerspective(2, true, slanted));
    EXPECT_FALSE(isPerspective(2, true, along));
    EXPECT_TRUE(isPerspective(7, false, along));
}

} // namespace

} // namespace Vn::Picture
