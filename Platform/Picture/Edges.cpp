#include "Platform/Picture/EdgesInternal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <compare>
#include <numeric>

#include "Platform/Geometry/Tg.h"

namespace Vn::Picture {

using Vrx::Devices::SimpleMesh;
using Vrx::Devices::VertexBuffer;

namespace {

// The cosine of the least angle at which triangles meet in an edge that is seen.
constexpr double c_flat = 0.8660254037844387; // of 30 degrees

struct Side {
    std::uint32_t low; // its vertices, by the first with their positions
    std::uint32_t high;
    std::uint32_t triangle;

    bool isSame(Side const & other) const { return low == other.low && high == other.high; }
};

TgPoint3d point(VertexBuffer const & vertices, std::uint32_t vertex) {
    std::array<float, 3> const at = vertices.position(vertex);
    return {at[0], at[1], at[2]};
}

// An order of all positions, those with a NaN included, which no triangle that is drawn has.
bool isBefore(std::array<float, 3> const & a, std::array<float, 3> const & b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::strong_ordering const order = std::strong_order(a[i] + 0.0F, b[i] + 0.0F);
        if (order != 0) return order < 0;
    }
    return false;
}

// For each vertex, the first in the buffer with its position.
std::vector<std::uint32_t> firstOfPositions(VertexBuffer const & vertices) {
    std::vector<std::uint32_t> order(vertices.vertices());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return isBefore(vertices.position(a), vertices.position(b));
    });
    std::vector<std::uint32_t> first(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        bool const isSame = i > 0 && vertices.position(order[i]) == vertices.position(order[i - 1]);
        first[order[i]] = isSame ? first[order[i - 1]] : order[i];
    }
    return first;
}

TgVector3d normalOf(SimpleMesh const & mesh, std::uint32_t triangle) {
    std::array<std::uint32_t, 3> const corners = mesh.triangle(triangle);
    VertexBuffer const & vertices = *mesh.vertexBuffer();
    TgPoint3d const a = point(vertices, corners[0]);
    return (point(vertices, corners[1]) - a).crossProduct(point(vertices, corners[2]) - a);
}

bool meetFlat(SimpleMesh const & mesh, Side const & a, Side const & b) {
    TgVector3d const first = normalOf(mesh, a.triangle);
    TgVector3d const second = normalOf(mesh, b.triangle);
    double const lengths = first.length() * second.length();
    // A triangle without area has no direction to differ in.
    return lengths == 0 || first.dotProduct(second) >= c_flat * lengths;
}

} // namespace

std::vector<std::uint32_t> edgesOf(SimpleMesh const & mesh) {
    std::vector<std::uint32_t> edges;
    VertexBuffer const * const vertices = mesh.vertexBuffer();
    if (!vertices || mesh.triangles() == 0) return edges;
    std::vector<std::uint32_t> const first = firstOfPositions(*vertices);
    std::vector<Side> sides;
    sides.reserve(3 * mesh.triangles());
    for (std::size_t i = 0; i < mesh.triangles(); ++i) {
        std::array<std::uint32_t, 3> const corners = mesh.triangle(i);
        if (std::any_of(corners.begin(), corners.end(),
                        [&](std::uint32_t corner) { return corner >= first.size(); }))
            continue;
        for (std::size_t corner = 0; corner < 3; ++corner) {
            std::uint32_t const a = first[corners[corner]];
            std::uint32_t const b = first[corners[(corner + 1) % 3]];
            if (a != b)
                sides.push_back({std::min(a, b), std::max(a, b), static_cast<std::uint32_t>(i)});
        }
    }
    std::sort(sides.begin(), sides.end(), [](Side const & a, Side const & b) {
        return std::array{a.low, a.high, a.triangle} < std::array{b.low, b.high, b.triangle};
    });
    for (std::size_t i = 0; i < sides.size();) {
        std::size_t end = i + 1;
        while (end < sides.size() && sides[end].isSame(sides[i])) ++end;
        if (end != i + 2 || !meetFlat(mesh, sides[i], sides[i + 1])) {
            edges.push_back(sides[i].low);
            edges.push_back(sides[i].high);
        }
        i = end;
    }
    return edges;
}

} // namespace Vn::Picture
