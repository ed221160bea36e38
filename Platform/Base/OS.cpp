#include "Platform/Base/OS.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <exception>
#include <fstream>
#include <iterator>
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

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#else
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OSFailuresInternal.h"
#include "Platform/Base/Text.h"

namespace Vn::OS {

namespace Detail {

std::string pathText(std::filesystem::path const & path) {
    std::u8string const text = path.u8string();
    return std::string(text.begin(), text.end());
}

#ifdef _WIN32
std::error_code lastError() noexcept {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

Status fileFailure(char const * operation, std::filesystem::path const & file) {
    std::error_code const error = lastError();
    EStatus code = StatusIO;
    switch (error.value()) {
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        code = StatusAlreadyExists;
        break;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        code = StatusNotFound;
        break;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        code = StatusAccessDenied;
        break;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        code = StatusBusy;
        break;
    case ERROR_DISK_FULL:
        code = StatusNoSpace;
        break;
    default:
        break;
    }
    return Status(code, operation, pathText(file), errorText(error));
}
#endif

} // namespace Detail

using Detail::pathText;
#ifdef _WIN32
using Detail::fileFailure;
using Detail::lastError;
#endif

namespace {

// The reason why the last call of the loader failed.
std::string loaderError() {
#ifdef _WIN32
    return errorText(lastError());
#else
    char const * const text = dlerror();
    return text ? localizedIn("OperatingSystem", "%1%", text) : std::string();
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

#ifdef _WIN32

namespace {

// The directory of a module of the process; null is the program.
std::filesystem::path directoryOf(HMODULE module) {
    // The system cuts off a path that doesn't fit, and then fills the buffer.
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        DWORD const length =
            GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            return std::filesystem::path(path).parent_path();
        }
        path.resize(path.size() * 2);
    }
}

} // namespace

#endif

std::filesystem::path executableDirectory() {
#ifdef _WIN32
    return directoryOf(nullptr);
#else
    std::error_code error;
    std::filesystem::path const path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : path.parent_path();
#endif
}

std::filesystem::path libraryDirectory() {
    auto * const address = reinterpret_cast<void *>(&libraryDirectory);
#ifdef _WIN32
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<wchar_t const *>(address), &module))
        return {};
    return directoryOf(module);
#else
    // The loader tells the name by which it found the file, which may be a link.
    Dl_info info{};
    if (dladdr(address, &info) == 0 || !info.dli_fname) return {};
    std::error_code error;
    std::filesystem::path const path = std::filesystem::canonical(info.dli_fname, error);
    return error ? std::filesystem::path() : path.parent_path();
#endif
}

std::vector<std::string> arguments([[maybe_unused]] int argc,
                                   [[maybe_unused]] char const * const * argv) {
#ifdef _WIN32
    // What main is given has been through the encoding of the system's language, and "*" in it has
    // been replaced by the names of files.
    int count = 0;
    std::unique_ptr<wchar_t *, void (*)(wchar_t **)> const texts(
        CommandLineToArgvW(GetCommandLineW(), &count), [](wchar_t ** all) { LocalFree(all); });
    std::vector<std::string> result;
    for (int i = 1; texts && i < count; ++i) result.push_back(Text::toUtf8(texts.get()[i]));
    return result;
#else
    return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
#endif
}

#ifdef _WIN32

namespace {

HANDLE standardHandle(int stream) noexcept {
    return GetStdHandle(stream == 0   ? STD_INPUT_HANDLE
                        : stream == 1 ? STD_OUTPUT_HANDLE
                                      : STD_ERROR_HANDLE);
}

} // namespace

#endif

bool isTerminal(int stream) noexcept {
#ifdef _WIN32
    DWORD mode = 0;
    return GetConsoleMode(standardHandle(stream), &mode) != 0;
#else
    return ::isatty(stream) == 1;
#endif
}

std::string errorText(std::error_code const & error) {
#ifdef _WIN32
    // The standard library has them in the code page of the system's language.
    if (error.category() == std::system_category()) {
        wchar_t text[1024];
        DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                          FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                      nullptr, static_cast<DWORD>(error.value()), 0, text,
                                      static_cast<DWORD>(std::size(text)), nullptr);
        while (length > 0 && Text::isSpace(static_cast<char32_t>(text[length - 1]))) --length;
        if (length > 0)
            return localizedIn("OperatingSystem", "%1%", std::wstring_view(text, length));
    }
