#include "Platform/Graphics/LODGeometryNode.h"

namespace Vrx::Graphics {

Vn::StrongRefCreator<LODGeometryNode> LODGeometryNode::make() {
    return Vn::StrongRefCreator<LODGeometryNode>(new LODGeometryNode);
}

LODGeometryNode::~LODGeometryNode() = default;

Devices::SimpleMesh * LODGeometryNode::mesh(unsigned level) const noexcept {
    return level < c_levels ? m_meshes[level].get() : nullptr;
}

void LODGeometryNode::geometry(Devices::SimpleMesh * mesh, int levels) noexcept {
    Vn::StrongRef<Devices::SimpleMesh> const held(mesh); // which may be owned by a level alone
    for (unsigned level = 0; level < c_levels; ++level)
        if (levels & (1 << level)) m_meshes[level] = held;
}

} // namespace Vrx::Graphics
