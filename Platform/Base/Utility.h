// Numbers as texts, for options and commands.  No locale is asked.

#ifndef VN_PLATFORM_BASE_UTILITY_H
#define VN_PLATFORM_BASE_UTILITY_H

#include <cmath>
#include <string>
#include <string_view>

#include "Platform/Base/Export.h"

namespace Vn::Utility {

// Reads a number with a full stop or a comma as its decimal mark, a sign and an exponent.  False,
// with `value` as it was, for anything else: blanks, grouped digits ("1,234.5"), infinities, NaN,
// and a number that is out of the range of a double.
[[nodiscard]] VN_BASE_API bool localeTolerantLexicalCast(std::wstring_view text, double & value);

// Reads a whole number: decimal digits with or without a sign.  False, with `value` as it was, for
// anything else, and for a number that is out of range.
[[nodiscard]] VN_BASE_API bool wholeNumberLexicalCast(std::wstring_view text, int & value);

// The fewest decimal digits that read back to the number, with a full stop and without an exponent:
// "9999.9999", "0.00000001".
VN_BASE_API std::wstring decimalText(double value);

// Whether two numbers differ by less than 1e-08.
inline bool essentiallyEqual(double a, double b) noexcept { return std::fabs(a - b) < 1e-08; }

} // namespace Vn::Utility

#endif
