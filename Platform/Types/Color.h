#ifndef VN_PLATFORM_TYPES_COLOR_H
#define VN_PLATFORM_TYPES_COLOR_H

#include <cstdint>

namespace Vn {

// A colour of 8 bits a channel; opaque black if nothing is said.
struct Color {
    std::uint8_t red = 0;     // from 0 to 255, as all channels
    std::uint8_t green = 0;   // from 0 to 255
    std::uint8_t blue = 0;    // from 0 to 255
    std::uint8_t alpha = 255; // 0 is transparent, 255 opaque

    // Equal in all channels.
    bool operator==(Color const &) const noexcept = default;
};

} // namespace Vn

#endif
