#include "Platform/Base/OSFiles.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <initguid.h>
#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>
#else
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/OSFailuresInternal.h"
#include "Platform/Base/Shared.h"

namespace Vn::OS {

using Detail::pathText;
#ifdef _WIN32
using Detail::fileFailure;
#endif
using std::filesystem::path;

namespace {

constinit std::atomic<FileCallObserver> s_observer{nullptr};

// The errno that the test wants; 0 without a test.
int wished(EFileCall call, path const & file) {
    FileCallObserver const observer = s_observer.load(std::memory_order_acquire);
    return observer ? observer(call, file) : 0;
}

constexpr char c_read[] = "read the file";
constexpr char c_write[] = "write the file";
constexpr char c_lock[] = "lock the file";

Status isTooLarge(path const & file, std::size_t limit) {
    return Status(StatusUnsupported, c_read, pathText(file),
                  localized("it has more than %1% bytes", limit));
}

#ifdef _WIN32
using Native = HANDLE;
Native noHandle() { return INVALID_HANDLE_VALUE; }
void close(Native handle) { CloseHandle(handle); }
std::intptr_t toNumber(Native handle) { return reinterpret_cast<std::intptr_t>(handle); }
Native toNative(std::intptr_t number) { return reinterpret_cast<Native>(number); }
Status failure(char const * operation, path const & file) { return fileFailure(operation, file); }
#else
using Native = int;
constexpr Native noHandle() { return -1; }
constexpr std::intptr_t toNumber(Native handle) { return handle; }
constexpr Native toNative(std::intptr_t number) { return static_cast<Native>(number); }
Status failure(char const * operation, path const & file) {
    return Status::fromErrno(errno, operation, pathText(file));
}
#endif

// Who may do what with a file, as POSIX has it; without a file, its user alone.  Of the mode of a
// new file the system takes away what the user doesn't give.
struct Permissions {
    bool isOfFile = false;
    unsigned mode = 0600;
    unsigned user = 0;
    unsigned group = 0;
};

// An open file.
class OpenFile {
public:
    explicit OpenFile(path const & file) : m_rFile(file) {}
    ~OpenFile() {
        if (m_handle != noHandle()) close(m_handle);
    }
    OpenFile(OpenFile const &) = delete;
    OpenFile & operator=(OpenFile const &) = delete;

    // `size` is what the file has now.
    Status openToRead(std::uint64_t & size);
    // Up to `size` bytes; less only at the end.
    Status read(char * bytes, std::size_t size, std::size_t & count);
    // A new file.
    Status create(Permissions const & permissions);
    Status write(std::string_view content);
    Status flush();

private:
    Status writeAll(std::string_view content);

