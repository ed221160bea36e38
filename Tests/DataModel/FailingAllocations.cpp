#include "Tests/DataModel/FailingAllocations.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

// Not initialised at run time: allocations come before that.
constinit unsigned long s_untilFailure = 0; // 0 is never
constinit bool s_bForGood = false;
constinit bool s_bFailed = false;
constinit long s_living = 0;

bool fails() noexcept {
    if (s_untilFailure == 0 || --s_untilFailure > 0) return false;
    if (s_bForGood) s_untilFailure = 1;
    s_bFailed = true;
    return true;
}

} // namespace

namespace Vn::Testing {

void FailingAllocations::failAt(unsigned long n, bool forGood) noexcept {
    s_bForGood = forGood;
    s_bFailed = false;
    s_untilFailure = n;
}

void FailingAllocations::heal() noexcept { s_untilFailure = 0; }
bool FailingAllocations::hasFailed() noexcept { return s_bFailed; }
long FailingAllocations::living() noexcept { return s_living; }

} // namespace Vn::Testing

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// The C library lets a program bring functions of its own, which `new` uses too.
extern "C" {

void * __libc_malloc(std::size_t size);
void * __libc_calloc(std::size_t count, std::size_t size);
void * __libc_realloc(void * block, std::size_t size);
void * __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void * block);

static void * counted(void * block) noexcept {
    if (block) ++s_living;
    return block;
}

static void * refused() noexcept {
    errno = ENOMEM;
    return nullptr;
}

[[gnu::visibility("default")]] void * malloc(std::size_t size) noexcept {
    return fails() ? refused() : counted(__libc_malloc(size));
}

[[gnu::visibility("default")]] void * calloc(std::size_t count, std::size_t size) noexcept {
    return fails() ? refused() : counted(__libc_calloc(count, size));
}

[[gnu::visibility("default")]] void * realloc(void * block, std::size_t size) noexcept {
    if (!block) return malloc(size);
    return fails() ? refused() : __libc_realloc(block, size);
}

[[gnu::visibility("default")]] void * memalign(std::size_t alignment, std::size_t size) noexcept {
    return fails() ? refused() : counted(__libc_memalign(alignment, size));
}

[[gnu::visibility("default")]] void * aligned_alloc(std::size_t alignment,
                                                    std::size_t size) noexcept {
    return memalign(alignment, size);
}

[[gnu::visibility("default")]] int posix_memalign(void ** block, std::size_t alignment,
                                                  std::size_t size) noexcept {
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

[[gnu::visibility("default")]] void free(void * block) noexcept {
    if (block) --s_living;
    __libc_free(block);
}
}

#else

void * operator new(std::size_t size) {
    void * const block = fails() ? nullptr : std::malloc(size ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}

void * operator new(std::size_t size, std::nothrow_t const &) noexcept {
    return fails() ? nullptr : std::malloc(size ? size : 1);
}

void operator delete(void * block) noexcept { std::free(block); }
void operator delete(void * block, std::size_t) noexcept { std::free(block); }

#endif
