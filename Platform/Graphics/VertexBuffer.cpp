#include "Platform/Graphics/VertexBuffer.h"

#include <algorithm>
#include <utility>

namespace Vrx::Devices {

VertexBuffer::VertexBuffer(VertexFormat const & format, std::vector<float> numbers, int usage,
                           int access, int state) noexcept
    : m_format(format), m_numbers(std::move(numbers)), m_usage(usage), m_access(access),
      m_state(state) {
    m_numbers.erase(m_numbers.end() -
                        static_cast<std::ptrdiff_t>(m_numbers.size() % m_format.numbers()),
                    m_numbers.end());
}

VertexBuffer::~VertexBuffer() = default;

namespace {

template <std::size_t Count>
std::array<float, Count> part(VertexBuffer const & buffer, std::size_t vertex, std::size_t offset) {
    std::array<float, Count> found{};
    if (vertex < buffer.vertices())
        std::copy_n(buffer.numbers().data() + vertex * buffer.format().numbers() + offset, Count,
                    found.data());
    return found;
}

} // namespace

std::array<float, 3> VertexBuffer::position(std::size_t vertex) const noexcept {
    return part<3>(*this, vertex, 0);
}

std::array<float, 3> VertexBuffer::normal(std::size_t vertex) const noexcept {
    if (!m_format.hasNormal()) return {};
    return part<3>(*this, vertex, VertexFormat::normalOffset());
}

std::array<float, 2> VertexBuffer::texCoord(std::size_t vertex, int set) const noexcept {
    if (set < 0 || set >= m_format.textureSets()) return {};
    return part<2>(*this, vertex, m_format.textureOffset(set));
}

} // namespace Vrx::Devices
