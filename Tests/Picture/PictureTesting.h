// Models for pictures.

#ifndef VN_TESTS_PICTURE_PICTURETESTING_H
#define VN_TESTS_PICTURE_PICTURETESTING_H

#include <cstdint>
#include <memory>
#include <vector>

#include "Platform/Graphics/IndexBuffer.h"
#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Graphics/VertexBuffer.h"

namespace Vn::Picture::Testing {

using Vrx::Devices::BoundingBox;
using Vrx::Devices::SimpleMesh;
using Vrx::Graphics::EffectParams;
using Vrx::Graphics::GroupNode;
using Vrx::Graphics::LODGeometryNode;

inline StrongRef<SimpleMesh> meshOf(std::vector<float> positions,
                                    std::vector<std::uint32_t> const & indices) {
    using namespace Vrx::Devices;
    StrongRef<VertexBuffer> const vertices(new VertexBuffer(
        VertexFormat(), std::move(positions), UsageStatic, AccessReadWrite, StateComplete));
    StrongRef<IndexBuffer> const places(new IndexBuffer(indices, true));
    return StrongRef<SimpleMesh>(new SimpleMesh(PrimitiveTriangles, vertices, places, nullptr));
}

// A box from the origin to (x, y, z).
inline StrongRef<SimpleMesh> boxOf(float x, float y, float z) {
    std::vector<float> positions;
    for (int corner = 0; corner < 8; ++corner) {
        positions.push_back(corner & 1 ? x : 0);
        positions.push_back(corner & 2 ? y : 0);
        positions.push_back(corner & 4 ? z : 0);
    }
    return meshOf(std::move(positions), {0, 2, 1, 1, 2, 3, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4,
                                         2, 6, 3, 3, 6, 7, 0, 4, 2, 2, 4, 6, 1, 3, 5, 3, 7, 5});
}

// A part below a group, in a group of its own that places it.
inline LODGeometryNode * addPart(GroupNode & group, StrongRef<SimpleMesh> const & mesh,
                                 Color const & color, TgMatrix3d const & place = TgMatrix3d()) {
    StrongRef<GroupNode> const own = GroupNode::make();
    own->transform(std::make_unique<TgMatrix3d const>(place));
    StrongRef<LODGeometryNode> const node = LODGeometryNode::make();
    node->geometry(mesh.get(), Vrx::Graphics::LevelAll);
    node->effect(EffectParams(color, false, 0));
    own->addChild(node.get());
    group.addChild(own.get());
    return node.get();
}

} // namespace Vn::Picture::Testing

#endif
