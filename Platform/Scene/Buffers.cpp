#include "Platform/Scene/Buffers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Vn::Scene {

Vrx::Devices::VertexFormat makeVertexFormat(bool normal, int textureSets) noexcept {
    return {normal, textureSets};
}

StrongRef<Vrx::Devices::IndexBuffer> BuildIndexBuffer(int const * indices, int count, bool narrow) {
    if (count < 0 || (!indices && count > 0)) return nullptr;
    if (std::any_of(indices, indices + count, [](int index) { return index < 0; })) return nullptr;
    // The unsigned type of the same size may stand for the signed one.
    static_assert(sizeof(int) == sizeof(std::uint32_t));
    std::span<std::uint32_t const> const positive(reinterpret_cast<std::uint32_t const *>(indices),
                                                  static_cast<std::size_t>(count));
    return StrongRef<Vrx::Devices::IndexBuffer>(new Vrx::Devices::IndexBuffer(positive, narrow));
}

} // namespace Vn::Scene
