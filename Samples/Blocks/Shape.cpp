#include "Samples/Blocks/Shape.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <map>
#include <mutex>
#include <numbers>
#include <vector>

#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/VertexBufferBuilder.h"
#include "Platform/Scene/Buffers.h"

namespace Vn::Blocks {

using Vrx::Devices::SimpleMesh;
using Vrx::Devices::VertexBufferBuilder;

namespace {

constexpr char const * c_blockSizes[] = {"width", "depth", "height"};
constexpr char const * c_cylinderSizes[] = {"diameter", "height"};
constexpr char const * c_sphereSizes[] = {"diameter"};

constexpr double c_pi = std::numbers::pi;

// Into how many pieces a circle is cut, and half a circle from pole to pole.
constexpr int c_pieces = 32;
constexpr int c_rings = 16;

// Collects vertices with normals, and triangles.
class MeshMaker {
public:
    // Answers the index of the vertex.
    int vertex(TgPoint3d const & position, TgVector3d const & normal) {
        m_vertices.push_back({position, normal});
        return static_cast<int>(m_vertices.size()) - 1;
    }
    // Counter-clockwise seen from outside.
    void triangle(int a, int b, int c) { m_indices.insert(m_indices.end(), {a, b, c}); }
    // Its first corner and then counter-clockwise.
    void rectangle(int a, int b, int c, int d) {
        triangle(a, b, c);
        triangle(c, d, a);
    }

    StrongRef<SimpleMesh> make() const {
        VertexBufferBuilder builder(static_cast<int>(m_vertices.size()),
                                    Scene::makeVertexFormat(true, 0));
        auto const narrow = [](double number) { return static_cast<float>(number); };
        for (auto const & [position, normal] : m_vertices) {
            builder.AddPosition(narrow(position.x), narrow(position.y), narrow(position.z));
            builder.Normal(narrow(normal.x), narrow(normal.y), narrow(normal.z));
        }
        return StrongRef<SimpleMesh>(new SimpleMesh(
            Vrx::Devices::PrimitiveTriangles,
            builder.ToVertexBuffer(nullptr, Vrx::Devices::UsageStatic,
                                   Vrx::Devices::AccessReadWrite, Vrx::Devices::StateComplete),
            Scene::BuildIndexBuffer(m_indices.data(), static_cast<int>(m_indices.size()), true),
            nullptr));
    }

private:
    struct Vertex {
        TgPoint3d position;
        TgVector3d normal;
    };
    std::vector<Vertex> m_vertices;
    std::vector<int> m_indices;
};

// The direction of a piece of a circle, exact at the quarters.
TgVector3d around(int piece) {
    int const quarter = c_pieces / 4;
    double const angle = (piece % quarter) * (2 * c_pi / c_pieces);
    double const c = std::cos(angle);
    double const s = std::sin(angle);
    switch (piece / quarter % 4) {
    case 0:
        return {c, s, 0};
    case 1:
        return {-s, c, 0};
    case 2:
        return {-c, -s, 0};
    default:
        return {s, -c, 0};
    }
}

TgPoint3d at(TgVector3d const & way) { return TgPoint3d::kOrigin + way; }

void makeBlock(Sizes const & sizes, MeshMaker & mesh) {
    TgVector3d const edges[] = {{sizes[0], 0, 0}, {0, sizes[1], 0}, {0, 0, sizes[2]}};
    TgVector3d const axes[] = {TgVector3d::kXAxis, TgVector3d::kYAxis, TgVector3d::kZAxis};
    for (int i = 0; i < 3; ++i) {
        TgVector3d const & across = edges[(i + 1) % 3];
        TgVector3d const & up = edges[(i + 2) % 3];
        for (bool const isFar : {false, true}) {
            TgPoint3d const corner = isFar ? at(edges[i]) : TgPoint3d::kOrigin;
            TgVector3d const normal = isFar ? axes[i] : -axes[i];
            int const a = mesh.vertex(corner, normal);
            int const b = mesh.vertex(corner + across, normal);
            int const c = mesh.vertex(corner + across + up, normal);
            int const d = mesh.vertex(corner + up, normal);
            isFar ? mesh.rectangle(a, b, c, d) : mesh.rectangle(a, d, c, b);
        }
    }
}

void makeCylinder(Sizes const & sizes, MeshMaker & mesh) {
    double const radius = sizes[0] / 2;
    TgVector3d const height(0, 0, sizes[1]);
    // The side first, then the bottom and the top, of which each vertex stands there once more.
    int const side = 0;
    for (int i = 0; i < c_pieces; ++i) {
        TgVector3d const out = around(i);
        mesh.vertex(at(out * radius), out);
        mesh.vertex(at(out * radius + height), out);
    }
    for (int i = 0; i < c_pieces; ++i) {
        int const here = side + 2 * i;
        int const next = side + 2 * ((i + 1) % c_pieces);
        mesh.rectangle(here, next, next + 1, here + 1);
    }
    for (bool const isTop : {false, true}) {
        TgVector3d const normal = isTop ? TgVector3d::kZAxis : -TgVector3d::kZAxis;
        int first = -1;
        for (int i = 0; i < c_pieces; ++i) {
            TgVector3d const out = around(i) * radius;
            int const here = mesh.vertex(at(isTop ? out + height : out), normal);
            if (i == 0) first = here;
            if (i < 2) continue;
            isTop ? mesh.triangle(first, here - 1, here) : mesh.triangle(first, here, here - 1);
        }
    }
}

void makeSphere(Sizes const & sizes, MeshMaker & mesh) {
    double const radius = sizes[0] / 2;
    int const south = mesh.vertex(at(TgVector3d(0, 0, -radius)), -TgVector3d::kZAxis);
    int const north = mesh.vertex(at(TgVector3d(0, 0, radius)), TgVector3d::kZAxis);
    int const first = north + 1;
    for (int ring = 1; ring < c_rings; ++ring) {
        double const angle = c_pi * ring / c_rings - c_pi / 2;
        for (int i = 0; i < c_pieces; ++i) {
            TgVector3d const out =
                around(i) * std::cos(angle) + TgVector3d::kZAxis * std::sin(angle);
            mesh.vertex(at(out * radius), out);
        }
    }
    auto const ringVertex = [&](int ring, int i) {
        return first + (ring - 1) * c_pieces + i % c_pieces;
    };
    for (int i = 0; i < c_pieces; ++i) {
        mesh.triangle(south, ringVertex(1, i + 1), ringVertex(1, i));
        for (int ring = 1; ring + 1 < c_rings; ++ring)
            mesh.rectangle(ringVertex(ring, i), ringVertex(ring, i + 1),
                           ringVertex(ring + 1, i + 1), ringVertex(ring + 1, i));
        mesh.triangle(north, ringVertex(c_rings - 1, i), ringVertex(c_rings - 1, i + 1));
    }
}

StrongRef<SimpleMesh> makeMesh(Shape const & shape) {
    MeshMaker mesh;
    switch (shape.kind) {
    case EShape::Block:
        makeBlock(shape.sizes, mesh);
        break;
    case EShape::Cylinder:
        makeCylinder(shape.sizes, mesh);
        break;
    case EShape::Sphere:
        makeSphere(shape.sizes, mesh);
        break;
    }
    return mesh.make();
}

// The meshes that are shared.  Whoever lets go of one last takes its entry out.
class MeshTable {
public:
    SharedMesh find(Shape const & shape) {
        std::lock_guard const lock(m_mutex);
        std::weak_ptr<StrongRef<SimpleMesh> const> & entry = m_entries[shape];
        if (SharedMesh mesh = entry.lock()) return mesh;
        SharedMesh const mesh(new StrongRef<SimpleMesh> const(makeMesh(shape)),
                              [this, shape](StrongRef<SimpleMesh> const * last) {
                                  delete last;
                                  forget(shape);
                              });
        entry = mesh;
        return mesh;
    }
    std::size_t size() {
        std::lock_guard const lock(m_mutex);
        return m_entries.size();
    }

private:
    // Another may have been made meanwhile.
    void forget(Shape const & shape) {
        std::lock_guard const lock(m_mutex);
        auto const found = m_entries.find(shape);
        if (found != m_entries.end() && found->second.expired()) m_entries.erase(found);
    }

