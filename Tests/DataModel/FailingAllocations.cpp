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

bool Vn::Testing::FailingAllocations::includeMalloc() noexcept { return true; }

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

#elif defined(_WIN32)

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cstring>
#include <initializer_list>

bool Vn::Testing::FailingAllocations::includeMalloc() noexcept { return true; }

// A program's functions aren't those of its libraries: each module calls through a table of what it
// imports.  In those of our modules, and in that of the standard library, whose `new` calls malloc,
// the allocating functions are replaced.
namespace {

template <class Function>
Function * original(char const * name) {
    return reinterpret_cast<Function *>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("msvcrt.dll"), name)));
}

void * counted(void * block) noexcept {
    if (block) ++s_living;
    return block;
}

void * refused() noexcept {
    errno = ENOMEM;
    return nullptr;
}

void * failingMalloc(std::size_t size) {
    static auto * const s_malloc = original<void *(std::size_t)>("malloc");
    return fails() ? refused() : counted(s_malloc(size));
}

void * failingCalloc(std::size_t count, std::size_t size) {
    static auto * const s_calloc = original<void *(std::size_t, std::size_t)>("calloc");
    return fails() ? refused() : counted(s_calloc(count, size));
}

void * failingRealloc(void * block, std::size_t size) {
    static auto * const s_realloc = original<void *(void *, std::size_t)>("realloc");
    if (!block) return failingMalloc(size);
    return fails() ? refused() : s_realloc(block, size);
}

void countingFree(void * block) {
    static auto * const s_free = original<void(void *)>("free");
    if (block) --s_living;
    s_free(block);
}

struct Replacement {
    char const * name;
    void * function;
};

Replacement const c_replacements[] = {
    {"malloc", reinterpret_cast<void *>(&failingMalloc)},
    {"calloc", reinterpret_cast<void *>(&failingCalloc)},
    {"realloc", reinterpret_cast<void *>(&failingRealloc)},
    {"free", reinterpret_cast<void *>(&countingFree)},
};

void replaceIn(HMODULE module) {
    auto * const base = reinterpret_cast<char *>(module);
    auto const & head = *reinterpret_cast<IMAGE_DOS_HEADER const *>(base);
    auto const & headers = *reinterpret_cast<IMAGE_NT_HEADERS const *>(base + head.e_lfanew);
    DWORD const imports =
        headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    auto const * library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR const *>(base + imports);
    for (; library->Name; ++library) {
        if (_stricmp(base + library->Name, "msvcrt.dll") != 0) continue;
        auto const * name =
            reinterpret_cast<IMAGE_THUNK_DATA const *>(base + library->OriginalFirstThunk);
        auto * address = reinterpret_cast<IMAGE_THUNK_DATA *>(base + library->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            auto const * const imported =
                reinterpret_cast<IMAGE_IMPORT_BY_NAME const *>(base + name->u1.AddressOfData);
            for (Replacement const & replacement : c_replacements) {
                if (std::strcmp(reinterpret_cast<char const *>(imported->Name), replacement.name) !=
                    0)
                    continue;
                DWORD before = 0;
                VirtualProtect(address, sizeof *address, PAGE_READWRITE, &before);
                address->u1.Function = reinterpret_cast<ULONGLONG>(replacement.function);
                VirtualProtect(address, sizeof *address, before, &before);
            }
        }
    }
}

bool const s_bReplaced = [] {
    replaceIn(GetModuleHandleA(nullptr));
    for (char const * const name :
         {"libstdc++-6.dll", "VnBase10.dll", "tg218A.dll", "VnTypes10.dll", "VnDataModel10.dll",
          "Vrx.dll", "VnScene10.dll", "VnSqlite3.dll", "VnCommonData10.dll"})
        if (HMODULE const module = GetModuleHandleA(name)) replaceIn(module);
    return true;
}();

} // namespace

#else

bool Vn::Testing::FailingAllocations::includeMalloc() noexcept { return false; }

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
// For a constructor that throws.
void operator delete(void * block, std::nothrow_t const &) noexcept { std::free(block); }

#endif
