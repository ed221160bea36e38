// What of a render graph is to be seen.

#ifndef VN_PLATFORM_PICTURE_SHOWNPARTS_H
#define VN_PLATFORM_PICTURE_SHOWNPARTS_H

#include <cstddef>
#include <optional>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Picture/Export.h"
#include "Platform/Types/Color.h"

namespace Vn::Picture {

// A mesh with its place and its color.
struct ShownPart {
    StrongRef<Vrx::Devices::SimpleMesh> mesh; // never null
    TgMatrix3d transform;                     // into the space of the document, in cm; finite
    Color color;                              // channels from 0 to 1; what was NaN is grey
};

// What is seen of a graph: geometry that is visible, with all groups above it, and has triangles
// with finite positions at the finest level of detail that it has.  What stands in a group of
// WorldScreen isn't part of the model, and is left out.
//
// The background is geometry that was made for no source and stands directly in the top group, as
// the default background of documents does.
class VN_PICTURE_API ShownParts {
public:
    // Nothing, for null.
    explicit ShownParts(Vrx::Graphics::GroupNode const * top);

    // In the order of the graph.
    std::vector<ShownPart> const & model() const noexcept { return m_model; }
    std::vector<ShownPart> const & background() const noexcept { return m_background; }
    // The box around the model, in cm; none if there is nothing.
    std::optional<Vrx::Devices::BoundingBox> const & bounds() const noexcept { return m_bounds; }
    // The same of the background.
    std::optional<Vrx::Devices::BoundingBox> const & backgroundBounds() const noexcept {
        return m_backgroundBounds;
    }
    // How many visible meshes can't be shown, since they or their places have a NaN or an infinity.
    std::size_t leftOut() const noexcept { return m_leftOut; }

private:
    std::vector<ShownPart> m_model;
    std::vector<ShownPart> m_background;
    std::optional<Vrx::Devices::BoundingBox> m_bounds;
    std::optional<Vrx::Devices::BoundingBox> m_backgroundBounds;
    std::size_t m_leftOut = 0;
};

} // namespace Vn::Picture

#endif
