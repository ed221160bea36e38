// Pictures as they come out: where something is, what hides what, and that they are always the
// same.

#include "Platform/Picture/Picture.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Picture/PictureTesting.h"

namespace Vn::Picture {

namespace {

using namespace Testing;

using Pixel = std::array<int, 3>;

constexpr Pixel c_white{255, 255, 255};

class PictureTests : public testing::Test {
protected:
    void SetUp() override {
        Picture picture;
        Status const status = draw(ShownParts(m_rTop.get()), m_view, m_options, picture);
        if (status.code() == StatusUnsupported) GTEST_SKIP() << status.toString();
        ASSERT_TRUE(status) << status.toString();
    }
    PictureTests() {
        m_options.width = 200;
        m_options.height = 100;
        m_options.edges = false;
        // Looks along y from the front: x to the right, z up, 20 cm by 10.
        m_view.position = {0, -50, 0};
        m_view.width = 20;
        m_view.height = 10;
    }

    Picture drawn() {
        Picture picture;
        Status const status = draw(ShownParts(m_rTop.get()), m_view, m_options, picture);
        EXPECT_TRUE(status) << status.toString();
        return picture;
    }
    static Pixel at(Picture const & picture, unsigned column, unsigned row) {
        std::size_t const first = 3 * (std::size_t{row} * picture.width + column);
        return {picture.pixels[first], picture.pixels[first + 1], picture.pixels[first + 2]};
    }

