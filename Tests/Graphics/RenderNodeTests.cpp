#include "Platform/Graphics/RenderNode.h"

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Graphics/LODGeometryNode.h"
#include "Tests/Support/SmallStack.h"

namespace Vrx::Graphics {

namespace {

using Vn::Color;
using Vn::StrongRef;

constexpr EffectParams c_red{Color(1, 0, 0, 1), false, 0};
constexpr EffectParams c_blue{Color(0, 0, 1, 1), false, 0};

// The children in their order, after a look at each link between them.
std::vector<ARenderNode *> childrenOf(GroupNode const & group) {
    std::vector<ARenderNode *> found;
    ARenderNode * previous = nullptr;
    for (ARenderNode * node = group.firstChild(); node; node = node->next()) {
        EXPECT_EQ(node->parent(), &group);
        EXPECT_EQ(node->previous(), previous);
        EXPECT_EQ(group.child(found.size()), node);
        found.push_back(node);
        previous = node;
    }
    EXPECT_EQ(group.lastChild(), previous);
    EXPECT_EQ(group.children(), found.size());
    return found;
}

TEST(RenderNodeTests, ChildrenStandInTheOrderInWhichTheyCame) {
    StrongRef<GroupNode> const group = GroupNode::make();
    StrongRef<GroupNode> const first = GroupNode::make();
    StrongRef<GroupNode> const second = GroupNode::make();
    EXPECT_TRUE(group->addChild(first.get()));
    EXPECT_TRUE(group->addChild(second.get()));
    ASSERT_EQ(group->children(), 2U);
    EXPECT_EQ(group->child(0), first.get());
    EXPECT_EQ(group->child(1), second.get());
    EXPECT_EQ(group->child(2), nullptr);
    EXPECT_EQ(first->parent(), group.get());
}

TEST(RenderNodeTests, ANodeStandsInOneGroup) {
    StrongRef<GroupNode> const group = GroupNode::make();
    StrongRef<GroupNode> const other = GroupNode::make();
    StrongRef<GroupNode> const node = GroupNode::make();
    group->addChild(node.get());
    EXPECT_TRUE(other->addChild(node.get()));
    EXPECT_EQ(group->children(), 0U);
    EXPECT_EQ(node->parent(), other.get());
    EXPECT_FALSE(group->removeChild(node.get()));
    EXPECT_TRUE(other->removeChild(node.get()));
    EXPECT_EQ(node->parent(), nullptr);
    EXPECT_FALSE(other->removeChild(nullptr));
}

TEST(RenderNodeTests, NullAndCyclesAreRefused) {
    StrongRef<GroupNode> const top = GroupNode::make();
    StrongRef<GroupNode> const below = GroupNode::make();
    top->addChild(below.get());
    EXPECT_FALSE(top->addChild(nullptr));
    EXPECT_FALSE(top->addChild(top.get()));
    EXPECT_FALSE(below->addChild(top.get()));
    EXPECT_EQ(top->children(), 1U);
}

TEST(RenderNodeTests, AGroupOwnsItsChildrenAndLetsGoOfThoseThatOthersHold) {
    StrongRef<GroupNode> group = GroupNode::make();
    StrongRef<GroupNode> const held = GroupNode::make();
    Vn::PassiveRef<GroupNode> gone;
    {
        StrongRef<GroupNode> const node = GroupNode::make();
        gone = node;
        group->addChild(node.get());
    }
    group->addChild(held.get());
    EXPECT_TRUE(gone);
    group.reset();
    EXPECT_FALSE(gone);
    EXPECT_EQ(held->parent(), nullptr);
}

TEST(RenderNodeTests, AChildIsPutInFrontOfAnother) {
    StrongRef<GroupNode> const group = GroupNode::make();
    StrongRef<GroupNode> const other = GroupNode::make();
    std::vector<StrongRef<ARenderNode>> nodes;
    for (int i = 0; i < 4; ++i) nodes.push_back(StrongRef<GroupNode>(GroupNode::make()));
    auto const [a, b, c, d] =
        std::array{nodes[0].get(), nodes[1].get(), nodes[2].get(), nodes[3].get()};
    using Row = std::vector<ARenderNode *>;
    EXPECT_TRUE(group->addChild(b));
    EXPECT_TRUE(group->addChild(a, b));
    EXPECT_TRUE(group->addChild(d));
    EXPECT_TRUE(group->addChild(c, d));
    EXPECT_EQ(childrenOf(*group), (Row{a, b, c, d}));

    EXPECT_TRUE(group->addChild(d, a)); // moved within its group
    EXPECT_EQ(childrenOf(*group), (Row{d, a, b, c}));
    EXPECT_TRUE(group->addChild(a, b)); // where it stands already
    EXPECT_TRUE(group->addChild(a, a));
    EXPECT_EQ(childrenOf(*group), (Row{d, a, b, c}));
    EXPECT_TRUE(group->addChild(d)); // to the end
    EXPECT_EQ(childrenOf(*group), (Row{a, b, c, d}));

    EXPECT_FALSE(other->addChild(a, b)); // no child of that group
    EXPECT_EQ(childrenOf(*group), (Row{a, b, c, d}));
    EXPECT_TRUE(group->removeChild(b));
    EXPECT_TRUE(group->removeChild(d));
    EXPECT_TRUE(group->removeChild(a));
    EXPECT_EQ(childrenOf(*group), Row{c});
    EXPECT_TRUE(group->removeChild(c));
    EXPECT_EQ(childrenOf(*group), Row{});
    EXPECT_EQ(c->refCount(), 1U);
}

TEST(RenderNodeTests, ACircleIsRefusedFromAnyHeight) {
    StrongRef<GroupNode> const top = GroupNode::make();
    std::vector<StrongRef<GroupNode>> chain{top};
    for (int i = 0; i < 100; ++i) {
        chain.push_back(GroupNode::make());
        ASSERT_TRUE(chain[chain.size() - 2]->addChild(chain.back().get()));
        StrongRef<GroupNode> const aside = GroupNode::make();
        ASSERT_TRUE(chain.back()->addChild(aside.get()));
    }
    for (StrongRef<GroupNode> const & node : chain) {
        EXPECT_FALSE(chain.back()->addChild(node.get()));
        EXPECT_FALSE(node->addChild(top.get()));
    }
    EXPECT_TRUE(top->addChild(chain[50].get())); // up is no circle
    EXPECT_EQ(chain[50]->parent(), top.get());
    EXPECT_EQ(chain[49]->children(), 1U);
}

TEST(RenderNodeTests, ANodeShowsInTheNearestEffect) {
    StrongRef<GroupNode> const top = GroupNode::make();
    StrongRef<GroupNode> const middle = GroupNode::make();
    StrongRef<LODGeometryNode> const leaf = LODGeometryNode::make();
    top->addChild(middle.get());
    middle->addChild(leaf.get());
    EXPECT_EQ(leaf->effect(), nullptr);
    EXPECT_FALSE(leaf->effectiveColor());

    top->effect(c_red);
    EXPECT_EQ(leaf->effect(), nullptr);
    EXPECT_EQ(leaf->effectiveEffect(), c_red);
    middle->effect(c_blue);
    EXPECT_EQ(leaf->effectiveColor(), c_blue.color);
    EXPECT_EQ(top->effectiveColor(), c_red.color);
    middle->effect(std::nullopt);
    EXPECT_EQ(leaf->effectiveColor(), c_red.color);
    top->removeChild(middle.get());
    EXPECT_FALSE(leaf->effectiveColor());
}

TEST(RenderNodeTests, TheUppermostEffectThatOverridesWins) {
    EffectParams const selected(Color(1, 1, 0, 1), true, 2);
    EffectParams const highlighted(Color(0, 1, 1, 1), true, 3);
    StrongRef<GroupNode> const top = GroupNode::make();
    StrongRef<GroupNode> const middle = GroupNode::make();
    StrongRef<GroupNode> const leaf = GroupNode::make();
    top->addChild(middle.get());
    middle->addChild(leaf.get());
    leaf->effect(c_red);
    middle->effect(selected);
    EXPECT_EQ(leaf->effectiveEffect(), selected);
    top->effect(highlighted);
    EXPECT_EQ(leaf->effectiveEffect(), highlighted);
    EXPECT_EQ(middle->effectiveEffect(), highlighted);
    EXPECT_EQ(*leaf->effect(), c_red);
}

TEST(RenderNodeTests, AColorOfOddNumbersIsKept) {
    float const infinite = std::numeric_limits<float>::infinity();
    StrongRef<GroupNode> const node = GroupNode::make();
    node->effect(EffectParams(Color(std::numeric_limits<float>::quiet_NaN(), -infinite, -0.0F, 7),
                              false, 255));
    Color const color = node->effectiveColor().value();
    EXPECT_NE(color.red, color.red);
    EXPECT_EQ(color.green, -infinite);
    EXPECT_TRUE(std::signbit(color.blue));
    EXPECT_EQ(color.opacity, 7);
    EXPECT_EQ(node->effect()->layer, 255);
}

TEST(RenderNodeTests, ANodeKnowsItsKind) {
    StrongRef<ARenderNode> const group = StrongRef<GroupNode>(GroupNode::make());
    StrongRef<ARenderNode> const geometry = StrongRef<LODGeometryNode>(LODGeometryNode::make());
    EXPECT_EQ(group->asGroup(), group.get());
    EXPECT_EQ(group->asGeometry(), nullptr);
    EXPECT_EQ(geometry->asGroup(), nullptr);
    EXPECT_EQ(geometry->asGeometry(), geometry.get());
}

TEST(RenderNodeTests, NodesThatAreHeldKeepWhatIsBelowThem) {
    StrongRef<GroupNode> top = GroupNode::make();
    StrongRef<GroupNode> const held = GroupNode::make();
    {
        StrongRef<GroupNode> const middle = GroupNode::make();
        StrongRef<GroupNode> const leaf = GroupNode::make();
        top->addChild(middle.get());
        middle->addChild(StrongRef<GroupNode>(GroupNode::make()).get());
        middle->addChild(held.get());
        middle->addChild(StrongRef<GroupNode>(GroupNode::make()).get());
        held->addChild(leaf.get());
        leaf->effect(c_red);
    }
    top.reset();
    EXPECT_EQ(held->parent(), nullptr);
    EXPECT_EQ(held->next(), nullptr);
    EXPECT_EQ(held->previous(), nullptr);
    ASSERT_EQ(held->children(), 1U);
    EXPECT_EQ(held->firstChild()->effectiveColor(), c_red.color);
    EXPECT_EQ(held->firstChild()->parent(), held.get());
}

// Were each look for a circle to climb to the top, a chain of this length would take hours.
TEST(RenderNodeTests, AChainOfAMillionIsMadeFromAboveAndFromBelow) {
    constexpr int c_count = 1'000'000;
    for (bool const fromAbove : {true, false}) {
        Vn::Testing::onSmallStack([&] {
            StrongRef<GroupNode> top = GroupNode::make();
            Vn::PassiveRef<GroupNode> const first(top);
            GroupNode * bottom = top.get();
            for (int i = 1; i < c_count; ++i) {
                StrongRef<GroupNode> const next = GroupNode::make();
                if (fromAbove) {
                    ASSERT_TRUE(bottom->addChild(next.get()));
                    bottom = next.get();
                } else {
                    ASSERT_TRUE(next->addChild(top.get()));
                    top = next;
                }
            }
            EXPECT_FALSE(bottom->addChild(top.get()));
            Vn::PassiveRef<GroupNode> const last(bottom);
            top.reset();
            EXPECT_FALSE(first);
            EXPECT_FALSE(last);
        });
    }
}

// As above: each step at the cost of the row would take hours.
TEST(RenderNodeTests, AMillionChildrenAreTakenOutFromTheFrontAndFromTheMiddle) {
    constexpr std::size_t c_count = 1'000'000;
    StrongRef<GroupNode> const group = GroupNode::make();
    std::vector<StrongRef<GroupNode>> nodes;
    for (std::size_t i = 0; i < c_count; ++i) {
        nodes.push_back(GroupNode::make());
        ASSERT_TRUE(group->addChild(nodes.back().get()));
    }
    for (std::size_t i = 1; i < c_count; i += 2) ASSERT_TRUE(group->removeChild(nodes[i].get()));
    EXPECT_EQ(group->children(), c_count / 2);
    EXPECT_EQ(nodes[0]->next(), nodes[2].get());
    while (group->firstChild()) ASSERT_TRUE(group->removeChild(group->firstChild()));
    EXPECT_EQ(group->children(), 0U);
    EXPECT_EQ(group->lastChild(), nullptr);
}

} // namespace

} // namespace Vrx::Graphics
