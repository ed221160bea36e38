#include "Platform/Picture/ShownPartsInternal.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "Platform/Graphics/LODGeometryNode.h"
#include "Platform/Graphics/NodeWalk.h"
#include "Platform/Scene/INodeSource.h"

namespace Vn::Picture {

using Vrx::Devices::BoundingBox;
using Vrx::Devices::SimpleMesh;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::LODGeometryNode;
using Vrx::Graphics::NodeWalk;

namespace {

constexpr float c_grey = 0.5F;

float channel(float value) { return std::isnan(value) ? c_grey : std::clamp(value, 0.0F, 1.0F); }

bool isFinite(TgMatrix3d const & matrix) {
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            if (!std::isfinite(matrix.entry(row, column))) return false;
    return true;
}

// Positions that bounds leave out, since they aren't finite.
bool hasOddPositions(SimpleMesh const & mesh) {
    for (std::size_t i = 0; i < mesh.triangles(); ++i)
        for (std::uint32_t const vertex : mesh.triangle(i))
            for (float const number : mesh.vertexBuffer()->position(vertex))
                if (!std::isfinite(number)) return true;
    return false;
}

void grow(std::optional<BoundingBox> & bounds, BoundingBox const & box) {
    if (bounds)
        bounds->add(box);
    else
        bounds = box;
}

} // namespace

Color shownColor(std::optional<Vrx::Graphics::EffectParams> const & effect) {
    if (!effect) return {c_grey, c_grey, c_grey, 1};
    Color const & color = effect->color;
    float const opacity = std::isnan(color.opacity) ? 1.0F : channel(color.opacity);
    return {channel(color.red), channel(color.green), channel(color.blue), opacity};
}

bool isShown(ARenderNode const & node) {
    auto const * const group = node.asGroup();
    return node.visible() && !(group && group->world() == Vrx::Scene::WorldScreen);
}

SimpleMesh * shownMesh(ARenderNode const & node) {
    LODGeometryNode const * const geometry = node.asGeometry();
    for (unsigned level = 0; geometry && level < LODGeometryNode::c_levels; ++level)
        if (SimpleMesh * const mesh = geometry->mesh(level))
            return mesh->vertexBuffer() && mesh->triangles() > 0 ? mesh : nullptr;
    return nullptr;
}

bool isBackground(NodeWalk const & walk) {
    return walk.depth() == 1 && walk.node()->asGeometry() && !Scene::INodeSource::of(walk.node());
}

ShownParts::ShownParts(Vrx::Graphics::GroupNode const * top) {
    // Of each mesh, however often it is shown; none if it can't be.
    std::unordered_map<SimpleMesh const *, std::optional<BoundingBox>> boxes;
    for (NodeWalk walk(top); walk;) {
        ARenderNode const & node = *walk.node();
        if (!isShown(node)) {
            walk.skip();
            continue;
        }
        if (SimpleMesh * const mesh = shownMesh(node)) {
            auto const [known, isNew] = boxes.try_emplace(mesh);
            if (isNew && !hasOddPositions(*mesh)) known->second = mesh->bounds();
            std::optional<BoundingBox> const & own = known->second;
            std::optional<BoundingBox> box;
            if (own && isFinite(walk.transform())) box = own->transformed(walk.transform());
            if (!box || !box->isValid()) {
                ++m_leftOut;
            } else {
                bool const isBehind = isBackground(walk);
                (isBehind ? m_background : m_model)
                    .push_back(
                        {StrongRef<SimpleMesh>(mesh), walk.transform(), shownColor(walk.effect())});
                grow(isBehind ? m_backgroundBounds : m_bounds, *box);
            }
        }
        walk.next();
    }
}

} // namespace Vn::Picture
