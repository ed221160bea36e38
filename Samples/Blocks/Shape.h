// What the parts look like: plain geometry that knows nothing of documents.

#ifndef VN_SAMPLES_BLOCKS_SHAPE_H
#define VN_SAMPLES_BLOCKS_SHAPE_H

#include <array>
#include <compare>
#include <cstddef>
#include <memory>
#include <span>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/SimpleMesh.h"

namespace Vn::Blocks {

// The kinds of parts.
enum class EShape { Block, Cylinder, Sphere };

// Width, depth and height of a block; diameter and height of a cylinder; diameter of a sphere.  In
// cm; sizes that a shape doesn't have are 0.
using Sizes = std::array<double, 3>;

// The names of the sizes of a kind, in their order, as commands and documents have them.
std::span<char const * const> sizeNames(EShape kind);
// "Block", "Cylinder" or "Sphere".
char const * shapeName(EShape kind);

// A body: a block stands with a corner in the origin and goes along the axes, a cylinder stands on
// the origin with its axis upwards, a sphere has its centre there.
struct Shape {
    EShape kind = EShape::Block;
    Sizes sizes{};

    // Whether all sizes that the kind has are finite and above 0; documents may hold anything.
    bool isValid() const;
    // The exact formulas, in cm^3 and cm^2.
    double volume() const;
    double area() const;

    // In some order, for tables.
    auto operator<=>(Shape const &) const = default;
};

// A mesh, as long as somebody shares it.
using SharedMesh = std::shared_ptr<StrongRef<Vrx::Devices::SimpleMesh> const>;

// The mesh of a shape: 12 triangles for a block, for the others so many that a distance from the
// true surface is at most about 1 % of the radius; always the same for the same sizes.  Each vertex
// has the normal of its surface.  Equal shapes share one mesh as long as somebody does; afterwards
// nothing is kept of it.  Null if the shape isn't valid.  Any thread may ask.
SharedMesh meshOf(Shape const & shape);

// The mesh of three bars from the origin along the axes, in cm.
StrongRef<Vrx::Devices::SimpleMesh> axesMesh(double length, double thickness);

// How many meshes are shared at present.
std::size_t sharedMeshes();

} // namespace Vn::Blocks

#endif
