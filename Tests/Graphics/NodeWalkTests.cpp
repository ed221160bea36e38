#include "Platform/Graphics/NodeWalk.h"

#include <cmath>
#include <map>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Graphics/LODGeometryNode.h"
#include "Tests/Support/SmallStack.h"

namespace Vrx::Graphics {

namespace {

using Vn::Color;
using Vn::StrongRef;

class NodeWalkTests : public testing::Test {
protected:
    // A group of that name below another.
    GroupNode * group(char name, GroupNode * parent) {
        StrongRef<GroupNode> const made = GroupNode::make();
        m_names[made.get()] = name;
        parent->addChild(made.get());
        return made.get();
    }

    NodeWalkTests() {
        m_names[m_rTop.get()] = 't';
        m_pA = group('a', m_rTop.get());
        group('b', m_pA);
        m_pC = group('c', m_pA);
        group('d', m_pC);
        m_pE = group('e', m_rTop.get());
        group('f', m_pE);
    }

    // Names and depths on the way.
    std::string way(NodeWalk walk) const {
        std::string way;
        for (; walk; walk.next()) way += m_names.at(walk.node()) + std::to_string(walk.depth());
        return way;
    }

    StrongRef<GroupNode> const m_rTop = GroupNode::make();
    std::map<ARenderNode const *, char> m_names;
    GroupNode * m_pA;
    GroupNode * m_pC;
    GroupNode * m_pE;
};

TEST_F(NodeWalkTests, EachNodeComesBeforeItsChildren) {
    EXPECT_EQ(way(NodeWalk(m_rTop.get())), "t0a1b2c2d3e1f2");
}

TEST_F(NodeWalkTests, AWalkStaysBelowItsTop) {
    EXPECT_EQ(way(NodeWalk(m_pA)), "a0b1c1d2");
    EXPECT_EQ(way(NodeWalk(m_pE->firstChild())), "f0");
}

TEST_F(NodeWalkTests, WhatIsBelowANodeCanBeLeftOut) {
    NodeWalk walk(m_rTop.get());
    walk.next();
    EXPECT_EQ(walk.node(), m_pA);
    walk.skip();
    EXPECT_EQ(walk.node(), m_pE);
    EXPECT_EQ(walk.depth(), 1U);
    walk.skip();
    EXPECT_FALSE(walk);
    walk.next();
    EXPECT_EQ(walk.node(), nullptr);
}

TEST_F(NodeWalkTests, TheWalkOverNothingIsOver) {
    NodeWalk walk(nullptr);
    EXPECT_FALSE(walk);
    walk.next();
    EXPECT_FALSE(walk.effect());
}

TEST_F(NodeWalkTests, NodeAfterGoesTheSameWay) {
    NodeWalk walk(m_rTop.get());
    for (ARenderNode const * node = m_rTop.get(); node; node = nodeAfter(*node, *m_rTop)) {
        EXPECT_EQ(node, walk.node());
        walk.next();
    }
    EXPECT_FALSE(walk);
}

TEST_F(NodeWalkTests, TheEffectOnTheWayIsThatOfTheNode) {
    std::mt19937 random(7);
    std::vector<GroupNode *> groups{m_rTop.get()};
    for (int i = 0; i < 300; ++i) {
        GroupNode * const made = group('x', groups[random() % groups.size()]);
        groups.push_back(made);
        if (random() % 3 == 0)
            made->effect(EffectParams(Color(static_cast<float>(i), 0, 0, 1), random() % 4 == 0, 0));
    }
    int shown = 0;
    for (GroupNode * const top : groups)
        for (NodeWalk walk(top); walk; walk.next(), ++shown)
            ASSERT_EQ(walk.effect(), walk.node()->effectiveEffect());
    EXPECT_GT(shown, 300);
}

TEST_F(NodeWalkTests, PlacesMultiplyOnTheWay) {
    auto const place = [](GroupNode * group, TgMatrix3d const & transform) {
        group->transform(std::make_unique<TgMatrix3d const>(transform));
    };
    place(m_rTop.get(), TgMatrix3d::translation({100, 0, 0}));
    place(m_pA, TgMatrix3d::rotation(std::numbers::pi / 2, TgVector3d::kZAxis));
    place(m_pC, TgMatrix3d::translation({1, 0, 0}));
    std::string places; // where the point (2, 0, 0) of each node is
    for (NodeWalk walk(m_rTop.get()); walk; walk.next()) {
        TgPoint3d const point = walk.transform() * TgPoint3d(2, 0, 0);
        places += m_names.at(walk.node()) + std::to_string(std::lround(point.x)) + ',' +
                  std::to_string(std::lround(point.y)) + ' ';
    }
    EXPECT_EQ(places, "t102,0 a100,2 b100,2 c100,3 d100,3 e102,0 f102,0 ");
    // A walk from the middle knows what stands above it.
    NodeWalk const walk(m_pC->firstChild());
    EXPECT_TRUE((walk.transform() * TgPoint3d(2, 0, 0)).isEqualTo({100, 3, 0}));
    EXPECT_EQ(NodeWalk(nullptr).transform(), TgMatrix3d::kIdentity);
}

TEST_F(NodeWalkTests, AWalkGoesAMillionDeep) {
    Vn::Testing::onSmallStack([] {
        StrongRef<GroupNode> const top = GroupNode::make();
        GroupNode * bottom = top.get();
        for (int i = 0; i < 1'000'000; ++i) {
            StrongRef<GroupNode> const next = GroupNode::make();
            bottom->addChild(next.get());
            bottom = next.get();
            if (i % 2 == 0) bottom->effect(EffectParams(Color(1, 1, 1, 1), false, 0));
        }
        std::size_t deepest = 0;
        for (NodeWalk walk(top.get()); walk; walk.next()) deepest = walk.depth();
        EXPECT_EQ(deepest, 1'000'000U);
    });
}

} // namespace

} // namespace Vrx::Graphics