#endif
    return localizedIn("OperatingSystem", "%1%", error.message());
}

int writeError() noexcept {
    int const error = errno;
#ifdef _WIN32
    unsigned long const reason = _doserrno;
    if (error == EINVAL && (reason == ERROR_NO_DATA || reason == ERROR_BROKEN_PIPE ||
                            reason == ERROR_PIPE_NOT_CONNECTED))
        return EPIPE;
#endif
    return error != 0 ? error : EIO;
}

namespace {

// Set where next to nothing else may be done.
constinit std::atomic<bool> s_bInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);
constinit int s_noted = 0; // how many NotedInterruptions live

#ifdef _WIN32

// The system calls it on a thread of its own.
BOOL WINAPI noteInterruption(DWORD event) {
    if (event != CTRL_C_EVENT) return FALSE;
    s_bInterrupted.store(true, std::memory_order_relaxed);
    return TRUE;
}

#else

struct sigaction s_before; // what the signal did

void noteInterruption(int) { s_bInterrupted.store(true, std::memory_order_relaxed); }

#endif

} // namespace

NotedInterruptions::NotedInterruptions() noexcept : m_bFirst(s_noted++ == 0) {
    if (!m_bFirst) return;
    forgetInterruption();
#ifdef _WIN32
    SetConsoleCtrlHandler(&noteInterruption, TRUE);
#else
    if (sigaction(SIGINT, nullptr, &s_before) != 0 || s_before.sa_handler == SIG_IGN) return;
    struct sigaction noting {};
    noting.sa_handler = &noteInterruption;
    noting.sa_flags = SA_RESTART; // what reads or writes meanwhile goes on
    sigemptyset(&noting.sa_mask);
    sigaction(SIGINT, &noting, nullptr);
#endif
}

NotedInterruptions::~NotedInterruptions() {
    --s_noted;
    if (!m_bFirst) return;
#ifdef _WIN32
    SetConsoleCtrlHandler(&noteInterruption, FALSE);
#else
    sigaction(SIGINT, &s_before, nullptr);
#endif
    forgetInterruption();
}

bool wasInterrupted() noexcept { return s_bInterrupted.load(std::memory_order_relaxed); }
void forgetInterruption() noexcept { s_bInterrupted.store(false, std::memory_order_relaxed); }

std::optional<std::wstring> readTerminalLine() {
#ifdef _WIN32
    constexpr wchar_t c_endOfInput = 26; // Ctrl-Z at the beginning of a line
    std::wstring line;
    wchar_t buffer[1024];
    while (line.empty() || line.back() != L'\n') {
        DWORD count = 0;
        if (!ReadConsoleW(standardHandle(0), buffer, static_cast<DWORD>(std::size(buffer)), &count,
                          nullptr))
            return std::nullopt;
        if (count == 0 && GetLastError() == ERROR_OPERATION_ABORTED) return std::wstring();
        if (count == 0) break;
        line.append(buffer, count);
    }
    if (line.empty() || line.front() == c_endOfInput) return std::nullopt;
    while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r')) line.pop_back();
    return line;
#else
    return std::nullopt;
#endif
}

Utf8Streams::Utf8Streams() noexcept {
#ifdef _WIN32
    for (int const stream : {0, 1, 2}) _setmode(stream, _O_BINARY);
    // Without a buffer a terminal is given single bytes, which aren't characters.
    std::setvbuf(stdout, nullptr, _IOFBF, std::size_t{1} << 16);
    m_encoding = GetConsoleOutputCP();
    if (m_encoding != 0) SetConsoleOutputCP(CP_UTF8);
#endif
}

Utf8Streams::~Utf8Streams() {
#ifdef _WIN32
    if (m_encoding != 0) SetConsoleOutputCP(m_encoding);
#endif
}

std::string className(std::type_info const & type) { return className(type.name()); }

std::string className(char const * name) {
    int status = 0;
    std::unique_ptr<char, void (*)(void *)> const readable(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), std::free);
    return status == 0 && readable ? readable.get() : name;
}

Status renameFile(std::filesystem::path const & from, std::filesystem::path const & to) {
#ifdef _WIN32
    constexpr char c_operation[] = "rename the file";
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return Status::success();
    Status failure = fileFailure(c_operation, from);
    // A file that another program has open can't be replaced.
    DWORD const attributes = GetFileAttributesW(to.c_str());
    bool const mayBeReplaced = attributes != INVALID_FILE_ATTRIBUTES &&
                               !(attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY));
    if (failure.code() == StatusAccessDenied && mayBeReplaced)
        failure = Status(StatusBusy, c_operation, pathText(from), failure.cause());
    return failure;
