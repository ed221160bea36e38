#ifndef VN_PLATFORM_BASE_OSFILES_H
#define VN_PLATFORM_BASE_OSFILES_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>

#include "Platform/Base/Export.h"
#include "Platform/Base/Status.h"

// Files that are read whole and replaced whole: small ones that several processes read and change,
// such as preferences, where a lock is held from the one to the other; and what a user has written.
namespace Vn::OS {

// Reads a file.  One with more than `limit` bytes isn't read: StatusUnsupported.  What isn't a
// regular file is StatusInvalidArgument.  `content` is changed only by success.
[[nodiscard]] VN_BASE_API Status readSmallFile(std::filesystem::path const & file,
                                               std::size_t limit, std::string & content);

// Puts a file with that content in the place of `file`, or makes it.  Whoever reads sees the old
// content or the new one, also after a crash: the content is written to a file beside it, whose
// name ends in ".saving", reaches the disk, and is given the name.  The permissions of the old file
// stay; a new one is the user's alone.  A file that nobody may write isn't replaced:
// StatusAccessDenied.  The caller holds a lock that keeps others from replacing the file.
[[nodiscard]] VN_BASE_API Status replaceSmallFile(std::filesystem::path const & file,
                                                  std::string_view content);

// The same for a file that a user asked for, of any size, and without a lock: of several that do it
// at a time, one is the last.  A link is followed, and what it leads to is replaced.  A new file
// has the permissions that the system gives to new files.  What is there and isn't a regular file,
// such as a directory or a device, is left alone: StatusInvalidArgument.  The neighbour has digits
// of its own in its name, and is taken away after a failure.
[[nodiscard]] VN_BASE_API Status replaceFile(std::filesystem::path const & file,
                                             std::string_view content);

// Makes a file with that content, which has reached the disk.  What has the name stays, and the
// answer is StatusAlreadyExists.
[[nodiscard]] VN_BASE_API Status makeSmallFile(std::filesystem::path const & file,
                                               std::string_view content);

// Makes a directory and those above it that are missing, for the user alone.  Success if it is
// there already.
[[nodiscard]] VN_BASE_API Status makeDirectories(std::filesystem::path const & directory);

// Where a path leads to if it is a symbolic link, over as many links as there are; the path itself
// if it is none.  What a link names needn't be there.
[[nodiscard]] VN_BASE_API Status followLinks(std::filesystem::path const & path,
                                             std::filesystem::path & target);

// The directory in which programs keep the user's preferences: that of XDG_CONFIG_HOME if it is
// absolute, else ".config" in the user's home, which HOME or the user database names; on Windows
// the folder for roaming data.  Empty if the system tells none.
VN_BASE_API std::filesystem::path preferencesDirectory();

// Keeps other processes, and other threads of this one, that take the same lock waiting.  It ends
// with the object, and with the process.
class VN_BASE_API FileLock {
public:
    FileLock() = default;
    ~FileLock() { release(); }
    FileLock(FileLock const &) = delete;
    FileLock & operator=(FileLock const &) = delete;

    // Waits for the lock on `file`, an empty file that is made and stays, and takes it in place of
    // the one before.  Its directory must be there.  StatusBusy if it isn't free in time.
    [[nodiscard]] Status take(std::filesystem::path const & file,
                              std::chrono::milliseconds patience);
    void release() noexcept;

private:
    std::unique_lock<std::mutex> m_guard;
    std::intptr_t m_handle = -1;
};

// A call of the system that the operations above make.
enum class EFileCall {
    Open,
    Read,
    MakeDirectory,
    OpenLock,
    Lock,
    Create,
    Write,
    Flush,
    Rename,
    SyncDirectory
};

// For tests: `observer` is asked before each such call, and 0 lets it be made.  Another answer is
// the errno with which it fails; a write that fails has written half.  Null asks nobody.
using FileCallObserver = int (*)(EFileCall call, std::filesystem::path const & file);
VN_BASE_API void fileCallObserver(FileCallObserver observer) noexcept;

} // namespace Vn::OS

#endif
