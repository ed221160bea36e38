#ifndef VN_PLATFORM_GRAPHICS_VERTEXBUFFERBUILDER_H
#define VN_PLATFORM_GRAPHICS_VERTEXBUFFERBUILDER_H

#include <cstddef>
#include <initializer_list>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/Export.h"
#include "Platform/Graphics/VertexBuffer.h"

namespace Vrx::Devices {

// Puts vertices together, one after the other:
//
//     VertexBufferBuilder builder(1, VertexFormat(true, 1));
//     builder.AddPosition(1, 2, 0);
//     builder.Normal(0, 0, 1);
//     builder.TexCoord2D(0, 0.5F, 0.5F);
//     StrongRef<VertexBuffer> const buffer = builder.ToVertexBuffer(
//         nullptr, UsageStatic, AccessReadWrite, StateComplete);
class VRX_API VertexBufferBuilder {
public:
    // For so many vertices of a format, all numbers of which are 0; a number below 0 counts as 0.
    // Throws std::bad_alloc or std::length_error if there is no memory for them.
    VertexBufferBuilder(int vertices, VertexFormat const & format);

    // Goes on to the next vertex and sets its position.  False, and nothing happens, once there is
    // none left.
    bool AddPosition(float x, float y, float z) noexcept;
    // Set the normal and a set of texture coordinates of the vertex that AddPosition went on to.
    // False, and nothing happens, if it never did or the format has no such thing.
    bool Normal(float x, float y, float z) noexcept;
    bool TexCoord2D(int set, float u, float v) noexcept;

    // The buffer, with as many vertices as the constructor was given.  The builder is then left
    // without vertices.  `device` may be null; see Buffer.h for it and the numbers.
    Vn::StrongRef<VertexBuffer> ToVertexBuffer(Device * device, int usage, int access, int state);

private:
    bool set(std::size_t offset, std::initializer_list<float> numbers) noexcept;

    VertexFormat const m_format;
    std::vector<float> m_numbers;
    std::size_t m_begun = 0; // vertices
};

} // namespace Vrx::Devices

#endif
