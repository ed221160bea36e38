#include "Samples/Blocks/Shape.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <numbers>
#include <utility>

#include <gtest/gtest.h>

#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/VertexBuffer.h"

namespace Vn::Blocks::Testing {

namespace {

using Vrx::Devices::SimpleMesh;

constexpr double c_pi = std::numbers::pi;

TgPoint3d pointOf(std::array<float, 3> const & a) { return {a[0], a[1], a[2]}; }

// What the triangles enclose, if they are counter-clockwise seen from outside.
double enclosed(SimpleMesh const & mesh) {
    double sum = 0;
    for (std::size_t i = 0; i < mesh.triangles(); ++i) {
        auto const [a, b, c] = mesh.triangle(i);
        TgVector3d const p = pointOf(mesh.vertexBuffer()->position(a)).asVector();
        TgVector3d const q = pointOf(mesh.vertexBuffer()->position(b)).asVector();
        TgVector3d const r = pointOf(mesh.vertexBuffer()->position(c)).asVector();
        sum += p.dotProduct(q.crossProduct(r)) / 6;
    }
    return sum;
}

// How often each edge between two positions is gone along in each direction.
std::map<std::pair<std::array<float, 3>, std::array<float, 3>>, int>
edgesOf(SimpleMesh const & mesh) {
    std::map<std::pair<std::array<float, 3>, std::array<float, 3>>, int> edges;
    for (std::size_t i = 0; i < mesh.triangles(); ++i) {
        auto const corners = mesh.triangle(i);
        for (std::size_t k = 0; k < 3; ++k)
            ++edges[{mesh.vertexBuffer()->position(corners[k]),
                     mesh.vertexBuffer()->position(corners[(k + 1) % 3])}];
    }
    return edges;
}

struct Body {
    Shape shape;
    double volume;
    double area;
};

Body const c_bodies[] = {
    {{EShape::Block, {2, 3, 4}}, 24, 52},
    {{EShape::Cylinder, {2, 5}}, 5 * c_pi, 12 * c_pi},
    {{EShape::Sphere, {6}}, 36 * c_pi, 36 * c_pi},
};

TEST(Shape, VolumeAndAreaAreExact) {
    for (Body const & body : c_bodies) {
        EXPECT_DOUBLE_EQ(body.shape.volume(), body.volume) << shapeName(body.shape.kind);
        EXPECT_DOUBLE_EQ(body.shape.area(), body.area) << shapeName(body.shape.kind);
    }
}

TEST(Shape, AMeshIsClosedAndEnclosesTheBody) {
    for (Body const & body : c_bodies) {
        SharedMesh const shared = meshOf(body.shape);
        SimpleMesh const & mesh = **shared;
        auto const edges = edgesOf(mesh);
        for (auto const & [edge, count] : edges)
            ASSERT_TRUE(count == 1 && edges.count({edge.second, edge.first}))
                << shapeName(body.shape.kind);
        EXPECT_LE(enclosed(mesh), body.volume * 1.000001) << shapeName(body.shape.kind);
        EXPECT_GE(enclosed(mesh), body.volume * 0.98) << shapeName(body.shape.kind);
    }
    SharedMesh const block = meshOf({EShape::Block, {2, 3, 4}});
    EXPECT_EQ((*block)->triangles(), 12U);
    EXPECT_DOUBLE_EQ(enclosed(**block), 24);
}

TEST(Shape, NormalsPointOutwardsAndHaveLength1) {
    for (Body const & body : c_bodies) {
        SharedMesh const shared = meshOf(body.shape);
        SimpleMesh const & mesh = **shared;
        for (std::size_t i = 0; i < mesh.triangles(); ++i) {
            auto const corners = mesh.triangle(i);
            TgPoint3d const a = pointOf(mesh.vertexBuffer()->position(corners[0]));
            TgPoint3d const b = pointOf(mesh.vertexBuffer()->position(corners[1]));
            TgPoint3d const c = pointOf(mesh.vertexBuffer()->position(corners[2]));
            TgVector3d const face = (b - a).crossProduct(c - a).normal();
            for (std::uint32_t const corner : corners) {
                TgVector3d const normal = pointOf(mesh.vertexBuffer()->normal(corner)).asVector();
                EXPECT_NEAR(normal.length(), 1, 1e-6);
                EXPECT_GT(normal.dotProduct(face), 0.97) << shapeName(body.shape.kind);
            }
        }
    }
}

TEST(Shape, EqualShapesShareAMeshAsLongAsItIsUsed) {
    std::size_t const before = sharedMeshes();
    {
        SharedMesh const one = meshOf({EShape::Sphere, {7}});
        SharedMesh const same = meshOf({EShape::Sphere, {7}});
        SharedMesh const other = meshOf({EShape::Sphere, {8}});
        EXPECT_EQ(one->get(), same->get());
        EXPECT_NE(one->get(), other->get());
        EXPECT_EQ(sharedMeshes(), before + 2);
    }
    EXPECT_EQ(sharedMeshes(), before);
}

TEST(Shape, SizesThatMakeNoBodyHaveNoMesh) {
    for (double const size : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(meshOf({EShape::Cylinder, {1, size}})) << size;
}

} // namespace

} // namespace Vn::Blocks::Testing
