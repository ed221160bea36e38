#include "Platform/Graphics/RenderNode.h"

#include <gtest/gtest.h>

namespace Vrx::Graphics {

namespace {

using Vn::StrongRef;

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

TEST(RenderNodeTests, ALongChainEndsOnASmallStack) {
    StrongRef<GroupNode> top = GroupNode::make();
    StrongRef<GroupNode> above = top;
    for (int i = 0; i < 200'000; ++i) {
        // From above, so that the look for cycles stays short.
        StrongRef<GroupNode> const next = GroupNode::make();
        next->addChild(top.get());
        top = next;
    }
    Vn::PassiveRef<GroupNode> const last(above);
    above.reset();
    top.reset();
    EXPECT_FALSE(last);
}

} // namespace

} // namespace Vrx::Graphics
