#include "Platform/Graphics/LODGeometryNode.h"

#include <gtest/gtest.h>

namespace Vrx::Graphics {

namespace {

using Devices::SimpleMesh;
using Vn::StrongRef;

StrongRef<SimpleMesh> emptyMesh() {
    return StrongRef<SimpleMesh>(
        new SimpleMesh(Devices::PrimitiveTriangles, nullptr, nullptr, nullptr));
}

TEST(LODGeometryNodeTests, ANewNodeHasNoMesh) {
    StrongRef<LODGeometryNode> const node = LODGeometryNode::make();
    for (unsigned level = 0; level < 6; ++level) EXPECT_EQ(node->mesh(level), nullptr);
}

TEST(LODGeometryNodeTests, AMaskSaysWhichLevelsGetAMesh) {
    StrongRef<LODGeometryNode> const node = LODGeometryNode::make();
    StrongRef<SimpleMesh> const fine = emptyMesh();
    StrongRef<SimpleMesh> const coarse = emptyMesh();
    node->geometry(fine.get(), 0xF);
    EXPECT_EQ(fine->refCount(), 5U);
    node->geometry(coarse.get(), LevelCoarse | LevelCoarsest);
    EXPECT_EQ(node->mesh(), fine.get());
    EXPECT_EQ(node->mesh(1), fine.get());
    EXPECT_EQ(node->mesh(2), coarse.get());
    EXPECT_EQ(node->mesh(3), coarse.get());
    EXPECT_EQ(node->mesh(4), nullptr);
    node->geometry(nullptr, LevelFinest);
    EXPECT_EQ(node->mesh(0), nullptr);
    node->geometry(fine.get(), ~0xF);
    EXPECT_EQ(node->mesh(0), nullptr);
    EXPECT_EQ(fine->refCount(), 2U);
}

TEST(LODGeometryNodeTests, AMeshThatOnlyTheNodeOwnsCanBeGivenToItAgain) {
    StrongRef<LODGeometryNode> const node = LODGeometryNode::make();
    node->geometry(emptyMesh().get(), LevelFinest);
    SimpleMesh * const mesh = node->mesh();
    node->geometry(mesh, LevelAll);
    EXPECT_EQ(mesh->refCount(), 4U);
}

TEST(LODGeometryNodeTests, NodesShareAMeshAndLetItGo) {
    StrongRef<SimpleMesh> const mesh = emptyMesh();
    {
        StrongRef<LODGeometryNode> const one = LODGeometryNode::make();
        StrongRef<LODGeometryNode> const other = LODGeometryNode::make();
        one->geometry(mesh.get(), LevelAll);
        other->geometry(mesh.get(), LevelFinest);
        EXPECT_EQ(mesh->refCount(), 6U);
    }
    EXPECT_EQ(mesh->refCount(), 1U);
}

} // namespace

} // namespace Vrx::Graphics
