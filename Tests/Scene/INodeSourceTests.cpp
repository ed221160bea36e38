#include "Platform/Scene/INodeSource.h"

#include <memory>

#include <gtest/gtest.h>

#include "Platform/Scene/NodeChange.h"
#include "Tests/Scene/SceneTesting.h"

namespace Vn::Scene {

namespace {

using namespace Testing;

// A source with a group.
class Source : public INodeSource {
public:
    Source() {
        NodeChange change;
        m_rNode =
            StrongRef<GroupNode>(change.createGroupNode(this, Vrx::Scene::WorldModel, true, true));
    }

    ARenderNode * renderNode() const override { return m_rNode.get(); }
    GroupNode * groupNode() const override { return m_rNode.get(); }

private:
    StrongRef<GroupNode> m_rNode;
};

TEST(INodeSourceTests, ANodeLeadsToItsSource) {
    Source const source;
    NodeChange change;
    ARenderNode * const second = change.createLODGeometryNode(const_cast<Source *>(&source), true);
    EXPECT_EQ(INodeSource::of(source.renderNode()), &source);
    EXPECT_EQ(INodeSource::of(second), &source);
}

TEST(INodeSourceTests, ANodeOfNobodyLeadsNowhere) {
    StrongRef<GroupNode> const node = GroupNode::make();
    EXPECT_EQ(INodeSource::of(node.get()), nullptr);
    EXPECT_EQ(INodeSource::of(nullptr), nullptr);
    node->tag(StrongRef<RefCounted>(node.get())); // of somebody else
    EXPECT_EQ(INodeSource::of(node.get()), nullptr);
    node->tag(nullptr);
}

TEST(INodeSourceTests, ANodeThatOutlivesItsSourceLeadsNowhere) {
    auto source = std::make_unique<Source>();
    StrongRef<ARenderNode> const node(source->renderNode());
    source.reset();
    EXPECT_EQ(INodeSource::of(node.get()), nullptr);
}

TEST(INodeSourceTests, ACopyHasNodesOfItsOwn) {
    Source const source;
    {
        Source const copy(source);
        EXPECT_EQ(INodeSource::of(source.renderNode()), &source);
    }
    EXPECT_EQ(INodeSource::of(source.renderNode()), &source);
}

} // namespace

} // namespace Vn::Scene
