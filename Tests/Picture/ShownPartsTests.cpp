#include "Platform/Picture/ShownParts.h"

#include <limits>

#include <gtest/gtest.h>

#include "Tests/Picture/PictureTesting.h"

namespace Vn::Picture {

namespace {

using namespace Testing;

constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();

class ShownPartsTests : public testing::Test {
protected:
    StrongRef<GroupNode> const m_rTop = GroupNode::make();
    StrongRef<SimpleMesh> const m_rBox = boxOf(1, 2, 3);
};

TEST_F(ShownPartsTests, PartsHaveTheirPlacesAndColors) {
    addPart(*m_rTop, m_rBox, Color(1, 0, 0), TgMatrix3d::translation({10, 0, 0}));
    addPart(*m_rTop, m_rBox, Color(0, 1, 0));
    ShownParts const parts(m_rTop.get());
    ASSERT_EQ(parts.model().size(), 2U);
    EXPECT_EQ(parts.model()[0].mesh.get(), m_rBox.get());
    EXPECT_EQ(parts.model()[0].color, Color(1, 0, 0));
    EXPECT_EQ(parts.model()[0].transform, TgMatrix3d::translation({10, 0, 0}));
    EXPECT_EQ(parts.model()[1].color, Color(0, 1, 0));
    ASSERT_TRUE(parts.bounds());
    EXPECT_TRUE(parts.bounds()->low.isEqualTo({0, 0, 0}));
    EXPECT_TRUE(parts.bounds()->high.isEqualTo({11, 2, 3}));
    EXPECT_FALSE(parts.backgroundBounds());
    EXPECT_EQ(parts.leftOut(), 0U);
}

TEST_F(ShownPartsTests, BackgroundIsGeometryOfNobodyInTheTopGroup) {
    StrongRef<LODGeometryNode> const ground = LODGeometryNode::make();
    ground->geometry(boxOf(100, 100, 1).get(), Vrx::Graphics::LevelAll);
    m_rTop->addChild(ground.get());
    addPart(*m_rTop, m_rBox, Color(1, 0, 0));
    ShownParts const parts(m_rTop.get());
    EXPECT_EQ(parts.background().size(), 1U);
    EXPECT_EQ(parts.model().size(), 1U);
    EXPECT_TRUE(parts.bounds()->high.isEqualTo({1, 2, 3}));
    EXPECT_TRUE(parts.backgroundBounds()->high.isEqualTo({100, 100, 1}));
}

TEST_F(ShownPartsTests, WhatIsHiddenOrOnTheScreenIsLeftOut) {
    addPart(*m_rTop, m_rBox, Color())->visible(false);
    addPart(*m_rTop, m_rBox, Color())->parent()->visible(false);
    StrongRef<GroupNode> const screen = GroupNode::make(Vrx::Scene::WorldScreen);
    addPart(*screen, m_rBox, Color());
    m_rTop->addChild(screen.get());
    ShownParts const parts(m_rTop.get());
    EXPECT_EQ(parts.model().size(), 0U);
    EXPECT_EQ(parts.leftOut(), 0U);
    EXPECT_FALSE(parts.bounds());
    m_rTop->visible(false);
    EXPECT_EQ(ShownParts(m_rTop.get()).model().size(), 0U);
}

TEST_F(ShownPartsTests, WhatIsNotFiniteIsCounted) {
    TgMatrix3d broken;
    broken.entry(0, 0, std::numeric_limits<double>::infinity());
    addPart(*m_rTop, m_rBox, Color(), broken);
    addPart(*m_rTop, meshOf({0, 0, 0, 1, 0, 0, c_nan, 1, 0}, {0, 1, 2}), Color());
    TgMatrix3d huge;
    huge.entry(0, 0, std::numeric_limits<double>::max());
    huge.entry(0, 1, std::numeric_limits<double>::max());
    addPart(*m_rTop, m_rBox, Color(), huge);
    addPart(*m_rTop, m_rBox, Color());
    ShownParts const parts(m_rTop.get());
    EXPECT_EQ(parts.leftOut(), 3U);
    EXPECT_EQ(parts.model().size(), 1U);
    EXPECT_TRUE(parts.bounds()->isValid());
}

TEST_F(ShownPartsTests, ColorsAreMadeSound) {
    addPart(*m_rTop, m_rBox, Color(c_nan, 7, -1, c_nan));
    addPart(*m_rTop, m_rBox, Color())->effect(std::nullopt);
    ShownParts const parts(m_rTop.get());
    EXPECT_EQ(parts.model()[0].color, Color(0.5F, 1, 0, 1));
    EXPECT_EQ(parts.model()[1].color, Color(0.5F, 0.5F, 0.5F, 1));
}

TEST_F(ShownPartsTests, NothingIsInNothing) {
    EXPECT_TRUE(ShownParts(nullptr).model().empty());
    EXPECT_TRUE(ShownParts(m_rTop.get()).model().empty());
    addPart(*m_rTop, nullptr, Color());
    addPart(*m_rTop, meshOf({}, {}), Color());
    EXPECT_TRUE(ShownParts(m_rTop.get()).model().empty());
}

} // namespace

} // namespace Vn::Picture
