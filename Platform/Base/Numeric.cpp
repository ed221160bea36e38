#include "Platform/Base/Numeric.h"

#include <cmath>

namespace Vn::Numeric {

#ifdef __MINGW32__

// For a whole exponent the C library of mingw-w64 multiplies doubles, and the error grows with
// every product: 10 to the -308 is wrong from the fourteenth digit on.  The same in a wider type,
// rounded once, is right.
double power(double base, double exponent) noexcept {
    bool const whole = std::trunc(exponent) == exponent;
    if (!whole || base == 0.0 || !std::isfinite(base) || !std::isfinite(exponent))
        return std::pow(base, exponent);

    // With more products than for this the wider type is no longer wide enough.
    constexpr double c_mostProducts = 1024.0;
    double const times = std::fabs(exponent);
    long double square = std::fabs(base);
    long double result = 1.0L;
    if (times <= c_mostProducts) {
        for (auto rest = static_cast<unsigned>(times); rest > 0; rest /= 2) {
            if (rest % 2 == 1) result *= square;
            square *= square;
        }
    } else {
        result = std::exp2(static_cast<long double>(times) * std::log2(square));
    }
    if (exponent < 0.0) result = 1.0L / result;
    bool const negative = base < 0.0 && std::fmod(times, 2.0) == 1.0;
    return static_cast<double>(negative ? -result : result);
}

#else

double power(double base, double exponent) noexcept { return std::pow(base, exponent); }

#endif

} // namespace Vn::Numeric
