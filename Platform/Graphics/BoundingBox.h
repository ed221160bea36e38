#ifndef VN_PLATFORM_GRAPHICS_BOUNDINGBOX_H
#define VN_PLATFORM_GRAPHICS_BOUNDINGBOX_H

#include <algorithm>
#include <cmath>

#include "Platform/Geometry/Tg.h"

namespace Vrx::Devices {

// A box along the axes, given by its corners, in the units of the positions within.
struct BoundingBox {
    TgPoint3d low;  // the corner with the least numbers
    TgPoint3d high; // the corner with the greatest

    // The box that is one point.
    static constexpr BoundingBox of(TgPoint3d const & point) noexcept { return {point, point}; }

    // Whether all numbers are finite and no low one is above its high one.
    bool isValid() const noexcept {
        return isFinite(low) && isFinite(high) && low.x <= high.x && low.y <= high.y &&
               low.z <= high.z;
    }
    // Grows until the other box is within.
    void add(BoundingBox const & other) noexcept {
        low = {std::min(low.x, other.low.x), std::min(low.y, other.low.y),
               std::min(low.z, other.low.z)};
        high = {std::max(high.x, other.high.x), std::max(high.y, other.high.y),
                std::max(high.z, other.high.z)};
    }

    // How many corners there are, and each of them: bit 0 of its number stands for the greater x,
    // bit 1 for y and bit 2 for z.
    static constexpr unsigned c_corners = 8;
    TgPoint3d corner(unsigned number) const noexcept {
        return {number & 1 ? high.x : low.x, number & 2 ? high.y : low.y,
                number & 4 ? high.z : low.z};
    }

    // The smallest box with this one after a map: that of its corners.  Not valid if one of them
    // has a NaN or an infinity.
    BoundingBox transformed(TgMatrix3d const & map) const noexcept {
        BoundingBox box = of(map * low);
        for (unsigned number = 1; number < c_corners; ++number) {
            TgPoint3d const point = map * corner(number);
            if (!isFinite(point)) return of(point);
            box.add(of(point));
        }
        return box;
    }

    // Whether a point has neither a NaN nor an infinity.
    static bool isFinite(TgPoint3d const & point) noexcept {
        return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
    }
};

} // namespace Vrx::Devices

#endif
