#include "Platform/Graphics/SimpleMesh.h"

#include <array>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include <numbers>

#include <gtest/gtest.h>

#include "Tests/Support/Exactly.h"

namespace Vrx::Devices {

namespace {

using Vn::StrongRef;

using Triangle = std::array<std::uint32_t, 3>;

constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();
constexpr float c_infinite = std::numeric_limits<float>::infinity();

// A mesh of vertices with positions alone.
StrongRef<SimpleMesh> mesh(int type, std::vector<float> positions,
                           std::vector<std::uint32_t> const & indices,
                           BoundingBox const * box = nullptr) {
    StrongRef<VertexBuffer> const vertices(
        new VertexBuffer(VertexFormat(), std::move(positions), 0, 3, 2));
    StrongRef<IndexBuffer> const buffer(new IndexBuffer(indices, true));
    return StrongRef<SimpleMesh>(new SimpleMesh(type, vertices, buffer, box));
}

TEST(IndexBufferTests, IndicesAreNarrowOnlyIfAllOfThemFit) {
    struct Row {
        std::vector<std::uint32_t> indices;
        bool narrow;
        std::size_t bytes;
    };
    for (Row const & row : {Row{{0, 1, 2, 2, 3, 0}, true, 2}, Row{{0, 1, 2}, false, 4},
                            Row{{0, 65535}, true, 2}, Row{{0, 65536}, true, 4}, Row{{}, true, 2},
                            Row{{}, false, 4}, Row{{4294967295U}, true, 4}}) {
        IndexBuffer const buffer(row.indices, row.narrow);
        EXPECT_EQ(buffer.bytesPerIndex(), row.bytes);
        ASSERT_EQ(buffer.indices(), row.indices.size());
        for (std::size_t i = 0; i < row.indices.size(); ++i)
            EXPECT_EQ(buffer.index(i), row.indices[i]);
        EXPECT_EQ(buffer.index(row.indices.size()), 0U);
    }
}

TEST(SimpleMeshTests, AMeshTellsWhatItWasMadeOf) {
    StrongRef<SimpleMesh> const made = mesh(4, {0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2});
    EXPECT_EQ(made->primitiveType(), PrimitiveTriangles);
    EXPECT_EQ(made->vertexBuffer()->vertices(), 3U);
    EXPECT_EQ(made->indexBuffer()->indices(), 3U);
    EXPECT_EQ(made->box(), nullptr);
}

TEST(SimpleMeshTests, TrianglesAreThreeIndicesEach) {
    StrongRef<SimpleMesh> const made = mesh(PrimitiveTriangles, {}, {0, 1, 2, 2, 3, 0, 1, 1});
    ASSERT_EQ(made->triangles(), 2U);
    EXPECT_EQ(made->triangle(0), (Triangle{0, 1, 2}));
    EXPECT_EQ(made->triangle(1), (Triangle{2, 3, 0}));
    EXPECT_EQ(made->triangle(2), Triangle{});
}

TEST(SimpleMeshTests, TrianglesOfAStripShowTheSameSide) {
    StrongRef<SimpleMesh> const made = mesh(PrimitiveTriangleStrip, {}, {0, 1, 2, 3, 4});
    ASSERT_EQ(made->triangles(), 3U);
    EXPECT_EQ(made->triangle(0), (Triangle{0, 1, 2}));
    EXPECT_EQ(made->triangle(1), (Triangle{2, 1, 3}));
    EXPECT_EQ(made->triangle(2), (Triangle{2, 3, 4}));
    EXPECT_EQ(mesh(PrimitiveTriangleStrip, {}, {0, 1})->triangles(), 0U);
}

TEST(SimpleMeshTests, OtherTypesHaveNoTriangles) {
    for (int const type : {-1, 0, 1, 2, 3, 6, 1'000'000}) {
        StrongRef<SimpleMesh> const made = mesh(type, {}, {0, 1, 2});
        EXPECT_EQ(made->triangles(), 0U);
        EXPECT_EQ(made->primitiveType(), type);
    }
}

TEST(SimpleMeshTests, BoundsAreThoseOfTheVerticesThatAreDrawnAndFinite) {
    StrongRef<SimpleMesh> const made =
        mesh(PrimitiveTriangles,
             {1, 2, 3, -4, 5, 6, 0, 0, c_nan, c_infinite, 0, 0, 99, 99, 99, 0, 7, -8},
             {0, 1, 2, 3, 5, 1'000});
    auto const bounds = made->bounds();
    ASSERT_TRUE(bounds);
    EXPECT_EQ(exactly(bounds->low), exactly(TgPoint3d(-4, 2, -8)));
    EXPECT_EQ(exactly(bounds->high), exactly(TgPoint3d(1, 7, 6)));
}

TEST(SimpleMeshTests, AMeshWithoutAnythingFiniteHasNoBounds) {
    EXPECT_FALSE(mesh(PrimitiveTriangles, {}, {0, 1, 2})->bounds());
    EXPECT_FALSE(mesh(PrimitiveTriangles, {c_nan, 0, 0}, {0})->bounds());
    EXPECT_FALSE(mesh(PrimitiveTriangles, {1, 2, 3}, {})->bounds());
    EXPECT_FALSE(SimpleMesh(4, nullptr, nullptr, nullptr).bounds());
}

TEST(SimpleMeshTests, AGivenBoxIsKeptIfItIsOne) {
    BoundingBox const box{{-1, -1, -1}, {1, 2, 3}};
    StrongRef<SimpleMesh> const made = mesh(PrimitiveTriangles, {9, 9, 9}, {0}, &box);
    ASSERT_TRUE(made->box());
    EXPECT_EQ(exactly(made->bounds()->high), exactly(box.high));

    for (BoundingBox const & bad :
         {BoundingBox{{1, 0, 0}, {0, 1, 1}}, BoundingBox{{0, c_nan, 0}, {1, 1, 1}},
          BoundingBox{{0, 0, 0}, {1, 1, c_infinite}}}) {
        StrongRef<SimpleMesh> const other = mesh(PrimitiveTriangles, {9, 9, 9}, {0}, &bad);
        EXPECT_EQ(other->box(), nullptr);
        EXPECT_EQ(exactly(other->bounds()->low), exactly(TgPoint3d(9, 9, 9)));
    }
}

TEST(SimpleMeshTests, ABoxIsMapped) {
    BoundingBox const box{{0, 0, 0}, {1, 2, 3}};
    BoundingBox const turned =
        box.transformed(TgMatrix3d::translation({10, 0, 0}) *
                        TgMatrix3d::rotation(std::numbers::pi / 2, TgVector3d::kZAxis));
    EXPECT_TRUE(turned.low.isEqualTo({8, 0, 0}));
    EXPECT_TRUE(turned.high.isEqualTo({10, 1, 3}));
    EXPECT_TRUE(turned.isValid());
    TgMatrix3d broken;
    broken.entry(0, 1, c_nan);
    EXPECT_FALSE(box.transformed(broken).isValid());
    broken.entry(0, 1, std::numeric_limits<double>::max());
    EXPECT_FALSE(BoundingBox({{0, 0, 0}, {1, 1e10, 3}}).transformed(broken).isValid());
}

} // namespace

} // namespace Vrx::Devices
