// The ceilings of the add-in manager.

#ifndef VN_PLATFORM_ADDINMGR_LIMITS_H
#define VN_PLATFORM_ADDINMGR_LIMITS_H

#include <cstddef>

namespace Vn::Limits {

// The files of configurations, and the entries of each folder that is looked through for them.
// With more of them none is read: StatusUnsupported.
inline constexpr std::size_t c_configurations = 1000;

} // namespace Vn::Limits

#endif
