// A benchmark with this keeps memory once it has taken it: what the system does for each new page
// would else hide the rest, and only where there is much.

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

[[maybe_unused]] bool const s_bKeepsMemory = [] {
#ifdef __GLIBC__
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
#endif
    return true;
}();

} // namespace
