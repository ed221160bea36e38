#ifndef VN_PLATFORM_BASE_NUMERIC_H
#define VN_PLATFORM_BASE_NUMERIC_H

#include <concepts>
#include <limits>

#include "Platform/Base/Export.h"

namespace Vn::Numeric {

// The integer nearest to zero from `value`: fractions are cut off.  What lies beyond an end of the
// type gives that end, and NaN gives 0.
template <class Integer>
requires(std::integral<Integer> && !std::same_as<Integer, bool>) constexpr Integer
    saturate(double value) noexcept {
    constexpr Integer c_lowest = std::numeric_limits<Integer>::min();
    constexpr Integer c_highest = std::numeric_limits<Integer>::max();
    if (value != value) return 0;
    // The highest 64-bit integers aren't doubles: c_highest rounds up there, to the first double
    // that doesn't fit, so that "not below" is right for every width.
    if (value >= static_cast<double>(c_highest)) return c_highest;
    if (value <= static_cast<double>(c_lowest)) return c_lowest;
    return static_cast<Integer>(value);
}

// `base` to the power of `exponent` as std::pow defines it, with an error in the last place at
// most.
VN_BASE_API double power(double base, double exponent) noexcept;

} // namespace Vn::Numeric

#endif
