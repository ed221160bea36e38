#ifndef VN_PLATFORM_GRAPHICS_INDEXBUFFER_H
#define VN_PLATFORM_GRAPHICS_INDEXBUFFER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Graphics/Export.h"

namespace Vrx::Devices {

// The numbers of vertices, in the order in which primitives are made of them.  It doesn't change
// once it is made, so any thread may read it.
class VRX_API IndexBuffer final : public Vn::RefCounted {
public:
    // From the indices.  With `narrow` they are kept in two bytes each if all of them fit there;
    // otherwise in four.
    IndexBuffer(std::span<std::uint32_t const> indices, bool narrow);
    ~IndexBuffer() override;

    // How many there are, and each of them; 0 for a bad place.
    std::size_t indices() const noexcept { return m_narrow.size() + m_wide.size(); }
    std::uint32_t index(std::size_t place) const noexcept {
        if (place >= indices()) return 0;
        return m_bNarrow ? m_narrow[place] : m_wide[place];
    }
    // How many bytes an index takes: 2 or 4.
    std::size_t bytesPerIndex() const noexcept { return m_bNarrow ? 2 : 4; }

private:
    bool const m_bNarrow;
    std::vector<std::uint16_t> m_narrow; // only one of these has elements
    std::vector<std::uint32_t> m_wide;
};

} // namespace Vrx::Devices

#endif
