#include "Benchmarks/AllocationCounter.h"

#include <cstdlib>

namespace {

thread_local Vn::Benchmarks::Allocations s_allocations{};

} // namespace

Vn::Benchmarks::Allocations Vn::Benchmarks::allocations() { return s_allocations; }

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// The C library looks up these names in the program first and offers its own under others.
extern "C" {

void * __libc_malloc(std::size_t size);

void * malloc(std::size_t size) noexcept {
    ++s_allocations.count;
    s_allocations.bytes += size;
    return __libc_malloc(size);
}
}

#endif
