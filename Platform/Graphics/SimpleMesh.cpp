#include "Platform/Graphics/SimpleMesh.h"

#include <span>
#include <utility>

namespace Vrx::Devices {

SimpleMesh::SimpleMesh(int primitiveType, Vn::StrongRef<VertexBuffer> vertices,
                       Vn::StrongRef<IndexBuffer> indices, BoundingBox const * box) noexcept
    : m_primitiveType(primitiveType), m_rVertices(std::move(vertices)),
      m_rIndices(std::move(indices)) {
    if (box && box->isValid()) m_box = *box;
}

SimpleMesh::~SimpleMesh() = default;

std::optional<BoundingBox> SimpleMesh::bounds() const noexcept {
    if (m_box || !m_rVertices || !m_rIndices) return m_box;
    std::span<float const> const numbers = m_rVertices->numbers();
    std::size_t const step = m_rVertices->format().numbers();
    std::size_t const vertices = m_rVertices->vertices();
    std::optional<BoundingBox> bounds;
    for (std::size_t i = 0; i < m_rIndices->indices(); ++i) {
        std::uint32_t const vertex = m_rIndices->index(i);
        if (vertex >= vertices) continue;
        float const * const position = numbers.data() + vertex * step;
        TgPoint3d const point(position[0], position[1], position[2]);
        if (!BoundingBox::isFinite(point)) continue;
        if (bounds)
            bounds->add(BoundingBox::of(point));
        else
            bounds = BoundingBox::of(point);
    }
    return bounds;
}

std::size_t SimpleMesh::triangles() const noexcept {
    std::size_t const indices = m_rIndices ? m_rIndices->indices() : 0;
    if (m_primitiveType == PrimitiveTriangles) return indices / 3;
    if (m_primitiveType == PrimitiveTriangleStrip) return indices < 3 ? 0 : indices - 2;
    return 0;
}

std::array<std::uint32_t, 3> SimpleMesh::triangle(std::size_t index) const noexcept {
    if (index >= triangles()) return {};
    bool const isStrip = m_primitiveType == PrimitiveTriangleStrip;
    std::size_t const first = isStrip ? index : 3 * index;
    std::array<std::uint32_t, 3> found{m_rIndices->index(first), m_rIndices->index(first + 1),
                                       m_rIndices->index(first + 2)};
    if (isStrip && index % 2 == 1) std::swap(found[0], found[1]);
    return found;
}

} // namespace Vrx::Devices