    path const & m_rFile;
    Native m_handle = noHandle();
};

Status OpenFile::write(std::string_view content) {
    if (int const error = wished(EFileCall::Write, m_rFile)) {
        Status const half = writeAll(content.substr(0, content.size() / 2));
        return half.ok() ? Status::fromErrno(error, c_write, pathText(m_rFile)) : half;
    }
    return writeAll(content);
}

#ifdef _WIN32

Status OpenFile::openToRead(std::uint64_t & size) {
    // While a file is replaced by another one, it may be out of reach for a moment.
    for (int attempt = 0;; ++attempt) {
        m_handle = CreateFileW(m_rFile.c_str(), GENERIC_READ,
                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (m_handle != noHandle()) break;
        Status const failed = failure(c_read, m_rFile);
        DWORD const attributes = GetFileAttributesW(m_rFile.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
            return Status::invalidArgument(c_read, pathText(m_rFile), localized("it isn't a file"));
        bool const mayPass = failed.code() == StatusBusy || failed.code() == StatusAccessDenied;
        if (!mayPass || attempt == 20) return failed;
        Sleep(1);
    }
    if (GetFileType(m_handle) != FILE_TYPE_DISK)
        return Status::invalidArgument(c_read, pathText(m_rFile), localized("it isn't a file"));
    LARGE_INTEGER count{};
    if (!GetFileSizeEx(m_handle, &count)) return failure(c_read, m_rFile);
    size = static_cast<std::uint64_t>(count.QuadPart);
    return Status::success();
}

Status OpenFile::read(char * bytes, std::size_t size, std::size_t & count) {
    count = 0;
    while (count < size) {
        DWORD got = 0;
        if (!ReadFile(m_handle, bytes + count, static_cast<DWORD>(size - count), &got, nullptr))
            return failure(c_read, m_rFile);
        if (got == 0) break;
        count += got;
    }
    return Status::success();
}

Status OpenFile::create(Permissions const &) {
    m_handle = CreateFileW(m_rFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    return m_handle == noHandle() ? failure(c_write, m_rFile) : Status::success();
}

Status OpenFile::writeAll(std::string_view content) {
    while (!content.empty()) {
        DWORD put = 0;
        constexpr std::size_t c_most = std::size_t{1} << 30; // a call takes less than 4 GiB
        auto const size = static_cast<DWORD>(std::min(content.size(), c_most));
        if (!WriteFile(m_handle, content.data(), size, &put, nullptr))
            return failure(c_write, m_rFile);
        content.remove_prefix(put);
    }
    return Status::success();
}

Status OpenFile::flush() {
    if (int const error = wished(EFileCall::Flush, m_rFile))
        return Status::fromErrno(error, c_write, pathText(m_rFile));
    return FlushFileBuffers(m_handle) ? Status::success() : failure(c_write, m_rFile);
}

#else

Status OpenFile::openToRead(std::uint64_t & size) {
    // What isn't a file, such as a pipe without a writer, isn't waited for.
    constexpr int c_flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    do m_handle = open(m_rFile.c_str(), c_flags);
    while (m_handle < 0 && errno == EINTR);
    if (m_handle < 0) return failure(c_read, m_rFile);
    struct stat status {};
    if (fstat(m_handle, &status) != 0) return failure(c_read, m_rFile);
    if (!S_ISREG(status.st_mode))
        return Status::invalidArgument(c_read, pathText(m_rFile), localized("it isn't a file"));
    size = static_cast<std::uint64_t>(status.st_size);
    return Status::success();
}

Status OpenFile::read(char * bytes, std::size_t size, std::size_t & count) {
    count = 0;
    while (count < size) {
        ssize_t const got = ::read(m_handle, bytes + count, size - count);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return failure(c_read, m_rFile);
        if (got == 0) break;
        count += static_cast<std::size_t>(got);
    }
    return Status::success();
}

Status OpenFile::create(Permissions const & permissions) {
    constexpr int c_flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    m_handle = open(m_rFile.c_str(), c_flags, permissions.isOfFile ? 0600 : permissions.mode);
    if (m_handle < 0) return failure(c_write, m_rFile);
    if (!permissions.isOfFile) return Status::success();
    // As far as the file system has them.  The superuser leaves another user's file to that one;
    // where the group can't be kept, another one gets nothing.
    unsigned mode = permissions.mode;
    if (fchown(m_handle, permissions.user, permissions.group) != 0) mode &= ~070U;
    static_cast<void>(fchmod(m_handle, static_cast<mode_t>(mode)));
    return Status::success();
}

Status OpenFile::writeAll(std::string_view content) {
    while (!content.empty()) {
        ssize_t const put = ::write(m_handle, content.data(), content.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return failure(c_write, m_rFile);
        content.remove_prefix(static_cast<std::size_t>(put));
    }
    return Status::success();
}

Status OpenFile::flush() {
    if (int const error = wished(EFileCall::Flush, m_rFile))
        return Status::fromErrno(error, c_write, pathText(m_rFile));
    return fsync(m_handle) == 0 ? Status::success() : failure(c_write, m_rFile);
}

#endif

// Makes a file with that content; what was made of it is taken away if that fails.
Status writeNewFile(path const & file, std::string_view content, Permissions const & permissions) {
    FileSizeLimitFails const limit;
    if (int const error = wished(EFileCall::Create, file))
        return Status::fromErrno(error, c_write, pathText(file));
    Status status;
    {
        OpenFile open(file);
        status = open.create(permissions);
        if (!status) return status;
        status = open.write(content);
        if (status) status = open.flush();
    }
    std::error_code ignored;
    if (!status) std::filesystem::remove(file, ignored);
    return status;
}

Status syncDirectoryOf(path const & file) {
    path const directory = file.has_parent_path() ? file.parent_path() : path(".");
    if (int const error = wished(EFileCall::SyncDirectory, directory))
        return Status::fromErrno(error, "sync the directory", pathText(directory));
    return syncDirectory(directory);
}

// Whether the file may be replaced, and the permissions that the new one gets.
Status permissionsOf(path const & file, [[maybe_unused]] Permissions & permissions) {
#ifdef _WIN32
    DWORD const attributes = GetFileAttributesW(file.c_str());
    bool const isReadOnly =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
#else
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) return Status::success();
    permissions = {true, status.st_mode & 0777U, status.st_uid, status.st_gid};
    // The superuser could, but the file says that it is to stay as it is.
    bool const isReadOnly =
        (permissions.mode & 0222U) == 0 || faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0;
#endif
    if (!isReadOnly) return Status::success();
    return Status(StatusAccessDenied, c_write, pathText(file), localized("it is read-only"));
}

Status renameInto(path const & from, path const & to) {
    if (int const error = wished(EFileCall::Rename, to))
        return Status::fromErrno(error, "rename the file", pathText(from));
    Status status = renameFile(from, to);
    // Where a file that somebody reads can't be replaced, reading it doesn't take long.
    constexpr int c_attempts = 500;
    for (int i = 0; status.code() == StatusBusy && !c_renamesOpenFiles && i < c_attempts; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        status = renameFile(from, to);
    }
    return status;
}

// Makes a file beside another with that content, and gives it the name of the other.
Status replaceBy(path const & neighbour, path const & file, std::string_view content,
                 Permissions const & permissions) {
    if (Status status = writeNewFile(neighbour, content, permissions); !status) return status;
    if (Status status = renameInto(neighbour, file); !status) {
        std::error_code ignored;
        std::filesystem::remove(neighbour, ignored);
        return status;
    }
    return syncDirectoryOf(file);
}

} // namespace

void fileCallObserver(FileCallObserver observer) noexcept {
    s_observer.store(observer, std::memory_order_release);
}

Status readSmallFile(path const & file, std::size_t limit, std::string & content) {
    if (int const error = wished(EFileCall::Open, file))
        return Status::fromErrno(error, c_read, pathText(file));
    OpenFile open(file);
    std::uint64_t expected = 0;
    if (Status status = open.openToRead(expected); !status) return status;
    if (int const error = wished(EFileCall::Read, file))
        return Status::fromErrno(error, c_read, pathText(file));
    if (expected > limit) return isTooLarge(file, limit);
    // The file may grow meanwhile, so its size is what is read of it.  One byte more tells its end.
    std::string bytes;
    std::size_t const most = limit + 1;
    for (std::size_t piece = static_cast<std::size_t>(expected) + 1; bytes.size() < most;) {
        std::size_t const before = bytes.size();
        std::size_t const wanted = std::min(piece, most - before);
        bytes.resize(before + wanted);
        std::size_t count = 0;
        if (Status status = open.read(bytes.data() + before, wanted, count); !status) return status;
        bytes.resize(before + count);
        if (count < wanted) break;
        piece = bytes.size();
    }
    if (bytes.size() > limit) return isTooLarge(file, limit);
    content = std::move(bytes);
    return Status::success();
}

Status replaceSmallFile(path const & file, std::string_view content) {
    Permissions permissions;
    if (Status status = permissionsOf(file, permissions); !status) return status;
    path neighbour = file;
    neighbour += ".saving";
    // A process that was killed while it saved has left one; nobody else writes one now.
    std::error_code ignored;
    std::filesystem::remove(neighbour, ignored);
    return replaceBy(neighbour, file, content, permissions);
}

Status replaceFile(path const & file, std::string_view content) {
    path target;
    if (Status status = followLinks(file, target); !status) return status;
    std::error_code ignored;
    std::filesystem::file_status const before = std::filesystem::status(target, ignored);
    if (std::filesystem::exists(before) && !std::filesystem::is_regular_file(before))
        return Status::invalidArgument(c_write, pathText(target), "it isn't a file");
    Permissions permissions;
    permissions.mode = 0666;
    if (Status status = permissionsOf(target, permissions); !status) return status;
    char digits[8];
    char const * const end =
        std::to_chars(digits, digits + sizeof digits, std::random_device()(), 16).ptr;
    path neighbour = target;
    neighbour += '.';
    neighbour += std::string_view(digits, static_cast<std::size_t>(end - digits));
    neighbour += ".saving";
    Status const status = replaceBy(neighbour, target, content, permissions);
    if (status) return status;
    // The file that was asked for, not its neighbour, of which the user knows nothing.
    return Status(status.code(), status.operation(), pathText(target), status.cause());
}

Status makeSmallFile(path const & file, std::string_view content) {
    if (Status status = writeNewFile(file, content, Permissions()); !status) return status;
    return syncDirectoryOf(file);
}

Status makeDirectories(path const & directory) {
    constexpr char c_make[] = "make the directory";
    std::vector<path> missing;
    std::error_code error;
    for (path at = directory.has_filename() ? directory : directory.parent_path();
         !at.empty() && !std::filesystem::is_directory(at, error);) {
        missing.push_back(at);
        path const above = at.parent_path();
        if (above == at) break;
        at = above;
    }
    for (; !missing.empty(); missing.pop_back()) {
        path const & made = missing.back();
        if (int const wish = wished(EFileCall::MakeDirectory, made))
            return Status::fromErrno(wish, c_make, pathText(made));
#ifdef _WIN32
        bool const good = CreateDirectoryW(made.c_str(), nullptr) != 0;
#else
        bool const good = mkdir(made.c_str(), 0700) == 0;
#endif
        // Another process may have made it.
        Status const status = good ? Status::success() : failure(c_make, made);
        if (!good && !std::filesystem::is_directory(made, error)) return status;
        if (Status synced = syncDirectoryOf(made); !synced) return synced;
    }
    return Status::success();
}

#ifdef _WIN32

Status followLinks(path const & file, path & target) {
    DWORD const attributes = GetFileAttributesW(file.c_str());
    target = file;
    if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_REPARSE_POINT))
        return Status::success();
    HANDLE const handle =
        CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return fileFailure("follow the link", file);
    std::wstring text(32768, L'\0'); // no path is longer
    DWORD const length =
        GetFinalPathNameByHandleW(handle, text.data(), static_cast<DWORD>(text.size()), 0);
    Status const status = length == 0 || length >= text.size()
                              ? fileFailure("follow the link", file)
                              : Status::success();
    CloseHandle(handle);
    if (status) target = text.substr(0, length);
    return status;
}

path preferencesDirectory() {
    PWSTR text = nullptr;
    path directory;
    if (SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &text) == S_OK) directory = text;
    CoTaskMemFree(text);
    return directory;
}

#else

Status followLinks(path const & file, path & target) {
    constexpr int c_mostLinks = 40; // as many as the system follows
    target = file;
    for (int links = 0; links <= c_mostLinks; ++links) {
        std::error_code error;
        if (!std::filesystem::is_symlink(target, error)) return Status::success();
        path const next = std::filesystem::read_symlink(target, error);
        if (error) return Status::fromErrno(error.value(), "follow the link", pathText(target));
        target = target.parent_path() / next; // which is `next` if that is absolute
    }
    return Status::fromErrno(ELOOP, "follow the link", pathText(file));
}

namespace {

// What the environment has for a directory; empty if that isn't an absolute path.
path directoryOf(char const * variable) {
    char const * const value = std::getenv(variable);
    path const directory = value ? value : "";
    return directory.is_absolute() ? directory : path();
}

path homeOfUser() {
    passwd entry{};
    passwd * found = nullptr;
    std::vector<char> buffer(1024);
    int error = 0;
    while ((error = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found)) ==
               ERANGE &&
           buffer.size() < (std::size_t{1} << 20))
        buffer.resize(buffer.size() * 2);
    return error == 0 && found && found->pw_dir ? path(found->pw_dir) : path();
}

} // namespace

