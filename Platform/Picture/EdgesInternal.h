#ifndef VN_PLATFORM_PICTURE_EDGESINTERNAL_H
#define VN_PLATFORM_PICTURE_EDGESINTERNAL_H

#include <cstdint>
#include <vector>

#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Picture/Export.h"

namespace Vn::Picture {

// The edges of a mesh that are drawn as lines, two vertices each: those of one triangle alone, and
// those where two triangles meet at more than 30 degrees.  Vertices with the same position count as
// one, so that meshes with a normal for each face have their edges once.
VN_PICTURE_API std::vector<std::uint32_t> edgesOf(Vrx::Devices::SimpleMesh const & mesh);

} // namespace Vn::Picture

#endif
