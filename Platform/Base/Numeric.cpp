#include "Platform/Base/Numeric.h"

#include <cfloat>
#include <cmath>

// There may be functions of 128 bits, which have one more place than twice as many as a double:
// what they give, rounded, is the nearest double in all cases that can be met.  They are slow.
// Where those of long double are exact but for their last places, they decide most cases.
#if defined(__x86_64__) && defined(__MINGW32__)
#include <quadmath.h>
#define VN_WIDE(name) name##q
#elif defined(__x86_64__) && defined(__GLIBC__)
#define VN_WIDE(name) name##f128
#define VN_EXTENDED
#ifdef __clang__ // for which the C library has them, but doesn't declare them
extern "C" {
__float128 sinf128(__float128) noexcept;
__float128 cosf128(__float128) noexcept;
__float128 tanf128(__float128) noexcept;
__float128 asinf128(__float128) noexcept;
__float128 acosf128(__float128) noexcept;
__float128 atanf128(__float128) noexcept;
__float128 sinhf128(__float128) noexcept;
__float128 coshf128(__float128) noexcept;
__float128 tanhf128(__float128) noexcept;
__float128 expf128(__float128) noexcept;
__float128 logf128(__float128) noexcept;
__float128 log10f128(__float128) noexcept;
__float128 powf128(__float128, __float128) noexcept;
}
#endif
#endif

namespace Vn::Numeric {

namespace {

// Whether all that lies within a relative `error` of `value` is nearest to the same double, and
// which that is.
bool isSure(long double value, long double error, double & nearest) {
    nearest = static_cast<double>(value);
    if (!std::isfinite(value)) return true;
    return static_cast<double>(value - value * error) == nearest &&
           static_cast<double>(value + value * error) == nearest;
}

// The nearest double to the value of a function, which the operations of `Function` give in
// different types.
template <class Function, class... Arguments>
double nearest(Arguments... arguments) {
#ifdef VN_EXTENDED
    constexpr long double c_error = 0x1p-60L; // eight of the last places, or sixteen
    double result;
    if (isSure(Function::common(static_cast<long double>(arguments)...), c_error, result))
        return result;
#endif
#ifdef VN_WIDE
    return static_cast<double>(Function::wide(arguments...));
#else
    return static_cast<double>(Function::common(static_cast<long double>(arguments)...));
#endif
}

#ifdef VN_WIDE
#define VN_WIDE_FUNCTION(name, parameters, arguments)                                              \
    static __float128 wide parameters { return VN_WIDE(name) arguments; }
#else
#define VN_WIDE_FUNCTION(name, parameters, arguments)
#endif

struct Pow {
    static long double common(long double base, long double exponent) {
        return std::pow(base, exponent);
    }
    VN_WIDE_FUNCTION(pow, (__float128 base, __float128 exponent), (base, exponent))
};

} // namespace

#define VN_FUNCTION(name)                                                                          \
    double name(double x) noexcept {                                                               \
        struct Function {                                                                          \
            static long double common(long double value) { return std::name(value); }              \
            VN_WIDE_FUNCTION(name, (__float128 value), (value))                                    \
        };                                                                                         \
        return nearest<Function>(x);                                                               \
    }
VN_FUNCTION(sin)
VN_FUNCTION(cos)
VN_FUNCTION(tan)
VN_FUNCTION(asin)
VN_FUNCTION(acos)
VN_FUNCTION(atan)
VN_FUNCTION(sinh)
VN_FUNCTION(cosh)
VN_FUNCTION(tanh)
VN_FUNCTION(exp)
VN_FUNCTION(log)
VN_FUNCTION(log10)
#undef VN_FUNCTION

double power(double base, double exponent) noexcept {
    // Most exponents are small and whole.  Each product is in error by half of the last place.
    constexpr double c_mostFactors = 64.0;
    double const factors = std::fabs(exponent);
    if (factors <= c_mostFactors && std::trunc(factors) == factors && std::isfinite(base)) {
        long double square = base;
        long double result = 1.0L;
        for (auto rest = static_cast<unsigned>(factors); rest > 0; rest /= 2) {
            if (rest % 2 == 1) result *= square;
            square *= square;
        }
        if (exponent < 0.0) result = 1.0L / result;
        double sure;
        if (LDBL_MANT_DIG > DBL_MANT_DIG && isSure(result, (factors + 2.0) * LDBL_EPSILON, sure))
            return sure;
    }
    return nearest<Pow>(base, exponent);
}

} // namespace Vn::Numeric