path preferencesDirectory() {
    if (path directory = directoryOf("XDG_CONFIG_HOME"); !directory.empty()) return directory;
    path home = directoryOf("HOME");
    if (home.empty()) home = homeOfUser();
    return home.is_absolute() ? home / ".config" : path();
}

#endif

namespace {

// For the threads of this process.  One for all files: locks are held shortly.
constinit Shared<std::mutex> s_mutex;

std::mutex & processMutex() {
    return s_mutex.get([] { return new std::mutex; });
}

// There are two locks on the file: the one that is wanted, and that of the next in turn, which is
// held while the other one is waited for.  Without it a process that saves again and again would be
// back before those that wait have looked.
#ifdef _WIN32

enum : DWORD { c_lockByte = 0, c_turnByte = 1 };

bool lockByte(HANDLE handle, DWORD byte) noexcept {
    OVERLAPPED place{};
    place.Offset = byte;
    return LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                      &place) != 0;
}

Native openLock(path const & file) noexcept {
    return CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool takeTurn(HANDLE handle) noexcept { return lockByte(handle, c_turnByte); }

void endTurn(HANDLE handle) noexcept {
    OVERLAPPED place{};
    place.Offset = c_turnByte;
    UnlockFileEx(handle, 0, 1, 0, &place);
}

enum class EAttempt { Taken, Waiting, Failed };

EAttempt tryLock(HANDLE handle) noexcept {
    if (lockByte(handle, c_lockByte)) return EAttempt::Taken;
    return GetLastError() == ERROR_LOCK_VIOLATION || GetLastError() == ERROR_IO_PENDING
               ? EAttempt::Waiting
               : EAttempt::Failed;
}

// A file that is open this way isn't removed.
bool hasName(HANDLE, path const &) noexcept { return true; }

#else

Native openLock(path const & file) noexcept {
    return open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600);
}

