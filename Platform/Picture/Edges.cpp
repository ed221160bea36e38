#include "Platform/Picture/EdgesInternal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <compare>
#include <numeric>
#include <span>

namespace Vn::Picture {

using Vrx::Devices::SimpleMesh;
using Vrx::Devices::VertexBuffer;

namespace {

// The cosine of the least angle at which triangles meet in an edge that is seen.
constexpr double c_flat = 0.8660254037844387; // of 30 degrees

// A triangle as it is drawn: by the first vertices with its positions.
using Triangle = std::array<std::uint32_t, 3>;

// A side of a triangle, listed under the lower of its vertices.
struct Side {
    std::uint32_t high; // the other vertex
    std::uint32_t triangle;
};

// An order of all positions, those with a NaN included, which no triangle that is drawn has.
struct Place {
    std::array<float, 3> at;
    std::uint32_t vertex;

    std::strong_ordering order(Place const & other) const {
        for (std::size_t i = 0; i < at.size(); ++i)
            if (auto const order = std::strong_order(at[i], other.at[i]); order != 0) return order;
        return std::strong_ordering::equal;
    }
    bool operator<(Place const & other) const {
        auto const places = order(other);
        return places != 0 ? places < 0 : vertex < other.vertex;
    }
};

// The positions of the vertices.
class Positions {
public:
    explicit Positions(VertexBuffer const & vertices)
        : m_numbers(vertices.numbers()), m_step(vertices.format().numbers()),
          m_count(vertices.vertices()) {}

    std::size_t count() const { return m_count; }
    // Zeros of either sign are one.
    std::array<float, 3> operator[](std::size_t vertex) const {
        float const * const first = m_numbers.data() + vertex * m_step;
        return {first[0] + 0.0F, first[1] + 0.0F, first[2] + 0.0F};
    }

private:
    std::span<float const> const m_numbers;
    std::size_t const m_step;
    std::size_t const m_count;
};

// For each vertex, the first in the buffer with its position.
std::vector<std::uint32_t> firstOfPositions(Positions const & positions) {
    std::vector<Place> places(positions.count());
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = {positions[i], static_cast<std::uint32_t>(i)};
    if (!std::is_sorted(places.begin(), places.end())) std::sort(places.begin(), places.end());
    std::vector<std::uint32_t> first(places.size());
    for (std::size_t i = 0; i < places.size(); ++i) {
        bool const isSame = i > 0 && places[i].order(places[i - 1]) == 0;
        first[places[i].vertex] = isSame ? first[places[i - 1].vertex] : places[i].vertex;
    }
    return first;
}

// Of length 1; zeros for a triangle without area.
std::array<double, 3> normalOf(Positions const & positions, Triangle const & triangle) {
    auto const [ax, ay, az] = positions[triangle[0]];
    auto const [bx, by, bz] = positions[triangle[1]];
    auto const [cx, cy, cz] = positions[triangle[2]];
    double const ux = double{bx} - ax, uy = double{by} - ay, uz = double{bz} - az;
    double const vx = double{cx} - ax, vy = double{cy} - ay, vz = double{cz} - az;
    double const x = uy * vz - uz * vy;
    double const y = uz * vx - ux * vz;
    double const z = ux * vy - uy * vx;
    double const length = std::sqrt(x * x + y * y + z * z); // of floats, which reach no limits
    return length > 0 ? std::array{x / length, y / length, z / length} : std::array<double, 3>{};
}

// Whether two triangles meet in a side that isn't seen.
bool meetFlat(std::array<double, 3> const & a, std::array<double, 3> const & b) {
    double const cosine = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    bool const hasArea = a != std::array<double, 3>{} && b != std::array<double, 3>{};
    // A triangle without area has no direction to differ in.
    return !hasArea || cosine >= c_flat;
}

std::vector<Triangle> trianglesOf(SimpleMesh const & mesh,
                                  std::vector<std::uint32_t> const & first) {
    std::vector<Triangle> triangles;
    triangles.reserve(mesh.triangles());
    for (std::size_t i = 0; i < mesh.triangles(); ++i) {
        Triangle corners = mesh.triangle(i);
        if (std::any_of(corners.begin(), corners.end(),
                        [&](std::uint32_t corner) { return corner >= first.size(); }))
            continue;
        for (std::uint32_t & corner : corners) corner = first[corner];
        triangles.push_back(corners);
    }
    return triangles;
}

template <class Take>
void forEachSide(std::vector<Triangle> const & triangles, Take && take) {
    for (std::size_t i = 0; i < triangles.size(); ++i)
        for (std::size_t corner = 0; corner < 3; ++corner) {
            std::uint32_t const a = triangles[i][corner];
            std::uint32_t const b = triangles[i][(corner + 1) % 3];
            if (a != b) take(std::min(a, b), Side{std::max(a, b), static_cast<std::uint32_t>(i)});
        }
}

} // namespace

std::vector<std::uint32_t> edgesOf(SimpleMesh const & mesh) {
    std::vector<std::uint32_t> edges;
    if (!mesh.vertexBuffer() || mesh.triangles() == 0) return edges;
    Positions const positions(*mesh.vertexBuffer());
    std::vector<Triangle> const triangles = trianglesOf(mesh, firstOfPositions(positions));
    std::vector<std::array<double, 3>> normals;
    normals.reserve(triangles.size());
    for (Triangle const & triangle : triangles) normals.push_back(normalOf(positions, triangle));

    // The sides under each lower vertex, one list after the other: `ends` first tells where each
    // begins, and then where it ends.
    std::vector<std::size_t> ends(positions.count() + 1);
    forEachSide(triangles, [&](std::uint32_t low, Side const &) { ++ends[low + 1]; });
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    std::vector<Side> sides(ends.back());
    forEachSide(triangles,
                [&](std::uint32_t low, Side const & side) { sides[ends[low]++] = side; });

    std::size_t begin = 0;
    for (std::uint32_t low = 0; low < positions.count(); begin = ends[low++]) {
        auto const first = sides.begin() + static_cast<std::ptrdiff_t>(begin);
        auto const last = sides.begin() + static_cast<std::ptrdiff_t>(ends[low]);
        std::sort(first, last, [](Side const & a, Side const & b) {
            return a.high != b.high ? a.high < b.high : a.triangle < b.triangle;
        });
        for (auto side = first; side != last;) {
            auto const end = std::find_if(
                side, last, [&](Side const & each) { return each.high != side->high; });
            if (end - side != 2 || !meetFlat(normals[side[0].triangle], normals[side[1].triangle]))
                edges.insert(edges.end(), {low, side->high});
            side = end;
        }
    }
    return edges;
}

} // namespace Vn::Picture