#else
    if (std::rename(from.c_str(), to.c_str()) == 0) return Status::success();
    return Status::fromErrno(errno, "rename the file", pathText(from));
#endif
}

Status renameToFreeName(std::filesystem::path const & from, std::filesystem::path const & to) {
    constexpr char c_operation[] = "rename the file";
#ifdef _WIN32
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH)) return Status::success();
    return fileFailure(c_operation, from);
#else
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return Status::success();
    if (errno != EINVAL && errno != ENOSYS)
        return Status::fromErrno(errno, c_operation, pathText(from));
    // The file system can't do it in one step.  A second name is given to nothing but a free one.
    if (linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0) != 0)
        return Status::fromErrno(errno, c_operation, pathText(from));
    if (unlink(from.c_str()) == 0) return Status::success();
    int const error = errno;
    unlink(to.c_str());
    return Status::fromErrno(error, c_operation, pathText(from));
#endif
}

Status createFile(std::filesystem::path const & file) {
    constexpr char c_operation[] = "make the file";
#ifdef _WIN32
    HANDLE const handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE) {
        CloseHandle(handle);
        return Status::success();
    }
    return fileFailure(c_operation, file);
#else
    constexpr int c_flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    int const handle = open(file.c_str(), c_flags, 0644);
    if (handle < 0) return Status::fromErrno(errno, c_operation, pathText(file));
    close(handle);
    return Status::success();
#endif
}

#ifdef _WIN32

// A byte that no file reaches; what others do to the file isn't hindered.
constexpr DWORD c_heldByteHigh = 0x7FFFFFFF;

