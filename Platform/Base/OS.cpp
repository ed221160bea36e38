#include "Platform/Base/OS.h"

#include <cerrno>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <system_error>
#include <utility>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Vn::OS {

namespace {

std::string pathText(std::filesystem::path const & path) {
    std::u8string const text = path.u8string();
    return std::string(text.begin(), text.end());
}

// The reason why the last call of the loader failed.
std::string loaderError() {
#ifdef _WIN32
    return std::system_category().message(static_cast<int>(GetLastError()));
#else
    char const * const text = dlerror();
    return text ? text : "";
#endif
}

} // namespace

void yield() noexcept {
#ifdef _WIN32
    SwitchToThread();
#else
    sched_yield();
#endif
}

void * allocatePages(std::size_t size) noexcept {
#ifdef _WIN32
    return VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
#else
    void * const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
#endif
}

void releasePages(void * memory, [[maybe_unused]] std::size_t size) noexcept {
#ifdef _WIN32
    VirtualFree(memory, 0, MEM_RELEASE);
#else
    munmap(memory, size);
#endif
}

void offerPages(void * memory, std::size_t size) noexcept {
#ifdef _WIN32
    VirtualAlloc(memory, size, MEM_RESET, PAGE_READWRITE);
#elif defined(MADV_FREE)
    madvise(memory, size, MADV_FREE);
#else
    madvise(memory, size, MADV_DONTNEED);
#endif
}

void pause() noexcept {
#if defined(__i386__) || defined(__x86_64__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#else
    asm volatile("");
#endif
}

std::wstring_view platformModuleExtension() noexcept {
#ifdef _WIN32
    return L".dll";
#else
    return L".so";
#endif
}

std::filesystem::path executableDirectory() {
#ifdef _WIN32
    // The system cuts off a path that doesn't fit, and then fills the buffer.
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        DWORD const length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            return std::filesystem::path(path).parent_path();
        }
        path.resize(path.size() * 2);
    }
#else
    std::error_code error;
    std::filesystem::path const path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : path.parent_path();
#endif
}

std::string className(std::type_info const & type) {
    return className(type.name());
}

std::string className(char const * name) {
    int status = 0;
    std::unique_ptr<char, void (*)(void *)> const readable(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), std::free);
    return status == 0 && readable ? readable.get() : name;
}

Status renameFile(std::filesystem::path const & from, std::filesystem::path const & to) {
#ifdef _WIN32
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return Status::success();
    std::error_code const error(static_cast<int>(GetLastError()), std::system_category());
    return Status::io("rename the file", pathText(from), error.message());
#else
    if (std::rename(from.c_str(), to.c_str()) == 0) return Status::success();
    return Status::fromErrno(errno, "rename the file", pathText(from));
#endif
}

Status syncDirectory([[maybe_unused]] std::filesystem::path const & directory) {
#ifndef _WIN32
    int const handle = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return Status::fromErrno(errno, "open the directory", pathText(directory));
    int const error = fsync(handle) == 0 ? 0 : errno;
    close(handle);
    // Some file systems have nothing to wait for and say so.
    if (error != 0 && error != EINVAL && error != ENOTSUP)
        return Status::fromErrno(error, "sync the directory", pathText(directory));
#endif
    return Status::success();
}

Module::Module(Module && other) noexcept : m_pHandle(std::exchange(other.m_pHandle, nullptr)) {}

Module & Module::operator=(Module && other) noexcept {
    if (this != &other) {
        unload();
        m_pHandle = std::exchange(other.m_pHandle, nullptr);
    }
    return *this;
}

Module::~Module() {
    unload();
}

Status Module::load(std::filesystem::path const & file) {
    unload();
    std::error_code error;
    // A bare name would be looked for along the system's search path.
    std::filesystem::path const path = std::filesystem::absolute(file, error);
    if (error) return Status::invalidArgument("load the module", pathText(file), error.message());
    if (!std::filesystem::exists(path, error))
        return Status::notFound("load the module", pathText(path));
#ifdef _WIN32
    m_pHandle = reinterpret_cast<void *>(
        LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
#else
    m_pHandle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
    if (!m_pHandle) return Status::failed("load the module", pathText(path), loaderError());
    return Status::success();
}

void * Module::symbol(char const * name) const noexcept {
    if (!m_pHandle) return nullptr;
#ifdef _WIN32
    return reinterpret_cast<void *>(GetProcAddress(reinterpret_cast<HMODULE>(m_pHandle), name));
#else
    return dlsym(m_pHandle, name);
#endif
}

void Module::unload() noexcept {
    void * const handle = std::exchange(m_pHandle, nullptr);
    if (!handle) return;
#ifdef _WIN32
    FreeLibrary(reinterpret_cast<HMODULE>(handle));
#else
    dlclose(handle);
#endif
}

} // namespace Vn::OS
