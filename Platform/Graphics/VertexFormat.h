#ifndef VN_PLATFORM_GRAPHICS_VERTEXFORMAT_H
#define VN_PLATFORM_GRAPHICS_VERTEXFORMAT_H

#include <cstddef>

namespace Vrx::Devices {

// What a vertex consists of: a position of three numbers, a normal of three if there is one, and
// sets of two texture coordinates, in this order.
class VertexFormat {
public:
    // The most sets of texture coordinates.
    static constexpr int c_maxTextureSets = 8;

    // A position alone, or what is given; a number of sets below 0 counts as 0, one above the most
    // as the most.
    constexpr VertexFormat() noexcept = default;
    constexpr VertexFormat(bool normal, int textureSets) noexcept
        : m_bNormal(normal), m_textureSets(textureSets < 0                  ? 0
                                           : textureSets > c_maxTextureSets ? c_maxTextureSets
                                                                            : textureSets) {}

    // What the constructor was given.
    constexpr bool hasNormal() const noexcept { return m_bNormal; }
    constexpr int textureSets() const noexcept { return m_textureSets; }

    // How many numbers a vertex has, and where among them the normal and a set of texture
    // coordinates begin; both need to be there.
    constexpr std::size_t numbers() const noexcept { return textureOffset(m_textureSets); }
    static constexpr std::size_t normalOffset() noexcept { return 3; }
    constexpr std::size_t textureOffset(int set) const noexcept {
        return (m_bNormal ? 6U : 3U) + 2 * static_cast<std::size_t>(set);
    }

    bool operator==(VertexFormat const &) const noexcept = default;

private:
    bool m_bNormal = false;
    int m_textureSets = 0;
};

} // namespace Vrx::Devices

#endif
