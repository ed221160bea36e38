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

// The functions of <cmath> by those names, but the result is the double nearest to the value of the
// function.  So all systems have the same results, which <cmath> doesn't promise.  Where the C
// library has no functions of 128 bits, the results are those of long double.  What has no value is
// NaN, and what is too large infinite.
VN_BASE_API double sin(double x) noexcept;
VN_BASE_API double cos(double x) noexcept;
VN_BASE_API double tan(double x) noexcept;
VN_BASE_API double asin(double x) noexcept;
VN_BASE_API double acos(double x) noexcept;
VN_BASE_API double atan(double x) noexcept;
VN_BASE_API double sinh(double x) noexcept;
VN_BASE_API double cosh(double x) noexcept;
VN_BASE_API double tanh(double x) noexcept;
VN_BASE_API double exp(double x) noexcept;
VN_BASE_API double log(double x) noexcept;
VN_BASE_API double log10(double x) noexcept;
// std::pow.
VN_BASE_API double power(double base, double exponent) noexcept;

} // namespace Vn::Numeric

#endif
