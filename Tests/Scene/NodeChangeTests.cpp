#include "Platform/Scene/NodeChange.h"

#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Graphics/NodeWalk.h"
#include "Tests/Scene/SceneTesting.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Scene {

namespace {

using namespace Testing;
using Vrx::Graphics::EffectParams;
using Vrx::Graphics::LODGeometryNode;
using Vrx::Graphics::NodeObservers;

// Groups in a graph whose top is watched.
class NodeChangeTests : public testing::Test {
protected:
    NodeChangeTests() {
        m_rTop->observers(m_rObservers);
        m_rObservers->subscribe(&m_recorder);
    }

    StrongRef<GroupNode> const m_rTop = GroupNode::make();
    StrongRef<GroupNode> const m_rA = GroupNode::make();
    StrongRef<GroupNode> const m_rB = GroupNode::make();
    StrongRef<GroupNode> const m_rC = GroupNode::make();
    StrongRef<NodeObservers> const m_rObservers = NodeObservers::make();
    Recorder m_recorder;
};

TEST_F(NodeChangeTests, AGroupIsPlaced) {
    TgMatrix3d const shift = TgMatrix3d::translation({1, 2, 3});
    NodeChange(m_rTop.get(), false).addChild(m_rA.get());
    m_recorder.m_told.clear();
    {
        NodeChange change(m_rA.get(), false);
        EXPECT_TRUE(change.transform(shift));
        EXPECT_EQ(m_rA->transform(), nullptr);
    }
    ASSERT_NE(m_rA->transform(), nullptr);
    EXPECT_EQ(*m_rA->transform(), shift);
    EXPECT_EQ(m_recorder.m_told.size(), 1U);
    NodeChange(m_rA.get(), false).transform(shift); // as it is already
    EXPECT_EQ(m_recorder.m_told.size(), 1U);
    NodeChange(m_rA.get(), false).transform(TgMatrix3d::kIdentity);
    EXPECT_EQ(m_rA->transform(), nullptr);
    EXPECT_EQ(m_recorder.m_told.size(), 2U);
    // Geometry stands where its group is.
    NodeChange geometry;
    geometry.createLODGeometryNode(nullptr, true);
    EXPECT_FALSE(geometry.transform(shift));
    EXPECT_FALSE(NodeChange().transform(shift));
}

TEST_F(NodeChangeTests, WhatIsToldIsMadeWhenTheBracketCloses) {
    {
        NodeChange change(m_rTop.get(), false);
        EXPECT_TRUE(change.addChild(m_rA.get()));
        EXPECT_TRUE(change.insertChild(m_rB.get(), m_rA.get()));
        EXPECT_TRUE(change.colorEffect(Color(0, 0.5F, 0, 1), false, 7));
        EXPECT_TRUE(change.visible(false));
        EXPECT_EQ(m_rTop->children(), 0U);
        EXPECT_EQ(m_rTop->effect(), nullptr);
        EXPECT_TRUE(m_rTop->visible());
        EXPECT_TRUE(m_recorder.m_told.empty());
    }
    EXPECT_EQ(childrenOf(*m_rTop), (Row{m_rB.get(), m_rA.get()}));
    EXPECT_EQ(m_rTop->effectiveEffect(), EffectParams(Color(0, 0.5F, 0, 1), false, 7));
    EXPECT_FALSE(m_rTop->visible());
    NodeChange(m_rTop.get(), false).removeEffect();
    EXPECT_EQ(m_rTop->effect(), nullptr);
    NodeChange(m_rTop.get(), false).removeChild(m_rB.get());
    EXPECT_EQ(childrenOf(*m_rTop), Row{m_rA.get()});
}

TEST_F(NodeChangeTests, ABracketThatAnExceptionLeavesIsDropped) {
    try {
        NodeChange change(m_rTop.get(), false);
        change.addChild(m_rA.get());
        change.colorEffect(Color(1, 0, 0, 1), false, 0);
        throw std::runtime_error("stop");
    } catch (std::runtime_error const &) {}
    EXPECT_EQ(m_rTop->children(), 0U);
    EXPECT_EQ(m_rTop->effect(), nullptr);
    EXPECT_EQ(m_rA->refCount(), 1U);
    EXPECT_TRUE(m_recorder.m_told.empty());
}

TEST_F(NodeChangeTests, AnInnerBracketIsAPartOfTheOuterOne) {
    {
        NodeChange outer(m_rTop.get(), false);
        outer.addChild(m_rA.get());
        {
            NodeChange inner(m_rA.get(), false);
            inner.addChild(m_rB.get());
        }
        EXPECT_EQ(m_rA->children(), 0U);
        outer.addChild(m_rC.get());
    }
    EXPECT_EQ(childrenOf(*m_rTop), (Row{m_rA.get(), m_rC.get()}));
    EXPECT_EQ(childrenOf(*m_rA), Row{m_rB.get()});
    EXPECT_EQ(m_recorder.m_told.size(), 1U);
}

TEST_F(NodeChangeTests, AnInnerBracketIsDroppedWithTheOuterOne) {
    try {
        NodeChange outer(m_rTop.get(), false);
        { NodeChange(m_rTop.get(), false).addChild(m_rA.get()); }
        throw std::runtime_error("stop");
    } catch (std::runtime_error const &) {}
    EXPECT_EQ(m_rTop->children(), 0U);
}

TEST_F(NodeChangeTests, AnInnerBracketThatIsDroppedTakesNothingElseAlong) {
    {
        NodeChange outer(m_rTop.get(), false);
        outer.addChild(m_rA.get());
        try {
            NodeChange inner(m_rTop.get(), false);
            inner.addChild(m_rB.get());
            { NodeChange(m_rB.get(), false).addChild(m_rC.get()); }
            throw std::runtime_error("stop");
        } catch (std::runtime_error const &) {}
        outer.colorEffect(Color(1, 0, 0, 1), false, 0);
    }
    EXPECT_EQ(childrenOf(*m_rTop), Row{m_rA.get()});
    EXPECT_EQ(m_rB->children(), 0U);
    EXPECT_TRUE(m_rTop->effect());
}

TEST_F(NodeChangeTests, ABracketThatOpensWhileAnExceptionIsUnderWayIsMade) {
    struct AtTheEnd {
        GroupNode * m_pGroup;
        GroupNode * m_pChild;
        ~AtTheEnd() { NodeChange(m_pGroup, false).addChild(m_pChild); }
    };
    try {
        AtTheEnd const end{m_rTop.get(), m_rA.get()};
        throw std::runtime_error("stop");
    } catch (std::runtime_error const &) {}
    EXPECT_EQ(m_rTop->children(), 1U);
}

TEST_F(NodeChangeTests, ANodeThatIsAddedTwiceStandsOnceWhereItWasAddedLast) {
    {
        NodeChange change(m_rTop.get(), false);
        change.addChild(m_rA.get());
        change.addChild(m_rB.get());
        change.addChild(m_rA.get());
    }
    EXPECT_EQ(childrenOf(*m_rTop), (Row{m_rB.get(), m_rA.get()}));
    EXPECT_EQ(m_recorder.m_told.size(), 1U);
    EXPECT_EQ(m_recorder.m_told[0].size(), 3U);
}

TEST_F(NodeChangeTests, ANodeMovesBetweenGroups) {
    m_rTop->addChild(m_rA.get());
    m_rTop->addChild(m_rB.get());
    m_rA->addChild(m_rC.get());
    NodeChange(m_rB.get(), false).addChild(m_rC.get());
    EXPECT_EQ(m_rA->children(), 0U);
    EXPECT_EQ(m_rC->parent(), m_rB.get());
    using namespace Vrx::Graphics;
    EXPECT_EQ(m_recorder.m_told, (std::vector<Told>{{{m_rA.get(), ChangeChildren},
                                                     {m_rB.get(), ChangeChildren},
                                                     {m_rC.get(), ChangePlace}}}));
}

TEST_F(NodeChangeTests, ObserversHearOnlyOfWhatReallyChanged) {
    StrongRef<LODGeometryNode> const leaf = LODGeometryNode::make();
    m_rTop->addChild(m_rA.get());
    m_rTop->addChild(leaf.get());
    m_rTop->effect(EffectParams(Color(1, 0, 0, 1), false, 0));
    {
        NodeChange change(m_rTop.get(), false);
        change.addChild(leaf.get()); // the last one already
        change.insertChild(m_rA.get(), leaf.get());
        change.removeChild(m_rB.get());
        change.colorEffect(Color(1, 0, 0, 1), false, 0);
        change.visible(true);
        { NodeChange(leaf.get(), false).geometry(nullptr, 0xF); }
        change.invalidate(0);
    }
    EXPECT_EQ(m_recorder.m_told, (std::vector<Told>{{{m_rTop.get(), 0}}})); // by invalidate
    m_recorder.m_told.clear();
    NodeChange(m_rTop.get(), false).colorEffect(Color(1, 0, 0, 1), true, 0);
    NodeChange(m_rTop.get(), false)
        .colorEffect(Color(std::numeric_limits<float>::quiet_NaN(), 0, 0, 1), true, 0);
    EXPECT_EQ(m_recorder.m_told.size(), 2U);
}

TEST_F(NodeChangeTests, ASilentBracketIsNotToldToObservers) {
    {
        NodeChange loud(m_rTop.get(), false);
        loud.addChild(m_rA.get());
        NodeChange silent(m_rTop.get(), true);
        silent.colorEffect(Color(1, 0, 0, 1), false, 0);
        silent.addChild(m_rB.get());
    }
    EXPECT_EQ(m_rTop->children(), 2U);
    ASSERT_EQ(m_recorder.m_told.size(), 1U);
    EXPECT_EQ(m_recorder.m_told[0].size(), 2U);
    EXPECT_EQ(m_recorder.m_told[0][0].second, Vrx::Graphics::ChangeChildren);
}

TEST_F(NodeChangeTests, AnObserverMayOpenBracketsAndUnsubscribe) {
    m_recorder.m_then = [this] {
        m_rObservers->unsubscribe(&m_recorder);
        NodeChange change(m_rTop.get(), false);
        change.addChild(m_rB.get());
    };
    NodeChange(m_rTop.get(), false).addChild(m_rA.get());
    EXPECT_EQ(childrenOf(*m_rTop), (Row{m_rA.get(), m_rB.get()}));
    EXPECT_EQ(m_recorder.m_told.size(), 1U);
}

TEST_F(NodeChangeTests, WhatAnObserverChangesIsToldAtOnce) {
    m_recorder.m_then = [this] {
        if (m_recorder.m_told.size() < 5)
            NodeChange(m_rTop.get(), false).addChild(StrongRef<GroupNode>(GroupNode::make()).get());
    };
    NodeChange(m_rTop.get(), false).addChild(m_rA.get());
    EXPECT_EQ(m_rTop->children(), 5U);
    EXPECT_EQ(m_recorder.m_told.size(), 5U);
}

TEST_F(NodeChangeTests, CirclesAreLeftOutAndTheRestIsMade) {
    {
        NodeChange top(m_rTop.get(), false);
        top.addChild(m_rTop.get());
        top.addChild(m_rA.get());
        NodeChange below(m_rA.get(), false);
        below.addChild(m_rB.get());
        NodeChange bottom(m_rB.get(), false);
        bottom.addChild(m_rTop.get());
        bottom.addChild(m_rA.get());
        bottom.addChild(m_rC.get());
    }
    EXPECT_EQ(m_rTop->parent(), nullptr);
    EXPECT_EQ(childrenOf(*m_rTop), Row{m_rA.get()});
    EXPECT_EQ(childrenOf(*m_rA), Row{m_rB.get()});
    EXPECT_EQ(childrenOf(*m_rB), Row{m_rC.get()});
}

TEST_F(NodeChangeTests, WhatHasNoMeaningIsRefused) {
    StrongRef<LODGeometryNode> const leaf = LODGeometryNode::make();
    NodeChange none;
    EXPECT_EQ(none.node(), nullptr);
    EXPECT_FALSE(none.addChild(m_rA.get()));
    EXPECT_FALSE(none.removeChild(m_rA.get()));
    EXPECT_FALSE(none.geometry(nullptr, 0xF));
    EXPECT_FALSE(none.colorEffect(Color(), false, 0));
    EXPECT_FALSE(none.removeEffect());
    EXPECT_FALSE(none.visible(true));
    EXPECT_FALSE(none.invalidate(0xFFFF));
    NodeChange group(m_rTop.get(), false);
    EXPECT_FALSE(group.addChild(nullptr));
    EXPECT_FALSE(group.removeChild(nullptr));
    EXPECT_FALSE(group.geometry(nullptr, 0xF));
    NodeChange geometry(leaf.get(), false);
    EXPECT_FALSE(geometry.addChild(m_rA.get()));
    EXPECT_TRUE(geometry.geometry(nullptr, 0xF));
}

TEST_F(NodeChangeTests, NodesAreMadeAsTheyAreAskedFor) {
    NodeChange change;
    GroupNode * const group = change.createGroupNode(nullptr, 1, false, true);
    EXPECT_EQ(change.node(), group);
    EXPECT_EQ(group->world(), Vrx::Scene::WorldModel);
    EXPECT_FALSE(group->selectable());
    EXPECT_TRUE(group->visible());
    EXPECT_EQ(group->parent(), nullptr);
    GroupNode * const screen =
        change.createGroupNode(nullptr, Vrx::Scene::WorldScreen, true, false);
    EXPECT_EQ(screen->world(), Vrx::Scene::WorldScreen);
    EXPECT_TRUE(screen->selectable());
    EXPECT_FALSE(screen->visible());
    LODGeometryNode * const leaf = change.createLODGeometryNode(nullptr, true);
    EXPECT_EQ(change.node(), leaf);
    EXPECT_EQ(leaf->mesh(), nullptr);
    EXPECT_EQ(group->children(), 0U); // still there
}

TEST_F(NodeChangeTests, ANodeThatNobodyTakesEndsWithItsBracket) {
    PassiveRef<ARenderNode> first;
    PassiveRef<ARenderNode> second;
    {
        NodeChange change;
        first = PassiveRef<ARenderNode>(change.createGroupNode(nullptr, 1, true, true));
        second = PassiveRef<ARenderNode>(change.createGroupNode(nullptr, 1, true, true));
        EXPECT_TRUE(first);
    }
    EXPECT_FALSE(first);
    EXPECT_FALSE(second);
}

TEST_F(NodeChangeTests, ANodeThatAnInnerBracketMadeLastsUntilTheOutermostHasPlacedIt) {
    PassiveRef<ARenderNode> made;
    {
        NodeChange outer(m_rTop.get(), false);
        {
            NodeChange inner;
            made = PassiveRef<ARenderNode>(inner.createLODGeometryNode(nullptr, true));
            outer.addChild(made.get());
        }
        EXPECT_TRUE(made);
        EXPECT_EQ(m_rTop->children(), 0U);
    }
    EXPECT_EQ(m_rTop->firstChild(), made.get());
}

TEST_F(NodeChangeTests, NodesThatCallersHoldStayAfterTheGraph) {
    StrongRef<ARenderNode> held;
    {
        NodeChange change;
        StrongRef<GroupNode> const top(change.createGroupNode(nullptr, 1, false, true));
        change.addChild(m_rA.get());
        NodeChange below(m_rA.get(), false);
        below.addChild(m_rB.get());
        below.colorEffect(Color(1, 0, 0, 1), false, 0);
        held = m_rA;
    }
    EXPECT_EQ(held->parent(), nullptr);
    EXPECT_EQ(m_rB->parent(), held.get());
    EXPECT_EQ(m_rB->effectiveColor(), Color(1, 0, 0, 1));
}

TEST_F(NodeChangeTests, InvalidateTellsWhatTheGraphDoesNotKnow) {
    { NodeChange(m_rTop.get(), false).invalidate(0xFFFF); }
    { NodeChange(m_rTop.get(), false).invalidate(Vrx::Graphics::ChangeGeometry); }
    EXPECT_EQ(m_recorder.m_told,
              (std::vector<Told>{{{m_rTop.get(), Vrx::Graphics::ChangeAll}}, {{m_rTop.get(), 1}}}));
}

// What random brackets make of a graph is what the same changes make of it at once, without those
// of the brackets that were dropped.
TEST_F(NodeChangeTests, RandomBracketsMakeWhatTheyWereToldOrNothing) {
    constexpr std::size_t c_nodes = 12;
    struct Graphs {
        std::vector<StrongRef<GroupNode>> by;
        Graphs() {
            for (std::size_t i = 0; i < c_nodes; ++i) by.push_back(GroupNode::make());
        }
        // For each node the number of its parent and its place there.
        std::map<std::size_t, std::vector<std::size_t>> shape() const {
            std::map<ARenderNode const *, std::size_t> numbers;
            for (std::size_t i = 0; i < c_nodes; ++i) numbers[by[i].get()] = i;
            std::map<std::size_t, std::vector<std::size_t>> shape;
            for (std::size_t i = 0; i < c_nodes; ++i)
                for (ARenderNode * child : childrenOf(*by[i]))
                    shape[i].push_back(numbers.at(child));
            return shape;
        }
    };
    struct Step {
        bool adds;
        std::size_t group, child, before;
    };
    Graphs changed;
    Graphs expected;
    std::mt19937 random(11);
    auto const any = [&] { return random() % c_nodes; };
    // Tells random steps in random brackets; what remains of them is added to `kept`.
    auto const bracket = [&](auto const & self, int depth, std::vector<Step> & kept) -> void {
        std::vector<Step> told;
        bool const fails = random() % 4 == 0;
        try {
            NodeChange open;
            for (std::size_t i = random() % 5; i > 0; --i) {
                Step const step{random() % 4 != 0, any(), any(), any()};
                NodeChange change(changed.by[step.group].get(), false);
                if (step.adds)
                    change.insertChild(changed.by[step.child].get(),
                                       step.before % 2 ? changed.by[step.before].get() : nullptr);
                else
                    change.removeChild(changed.by[step.child].get());
                told.push_back(step);
                if (depth < 3 && random() % 3 == 0) self(self, depth + 1, told);
            }
            if (fails) throw std::runtime_error("stop");
        } catch (std::runtime_error const &) {
            return;
        }
        kept.insert(kept.end(), told.begin(), told.end());
    };
    for (int round = 0; round < 2000; ++round) {
        std::vector<Step> kept;
        bracket(bracket, 0, kept);
        for (Step const & step : kept) {
            GroupNode & group = *expected.by[step.group];
            ARenderNode * const child = expected.by[step.child].get();
            if (step.adds)
                group.addChild(child, step.before % 2 ? expected.by[step.before].get() : nullptr);
            else
                group.removeChild(child);
        }
        ASSERT_EQ(changed.shape(), expected.shape()) << "round " << round;
    }
}

// Nobody watches: for those who do, the way to the top is gone with each bracket.
TEST(NodeChangeSizeTests, AMillionNodesAreMadeInOneBracketAndInManyWideAndDeep) {
    Vn::Testing::onSmallStack([] {
        constexpr std::size_t c_count = 1'000'000;
        for (bool const deep : {false, true}) {
            for (bool const inOne : {false, true}) {
                StrongRef<GroupNode> const top = GroupNode::make();
                {
                    std::optional<NodeChange> one;
                    if (inOne) one.emplace();
                    GroupNode * group = top.get();
                    for (std::size_t i = 0; i < c_count; ++i) {
                        NodeChange change;
                        GroupNode * const made = change.createGroupNode(nullptr, 1, true, true);
                        NodeChange(group, false).addChild(made);
                        if (deep) group = made;
                    }
                }
                std::size_t found = 0;
                for (Vrx::Graphics::NodeWalk walk(top.get()); walk; walk.next()) ++found;
                EXPECT_EQ(found, c_count + 1);
            }
        }
    });
}

} // namespace

} // namespace Vn::Scene
