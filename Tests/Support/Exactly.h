// Points and vectors as their components, since their own comparison is tolerant.

#ifndef VN_TESTS_SUPPORT_EXACTLY_H
#define VN_TESTS_SUPPORT_EXACTLY_H

#include <array>
#include <bit>
#include <cstdint>

#include "Platform/Geometry/Tg.h"

// Equal if all bits are: NaN equals itself, and -0 isn't 0.
struct ExactPlace {
    std::array<double, 3> components;

    bool operator==(ExactPlace const & other) const {
        for (std::size_t i = 0; i < components.size(); ++i)
            if (std::bit_cast<std::uint64_t>(components[i]) !=
                std::bit_cast<std::uint64_t>(other.components[i]))
                return false;
        return true;
    }
};

inline ExactPlace exactly(TgPoint3d const & point) { return {{point.x, point.y, point.z}}; }
inline ExactPlace exactly(TgVector3d const & vector) { return {{vector.x, vector.y, vector.z}}; }

#endif
