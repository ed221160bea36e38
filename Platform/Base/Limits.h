// The ceilings of the platform's base: constants with their units, and what happens beyond them.

#ifndef VN_PLATFORM_BASE_LIMITS_H
#define VN_PLATFORM_BASE_LIMITS_H

#include <chrono>
#include <cstddef>

namespace Vn::Limits {

// The bytes of an option file.  A longer one is neither read nor written: StatusUnsupported.
inline constexpr std::size_t c_optionFile = std::size_t{16} << 20;

// How long a save waits for others that save the same file; then it fails with StatusBusy.
inline constexpr std::chrono::seconds c_optionLock{5};

// The copies of damaged option files that are kept beside one; the next save fails.
inline constexpr unsigned c_damagedCopies = 1000;

// The bytes of a document that is validated, and of its schema.  A longer one isn't read:
// StatusUnsupported.  What the XML library does with attributes takes the square of their number,
// and stays below a second up to here.
inline constexpr std::size_t c_validatedFile = std::size_t{64} << 10;

} // namespace Vn::Limits

#endif