    std::mutex m_mutex;
    std::map<Shape, std::weak_ptr<StrongRef<SimpleMesh> const>> m_entries;
};

MeshTable s_meshes;

} // namespace

std::span<char const * const> sizeNames(EShape kind) {
    switch (kind) {
    case EShape::Block:
        return c_blockSizes;
    case EShape::Cylinder:
        return c_cylinderSizes;
    default:
        return c_sphereSizes;
    }
}

char const * shapeName(EShape kind) {
    switch (kind) {
    case EShape::Block:
        return "Block";
    case EShape::Cylinder:
        return "Cylinder";
    default:
        return "Sphere";
    }
}

bool Shape::isValid() const {
    auto const end = sizes.begin() + static_cast<std::ptrdiff_t>(sizeNames(kind).size());
    return std::all_of(sizes.begin(), end,
                       [](double size) { return std::isfinite(size) && size > 0; });
}

double Shape::volume() const {
    switch (kind) {
    case EShape::Block:
        return sizes[0] * sizes[1] * sizes[2];
    case EShape::Cylinder:
        return c_pi / 4 * sizes[0] * sizes[0] * sizes[1];
    default:
        return c_pi / 6 * sizes[0] * sizes[0] * sizes[0];
    }
}

double Shape::area() const {
    switch (kind) {
    case EShape::Block:
        return 2 * (sizes[0] * sizes[1] + sizes[1] * sizes[2] + sizes[2] * sizes[0]);
    case EShape::Cylinder:
        return c_pi * sizes[0] * (sizes[0] / 2 + sizes[1]);
    default:
        return c_pi * sizes[0] * sizes[0];
    }
}

StrongRef<SimpleMesh> axesMesh(double length, double thickness) {
    MeshMaker mesh;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Sizes bar{thickness, thickness, thickness};
        bar[axis] = length;
        makeBlock(bar, mesh);
    }
    return mesh.make();
}

SharedMesh meshOf(Shape const & shape) { return shape.isValid() ? s_meshes.find(shape) : nullptr; }

std::size_t sharedMeshes() { return s_meshes.size(); }

} // namespace Vn::Blocks