namespace {

// Opened so that nobody is hindered.
HANDLE openShared(std::filesystem::path const & file, DWORD access) noexcept {
    return CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Whether an open file has that name now.
bool hasName(HANDLE handle, std::filesystem::path const & file) noexcept {
    HANDLE const named = openShared(file, 0);
    if (named == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION a{};
    BY_HANDLE_FILE_INFORMATION b{};
    bool const isKnown =
        GetFileInformationByHandle(handle, &a) && GetFileInformationByHandle(named, &b);
    CloseHandle(named);
    return isKnown && a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

} // namespace

Status FileHold::take(std::filesystem::path const & file) {
    release();
    constexpr char c_operation[] = "hold the file";
    HANDLE const handle = openShared(file, GENERIC_READ);
    if (handle == INVALID_HANDLE_VALUE) return fileFailure(c_operation, file);
    OVERLAPPED place{};
    place.OffsetHigh = c_heldByteHigh;
    if (!LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) {
        Status const failure = fileFailure(c_operation, file);
        CloseHandle(handle);
        return failure;
    }
    m_pHandle = handle;
    if (hasName(handle, file)) return Status::success();
    release();
    return Status::notFound(c_operation, pathText(file), localized("it was renamed meanwhile"));
}

void FileHold::release() noexcept {
    if (void * const handle = std::exchange(m_pHandle, nullptr)) CloseHandle(handle);
}

FileSizeLimitFails::FileSizeLimitFails() noexcept = default;
FileSizeLimitFails::~FileSizeLimitFails() = default;
bool FileSizeLimitFails::wasReached() const noexcept { return false; }

#else

Status FileHold::take(std::filesystem::path const &) { return Status::success(); }
void FileHold::release() noexcept { m_pHandle = nullptr; }

namespace {

sigset_t fileSizeSignal() noexcept {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGXFSZ);
    return signals;
}

} // namespace

FileSizeLimitFails::FileSizeLimitFails() noexcept {
    sigset_t const signals = fileSizeSignal();
    sigset_t before;
    m_bBlocked =
        pthread_sigmask(SIG_BLOCK, &signals, &before) == 0 && sigismember(&before, SIGXFSZ) == 0;
}

bool FileSizeLimitFails::wasReached() const noexcept {
    sigset_t pending;
    return m_bBlocked && sigpending(&pending) == 0 && sigismember(&pending, SIGXFSZ) == 1;
}

FileSizeLimitFails::~FileSizeLimitFails() {
    if (!m_bBlocked) return;
    // One that a write has caused is taken away, or it would come now.
    sigset_t const signals = fileSizeSignal();
    timespec const now{};
    while (sigtimedwait(&signals, nullptr, &now) < 0 && errno == EINTR) {}
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

#endif

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

#ifndef _WIN32

namespace {

// It is declared not to throw, but lets pass what the static objects of modules throw.  The
// compiler mustn't see which function it is.
void * (*const volatile s_openModule)(char const * file, int flags) = &dlopen;

// Whether a file ends before what its header says is in it.  The loader would map what isn't there,
// and the process would end.
bool isCutOff(std::filesystem::path const & file) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    auto const size = static_cast<std::uintmax_t>(stream.tellg());
    ElfW(Ehdr) header;
    // What isn't for it the loader refuses.
    constexpr unsigned char c_class = sizeof(void *) == 8 ? ELFCLASS64 : ELFCLASS32;
    if (!stream.seekg(0).read(reinterpret_cast<char *>(&header), sizeof header) ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != c_class ||
        header.e_phentsize != sizeof(ElfW(Phdr)))
        return false;
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        auto const place = static_cast<std::uintmax_t>(header.e_phoff) + i * sizeof segment;
        if (place > size || !stream.seekg(static_cast<std::streamoff>(place))
                                 .read(reinterpret_cast<char *>(&segment), sizeof segment))
            return true;
        if (segment.p_type == PT_LOAD &&
            (segment.p_offset > size || segment.p_filesz > size - segment.p_offset))
            return true;
    }
    return false;
}

} // namespace

#endif

Module::Module(Module && other) noexcept : m_pHandle(std::exchange(other.m_pHandle, nullptr)) {}

Module & Module::operator=(Module && other) noexcept {
    if (this != &other) {
        unload();
        m_pHandle = std::exchange(other.m_pHandle, nullptr);
    }
    return *this;
}

Module::~Module() { unload(); }

Status Module::load(std::filesystem::path const & file) {
    unload();
    std::error_code error;
    // A bare name would be looked for along the system's search path.
    std::filesystem::path path = std::filesystem::absolute(file, error);
    if (error) return Status::invalidArgument("load the module", pathText(file), errorText(error));
    if (!std::filesystem::exists(path, error))
        return Status::notFound("load the module", pathText(path));
    if (!std::filesystem::is_regular_file(path, error)) // one that is a pipe would be waited for
        return Status::invalidArgument("load the module", pathText(path),
                                       localized("it isn't a file"));
#ifdef _WIN32
    // What it needs is looked for beside it, beside the program and in the system's own directory.
    path.make_preferred(); // the only separator that the loader knows
    m_pHandle = reinterpret_cast<void *>(
        LoadLibraryExW(path.c_str(), nullptr,
                       LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS));
#else
    if (isCutOff(path))
        return Status::corrupt("load the module", pathText(path),
                               localized("the file is too short"));
    // Of the exception nothing is left when the module goes, which its class may belong to.
    std::string thrown;
    try {
        m_pHandle = s_openModule(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    } catch (std::exception const & exception) {
        thrown = localized("a static object of it throws: %1%", exception.what());
    } catch (...) {
        thrown = localized("a static object of it throws");
    }
    if (!thrown.empty()) {
        // The call that was left had counted a use of the module.
        if (void * const left = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
            dlclose(left);
            dlclose(left);
        }
        return Status::failed("load the module", pathText(path), thrown);
    }
#endif
    if (!m_pHandle) return Status::failed("load the module", pathText(path), loaderError());
    return Status::success();
}

Status Module::loadLibrary(std::string const & name) {
    constexpr char c_operation[] = "load the library";
    unload();
    // Anything else would be looked for in the present directory too.
    if (name.empty() || name.find_first_of("/\\:") != name.npos)
        return Status::invalidArgument(c_operation, name,
                                       localized("it isn't the name of a library"));
#ifdef _WIN32
    m_pHandle = reinterpret_cast<void *>(
        LoadLibraryExA(name.c_str(), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
#else
    m_pHandle = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
    if (!m_pHandle) return Status::notFound(c_operation, name, loaderError());
    return Status::success();
}

bool Module::isInProcess(std::filesystem::path const & file) {
    std::error_code error;
    std::filesystem::path path = std::filesystem::absolute(file, error);
    if (error) return false;
#ifdef _WIN32
    path.make_preferred();
    return GetModuleHandleW(path.c_str()) != nullptr;
#else
    void * const handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (!handle) return false;
    dlclose(handle);
    return true;
#endif
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