    StrongRef<GroupNode> const m_rTop = GroupNode::make();
    View m_view;
    PictureOptions m_options;
};

TEST_F(PictureTests, AnEmptyModelLeavesTheBackdrop) {
    m_options.backdrop = Color(1, 0.5F, 0);
    Picture const picture = drawn();
    EXPECT_EQ(picture.width, 200U);
    EXPECT_EQ(picture.height, 100U);
    for (std::size_t i = 0; i < picture.pixels.size(); i += 3) {
        ASSERT_EQ(picture.pixels[i], 255);
        ASSERT_NEAR(picture.pixels[i + 1], 128, 1);
        ASSERT_EQ(picture.pixels[i + 2], 0);
    }
}

TEST_F(PictureTests, APartIsWhereItsNumbersSay) {
    addPart(*m_rTop, boxOf(4, 1, 2), Color(1, 0, 0)); // 10 pixels to the centimetre
    Picture const picture = drawn();
    for (unsigned row = 0; row < 100; ++row) {
        for (unsigned column = 0; column < 200; ++column) {
            bool const isInside = column >= 100 && column < 140 && row >= 30 && row < 50;
            // The face looks at the lamp, so its color is its own.
            ASSERT_EQ(at(picture, column, row), isInside ? Pixel({255, 0, 0}) : c_white)
                << column << ' ' << row;
        }
    }
}

TEST_F(PictureTests, TheNearerHidesTheFarther) {
    addPart(*m_rTop, boxOf(4, 1, 2), Color(1, 0, 0), TgMatrix3d::translation({0, 5, 0}));
    addPart(*m_rTop, boxOf(2, 1, 2), Color(0, 0, 1));
    Picture const picture = drawn();
    EXPECT_EQ(at(picture, 110, 40), Pixel({0, 0, 255}));
    EXPECT_EQ(at(picture, 130, 40), Pixel({255, 0, 0}));
    m_view.position = {0, 50, 0}; // from behind, and x to the left
    Picture const behind = drawn();
    EXPECT_EQ(at(behind, 90, 40), Pixel({255, 0, 0}));
    EXPECT_EQ(at(behind, 70, 40), Pixel({255, 0, 0}));
}

TEST_F(PictureTests, WhatIsNotOpaqueLetsTheRestThrough) {
    addPart(*m_rTop, boxOf(2, 1, 2), Color(0, 0, 1, 0.5F));
    addPart(*m_rTop, boxOf(4, 1, 2), Color(1, 0, 0), TgMatrix3d::translation({0, 5, 0}));
    Pixel const through = at(drawn(), 110, 40);
    EXPECT_GT(through[0], 50);
    EXPECT_LT(through[0], 250);
    EXPECT_GT(through[2], 50);
    EXPECT_EQ(at(drawn(), 130, 40), Pixel({255, 0, 0}));
}

TEST_F(PictureTests, SidesAreDarkerThanWhatLooksAtTheLamp) {
    addPart(*m_rTop, boxOf(2, 2, 2), Color(1, 1, 1));
    m_view.position = {50, -50, 0};
    int const slanted = at(drawn(), 100, 45)[0];
    EXPECT_GT(slanted, 200);
    EXPECT_LT(slanted, 245);
}

TEST_F(PictureTests, EdgesAreDarkLines) {
    m_options.edges = true;
    addPart(*m_rTop, boxOf(4, 1, 2), Color(1, 0, 0));
    Picture const picture = drawn();
    int dark = 0;
    for (unsigned column = 95; column < 105; ++column) dark += at(picture, column, 40)[1] < 200;
    EXPECT_GT(dark, 0);
    EXPECT_EQ(at(picture, 120, 40), Pixel({255, 0, 0}));
}

TEST_F(PictureTests, ATinyPartBesideAHugeOneHasSoundPixels) {
    addPart(*m_rTop, boxOf(1e7F, 1e7F, 1e7F), Color(1, 0, 0));
    addPart(*m_rTop, boxOf(1e-9F, 1e-9F, 1e-9F), Color(0, 0, 1),
            TgMatrix3d::translation({-1, -1, -1}));
    View fitted;
    for (bool const perspective : {false, true}) {
        m_view.perspective = perspective;
        ASSERT_TRUE(fit(m_view, *ShownParts(m_rTop.get()).bounds(), 2, fitted));
        m_view = fitted;
        Picture const picture = drawn();
        EXPECT_EQ(at(picture, 100, 50), Pixel({255, 0, 0}));
        EXPECT_EQ(at(picture, 2, 2), c_white);
    }
    // Near the tiny one.
    ASSERT_TRUE(fit(m_view, {{-1, -1, -1}, {-1 + 1e-9, -1 + 1e-9, -1 + 1e-9}}, 2, fitted));
    m_view = fitted;
    EXPECT_EQ(at(drawn(), 100, 50)[2], 255);
}

std::vector<std::uint8_t> manyParts(GroupNode & top, View view, PictureOptions const & options) {
    Picture picture;
    ShownParts const parts(&top);
    EXPECT_TRUE(fit(View(view), *parts.bounds(), 2, view));
    EXPECT_TRUE(draw(parts, view, options, picture));
    return picture.pixels;
}

TEST_F(PictureTests, ThePictureIsTheSameEveryTimeAndOnEveryThread) {
    for (int i = 0; i < 300; ++i)
        addPart(*m_rTop, boxOf(1, 2, 3), Color(static_cast<float>(i % 7) / 6, 0.3F, 0.7F),
                TgMatrix3d::rotation(i, {1, 2, 3}) * TgMatrix3d::translation({i * 0.2, 0, 0}));
    m_options.edges = true;
    m_view.perspective = true;
    auto const first = manyParts(*m_rTop, m_view, m_options);
    EXPECT_EQ(manyParts(*m_rTop, m_view, m_options), first);
    std::vector<std::uint8_t> elsewhere;
    std::thread([&] { elsewhere = manyParts(*m_rTop, m_view, m_options); }).join();
    EXPECT_EQ(elsewhere, first);
}

TEST_F(PictureTests, AMoveByAHundredthIsSeen) {
    addPart(*m_rTop, boxOf(4, 1, 2), Color(1, 0, 0));
    m_options.width = 800;
    m_options.height = 400;
    Picture const before = drawn();
    m_rTop->firstChild()->asGroup()->transform(
        std::make_unique<TgMatrix3d const>(TgMatrix3d::translation({0.04, 0, 0})));
    EXPECT_NE(drawn().pixels, before.pixels);
}

TEST_F(PictureTests, SizesBeyondTheLimitsAreRefused) {
    Picture picture;
    for (auto const & [width, height] : std::vector<std::pair<unsigned, unsigned>>{
             {0, 0}, {0, 100}, {100, 0}, {100000, 100000}, {8193, 1}, {8192, 8192}}) {
        m_options.width = width;
        m_options.height = height;
        EXPECT_EQ(draw(ShownParts(m_rTop.get()), m_view, m_options, picture).code(),
                  StatusInvalidArgument)
            << width << ' ' << height;
    }
    EXPECT_EQ(picture.width, 0U);
    m_options.width = m_options.height = 1;
    EXPECT_EQ(drawn().pixels.size(), 3U);
}

TEST_F(PictureTests, PngHoldsThePixelsAndNoTime) {
    addPart(*m_rTop, boxOf(4, 1, 2), Color(1, 0, 0));
    std::string bytes;
    ASSERT_TRUE(toPng(drawn(), bytes));
    EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1A\n");
    EXPECT_NE(bytes.find("sRGB"), std::string::npos);
    EXPECT_EQ(bytes.find("tIME"), std::string::npos);
    EXPECT_EQ(bytes.find("tEXt"), std::string::npos);
    std::string again;
    ASSERT_TRUE(toPng(drawn(), again));
    EXPECT_EQ(again, bytes);
    EXPECT_EQ(toPng(Picture(), bytes).code(), StatusInvalidArgument);
    EXPECT_EQ(toPng(Picture{2, 2, {1, 2, 3}}, bytes).code(), StatusInvalidArgument);
}

} // namespace

} // namespace Vn::Picture
