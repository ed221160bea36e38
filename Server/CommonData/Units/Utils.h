// Comparisons of doubles that the whole engine shares.  The tolerances are absolute, for large
// values too.

#ifndef VN_SERVER_COMMONDATA_UNITS_UTILS_H
#define VN_SERVER_COMMONDATA_UNITS_UTILS_H

#include <cmath>

namespace Vn::Units::Utils {

// Nearer to zero than 1e-08: what a divisor must not be, and when a part of a number is none.
inline bool essentiallyZero(double x) { return std::fabs(x) < 1e-08; }

// Nearer to zero than 1e-10: what the general number format takes for zero.
inline bool preciselyZero(double x) { return std::fabs(x) < 1e-10; }

// Less than 1e-08 apart.
inline bool essentiallyEqual(double a, double b) { return std::fabs(a - b) < 1e-08; }

// Neither infinite nor a NaN.
inline bool isFiniteNumber(double x) { return std::isfinite(x); }

} // namespace Vn::Units::Utils

#endif
