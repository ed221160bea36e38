// Every ceiling of the module, with its reason.

#ifndef VN_SERVER_COMMONDATA_LIMITS_H
#define VN_SERVER_COMMONDATA_LIMITS_H

#include <cstddef>

namespace Vn::Limits {

// Brackets, functions and signs inside one another.  A parse fails at the token that would go
// deeper.  The rules recurse once a level; this many levels fit on a stack of 1 MiB, also in a
// build with sanitizers.
inline constexpr unsigned int c_nestingLevels = 1000;

// Factors of one unit, numerator and denominator together.  A power is a repeated factor, so
// without a ceiling a short text ("2 cm^1000000000") would ask for gigabytes.
inline constexpr std::size_t c_unitFactors = 4096;

// Factors of all different units of one tree together.  The lists of a long product of units grow
// with each step; this bounds what a hostile text makes of that to 128 MiB.  A product of the most
// factors that one unit may have needs half of it.
inline constexpr std::size_t c_treeUnitFactors = std::size_t{16} * 1024 * 1024;

// Characters of one printed number.
inline constexpr std::size_t c_printedField = 511;

} // namespace Vn::Limits

#endif
