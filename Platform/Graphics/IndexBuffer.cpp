#include "Platform/Graphics/IndexBuffer.h"

#include <algorithm>
#include <limits>

namespace Vrx::Devices {

IndexBuffer::IndexBuffer(std::span<std::uint32_t const> indices, bool narrow)
    : m_bNarrow(narrow && std::all_of(indices.begin(), indices.end(), [](std::uint32_t index) {
                    return index <= std::numeric_limits<std::uint16_t>::max();
                })) {
    if (!m_bNarrow) {
        m_wide.assign(indices.begin(), indices.end());
        return;
    }
    m_narrow.reserve(indices.size());
    for (std::uint32_t const index : indices) m_narrow.push_back(static_cast<std::uint16_t>(index));
}

IndexBuffer::~IndexBuffer() = default;

} // namespace Vrx::Devices
