#include "Platform/Picture/EdgesInternal.h"

#include <array>
#include <set>

#include <gtest/gtest.h>

#include "Tests/Picture/PictureTesting.h"

namespace Vn::Picture {

namespace {

using namespace Testing;

std::set<std::array<std::uint32_t, 2>> pairs(std::vector<std::uint32_t> const & edges) {
    std::set<std::array<std::uint32_t, 2>> found;
    for (std::size_t i = 0; i + 1 < edges.size(); i += 2) found.insert({edges[i], edges[i + 1]});
    EXPECT_EQ(found.size() * 2, edges.size());
    return found;
}

TEST(EdgesTests, ABoxHasTwelveAndNoDiagonals) {
    auto const edges = pairs(edgesOf(*boxOf(1, 2, 3)));
    EXPECT_EQ(edges.size(), 12U);
    for (auto const & [low, high] : edges) {
        unsigned const differs = low ^ high;
        EXPECT_TRUE(differs == 1 || differs == 2 || differs == 4) << low << ' ' << high;
    }
}

TEST(EdgesTests, ATriangleAloneHasThree) {
    EXPECT_EQ(pairs(edgesOf(*meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 2}))).size(), 3U);
}

// A square of two triangles, folded along its diagonal.
std::size_t edgesOfFold(float height) {
    return edgesOf(*meshOf({0, 0, 0, 1, 0, 0, 1, 1, height, 0, 1, 0}, {0, 1, 3, 1, 2, 3})).size() /
           2;
}

TEST(EdgesTests, AFoldIsSeenBeyondThirtyDegrees) {
    EXPECT_EQ(edgesOfFold(0), 4U);
    EXPECT_EQ(edgesOfFold(0.1F), 4U);
    EXPECT_EQ(edgesOfFold(1), 5U);
    EXPECT_EQ(edgesOfFold(-1), 5U);
}

TEST(EdgesTests, VerticesAtOnePlaceAreOne) {
    // Each triangle has vertices of its own, as with a normal for each face.
    auto const square =
        meshOf({0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0}, {0, 1, 2, 3, 4, 5});
    EXPECT_EQ(pairs(edgesOf(*square)).size(), 4U);
}

TEST(EdgesTests, BadIndicesAndTrianglesWithoutAreaDoNoHarm) {
    EXPECT_EQ(edgesOf(*meshOf({0, 0, 0}, {0, 1, 7})).size(), 0U);
    EXPECT_EQ(edgesOf(*meshOf({0, 0, 0}, {0, 0, 0})).size(), 0U);
    EXPECT_EQ(edgesOf(*meshOf({}, {})).size(), 0U);
    EXPECT_EQ(edgesOf(SimpleMesh(4, nullptr, nullptr, nullptr)).size(), 0U);
}

} // namespace

} // namespace Vn::Picture
