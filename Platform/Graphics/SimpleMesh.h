#ifndef VN_PLATFORM_GRAPHICS_SIMPLEMESH_H
#define VN_PLATFORM_GRAPHICS_SIMPLEMESH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Graphics/Export.h"
#include "Platform/Graphics/IndexBuffer.h"
#include "Platform/Graphics/VertexBuffer.h"

namespace Vrx::Devices {

// What a mesh is made of.  The numbers are passed between modules.
enum EPrimitiveType {
    PrimitivePoints = 1,
    PrimitiveLines = 2,        // two indices each
    PrimitiveLineStrip = 3,    // each goes on where the last ended
    PrimitiveTriangles = 4,    // three indices each, counter-clockwise seen from the front
    PrimitiveTriangleStrip = 5 // each shares two indices with the last
};

// Vertices, and how primitives are made of them.  It doesn't change once it is made, so any thread
// may read it, and any number of nodes may share it.
class VRX_API SimpleMesh final : public Vn::RefCounted {
public:
    // Of a type of EPrimitiveType; one that isn't known is kept, and has no triangles.  Without
    // vertices or indices the mesh is empty.  `box` may be null, is copied, and isn't kept unless
    // it is valid.
    SimpleMesh(int primitiveType, Vn::StrongRef<VertexBuffer> vertices,
               Vn::StrongRef<IndexBuffer> indices, BoundingBox const * box) noexcept;
    ~SimpleMesh() override;

    // What the constructor was given; each but the type may be null.
    int primitiveType() const noexcept { return m_primitiveType; }
    VertexBuffer const * vertexBuffer() const noexcept { return m_rVertices.get(); }
    IndexBuffer const * indexBuffer() const noexcept { return m_rIndices.get(); }
    BoundingBox const * box() const noexcept { return m_box ? &*m_box : nullptr; }

    // The box that was given, or else the smallest with the vertices that the indices name, but for
    // those with a NaN or an infinity.  Nothing if there are none.  Costs a look at each index.
    std::optional<BoundingBox> bounds() const noexcept;

    // How many triangles there are, and the vertices of one, which may not exist; zeros for a bad
    // index.  Those of a strip are turned so that all show the same side.
    std::size_t triangles() const noexcept;
    std::array<std::uint32_t, 3> triangle(std::size_t index) const noexcept;

private:
    int const m_primitiveType;
    Vn::StrongRef<VertexBuffer> const m_rVertices;
    Vn::StrongRef<IndexBuffer> const m_rIndices;
    std::optional<BoundingBox> m_box;
};

} // namespace Vrx::Devices

#endif
