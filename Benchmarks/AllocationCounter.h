// Counts what the process takes from the heap.

#ifndef VN_BENCHMARKS_ALLOCATIONCOUNTER_H
#define VN_BENCHMARKS_ALLOCATIONCOUNTER_H

#include <cstddef>

namespace Vn::Benchmarks {

struct Allocations {
    std::size_t count;
    std::size_t bytes;
};

// What this thread has taken so far; zeroes where the C library can't be watched.
Allocations allocations();

} // namespace Vn::Benchmarks

#endif
