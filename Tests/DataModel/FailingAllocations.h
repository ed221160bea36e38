// Allocations that fail when a test wants them to.

#ifndef VN_TESTS_DATAMODEL_FAILINGALLOCATIONS_H
#define VN_TESTS_DATAMODEL_FAILINGALLOCATIONS_H

namespace Vn::Testing {

// All allocations of the program, by `new`, and by `malloc` and its kin where the C library can be
// stood in for.  For programs of one thread.
class FailingAllocations {
public:
    // The n-th allocation from now fails, counted from 1; with `forGood` all after it too.
    static void failAt(unsigned long n, bool forGood) noexcept;
    // Nothing fails any more.
    static void heal() noexcept;
    // Whether something failed since `failAt`.
    static bool hasFailed() noexcept;
    // Whether `malloc` and its kin fail too, and not `new` alone.
    static bool includeMalloc() noexcept;
    // How many blocks are allocated at present; always 0 where a sanitizer looks for leaks.
    static long living() noexcept;
};

} // namespace Vn::Testing

#endif
