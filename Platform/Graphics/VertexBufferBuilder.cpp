#include "Platform/Graphics/VertexBufferBuilder.h"

#include <algorithm>
#include <utility>

namespace Vrx::Devices {

VertexBufferBuilder::VertexBufferBuilder(int vertices, VertexFormat const & format)
    : m_format(format),
      m_numbers(static_cast<std::size_t>(std::max(vertices, 0)) * format.numbers()) {}

bool VertexBufferBuilder::set(std::size_t offset, std::initializer_list<float> numbers) noexcept {
    if (m_begun == 0) return false;
    std::copy(numbers.begin(), numbers.end(),
              m_numbers.data() + (m_begun - 1) * m_format.numbers() + offset);
    return true;
}

bool VertexBufferBuilder::AddPosition(float x, float y, float z) noexcept {
    if (m_begun * m_format.numbers() == m_numbers.size()) return false;
    ++m_begun;
    return set(0, {x, y, z});
}

bool VertexBufferBuilder::Normal(float x, float y, float z) noexcept {
    return m_format.hasNormal() && set(VertexFormat::normalOffset(), {x, y, z});
}

bool VertexBufferBuilder::TexCoord2D(int set, float u, float v) noexcept {
    return set >= 0 && set < m_format.textureSets() &&
           this->set(m_format.textureOffset(set), {u, v});
}

Vn::StrongRef<VertexBuffer> VertexBufferBuilder::ToVertexBuffer(Device *, int usage, int access,
                                                                int state) {
    Vn::StrongRef<VertexBuffer> buffer(
        new VertexBuffer(m_format, std::exchange(m_numbers, {}), usage, access, state));
    m_begun = 0;
    return buffer;
}

} // namespace Vrx::Devices
