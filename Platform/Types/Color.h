#ifndef VN_PLATFORM_TYPES_COLOR_H
#define VN_PLATFORM_TYPES_COLOR_H

namespace Vn {

// A colour, with channels from 0 to 1; what lies beyond is kept as it is.
struct Color {
    // Opaque black, or one with these channels.
    constexpr Color() noexcept = default;
    constexpr Color(float ofRed, float ofGreen, float ofBlue, float ofOpacity = 1) noexcept
        : red(ofRed), green(ofGreen), blue(ofBlue), opacity(ofOpacity) {}

    // Equal in all channels; a NaN equals nothing.
    bool operator==(Color const &) const noexcept = default;

    float red = 0;     // 1 is as much as there is, as of the next two
    float green = 0;   // from 0 to 1
    float blue = 0;    // from 0 to 1
    float opacity = 1; // 0 is transparent
};

} // namespace Vn

#endif