bool changeTurn(int handle, short type) noexcept {
    struct flock place {};
    place.l_type = type;
    place.l_whence = SEEK_SET;
    place.l_len = 1;
    return fcntl(handle, F_OFD_SETLK, &place) == 0;
}

bool takeTurn(int handle) noexcept {
    // Where the file system has no such locks, the turn is anybody's.
    return changeTurn(handle, F_WRLCK) || (errno != EAGAIN && errno != EACCES);
}

void endTurn(int handle) noexcept { changeTurn(handle, F_UNLCK); }

enum class EAttempt { Taken, Waiting, Failed };

EAttempt tryLock(int handle) noexcept {
    if (flock(handle, LOCK_EX | LOCK_NB) == 0) return EAttempt::Taken;
    return errno == EWOULDBLOCK || errno == EINTR ? EAttempt::Waiting : EAttempt::Failed;
}

// Whether the name of an open file is still its own.
bool hasName(int handle, path const & file) noexcept {
    struct stat a {};
    struct stat b {};
    return fstat(handle, &a) == 0 && stat(file.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

#endif

} // namespace

Status FileLock::take(path const & file, std::chrono::milliseconds patience) {
    release();
    constexpr std::chrono::microseconds c_pause(500); // after which it is looked at again
    auto const end = std::chrono::steady_clock::now() + patience;
    Native handle = noHandle();
    bool hasTurn = false;
    EAttempt attempt = EAttempt::Waiting;
    Status status;
    for (;;) {
        if (handle == noHandle()) {
            if (int const error = wished(EFileCall::OpenLock, file))
                return Status::fromErrno(error, c_lock, pathText(file));
            handle = openLock(file);
            if (handle == noHandle()) return failure(c_lock, file);
            if (int const error = wished(EFileCall::Lock, file)) {
                status = Status::fromErrno(error, c_lock, pathText(file));
                break;
            }
        }
        hasTurn = hasTurn || takeTurn(handle);
        if (hasTurn && attempt == EAttempt::Waiting) attempt = tryLock(handle);
        if (attempt == EAttempt::Failed) {
            status = failure(c_lock, file);
            break;
        }
        if (attempt == EAttempt::Taken && !hasName(handle, file)) {
            // Others would lock another file.
            close(handle);
            handle = noHandle();
            hasTurn = false;
            attempt = EAttempt::Waiting;
        } else if (attempt == EAttempt::Taken) {
            std::unique_lock<std::mutex> guard(processMutex(), std::try_to_lock);
            if (guard.owns_lock()) {
                endTurn(handle);
                m_guard = std::move(guard);
                m_handle = toNumber(handle);
                return Status::success();
            }
        }
        if (std::chrono::steady_clock::now() >= end) {
            status =
                Status(StatusBusy, c_lock, pathText(file), localized("another program is saving"));
            break;
        }
        std::this_thread::sleep_for(c_pause);
    }
    if (handle != noHandle()) close(handle);
    return status;
}

void FileLock::release() noexcept {
    std::intptr_t const handle = std::exchange(m_handle, -1);
    if (handle == -1) return;
    m_guard.unlock();
    close(toNative(handle)); // which ends the locks
}

} // namespace Vn::OS
