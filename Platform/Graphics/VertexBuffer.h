#ifndef VN_PLATFORM_GRAPHICS_VERTEXBUFFER_H
#define VN_PLATFORM_GRAPHICS_VERTEXBUFFER_H

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/Buffer.h"
#include "Platform/Graphics/Export.h"
#include "Platform/Graphics/VertexFormat.h"

namespace Vrx::Devices {

// Vertices of one format.  It doesn't change once it is made, so any thread may read it.
class VRX_API VertexBuffer final : public Vn::RefCounted {
public:
    // From the numbers of the vertices, one vertex after the other; numbers that make no whole
    // vertex at the end are dropped.  Usage, access and state are those of EUsage, EAccess and
    // EBufferState.
    VertexBuffer(VertexFormat const & format, std::vector<float> numbers, int usage, int access,
                 int state) noexcept;
    ~VertexBuffer() override;

    // What the constructor was given.
    VertexFormat const & format() const noexcept { return m_format; }
    std::span<float const> numbers() const noexcept { return m_numbers; }
    int usage() const noexcept { return m_usage; }
    int access() const noexcept { return m_access; }
    int state() const noexcept { return m_state; }

    // How many vertices there are.
    std::size_t vertices() const noexcept { return m_numbers.size() / m_format.numbers(); }
    // Parts of a vertex; zeros for what it doesn't have, and for a vertex that there isn't.
    std::array<float, 3> position(std::size_t vertex) const noexcept;
    std::array<float, 3> normal(std::size_t vertex) const noexcept;
    std::array<float, 2> texCoord(std::size_t vertex, int set) const noexcept;

private:
    VertexFormat const m_format;
    std::vector<float> m_numbers;
    int const m_usage;
    int const m_access;
    int const m_state;
};

} // namespace Vrx::Devices

#endif
