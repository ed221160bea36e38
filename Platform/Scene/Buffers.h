// Short ways to what a mesh is made of.

#ifndef VN_PLATFORM_SCENE_BUFFERS_H
#define VN_PLATFORM_SCENE_BUFFERS_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/IndexBuffer.h"
#include "Platform/Graphics/VertexFormat.h"
#include "Platform/Scene/Export.h"

namespace Vn::Scene {

// A format with a position, with or without a normal, and so many sets of texture coordinates; as
// the constructor of Vrx::Devices::VertexFormat.
VN_SCENE_API Vrx::Devices::VertexFormat makeVertexFormat(bool normal, int textureSets) noexcept;

// A copy of `count` indices; with `narrow` in two bytes each where all of them fit.  Null for a
// null pointer, unless the count is 0, for a negative count, and if an index is negative.
VN_SCENE_API StrongRef<Vrx::Devices::IndexBuffer> BuildIndexBuffer(int const * indices, int count,
                                                                   bool narrow);

} // namespace Vn::Scene

#endif
