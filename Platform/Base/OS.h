#ifndef VN_PLATFORM_BASE_OS_H
#define VN_PLATFORM_BASE_OS_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <typeinfo>
#include <vector>

#include "Platform/Base/Export.h"
#include "Platform/Base/Status.h"

// The operating system, as far as the system needs it.
namespace Vn::OS {

// Lets another thread have the processor.
VN_BASE_API void yield() noexcept;

// Tells the processor that the thread is spinning.
VN_BASE_API void pause() noexcept;

// Memory straight from the system, zeroed, on a page of its own.  `size` is a multiple of 64 KiB.
// Null if there is none.
VN_BASE_API void * allocatePages(std::size_t size) noexcept;
// Gives it back; `size` as it was allocated.
VN_BASE_API void releasePages(void * memory, std::size_t size) noexcept;
// Says that the contents aren't needed any more: the memory stays usable, but the system may take
// its pages, and then it reads as zeroes, until it is written again.  `memory` lies on a page
// boundary.
VN_BASE_API void offerPages(void * memory, std::size_t size) noexcept;

// What the file name of a module ends in: ".so" or ".dll".
VN_BASE_API std::wstring_view platformModuleExtension() noexcept;

// The directory of the running program; empty if the system doesn't tell.
VN_BASE_API std::filesystem::path executableDirectory();

// The directory of the library that this function is in, or of the program if it is linked into
// that; empty if the system doesn't tell.
VN_BASE_API std::filesystem::path libraryDirectory();

// The arguments of the process, without the name of the program in front of them.  `argc` and
// `argv` are those of main.  On Windows they come from the system, and are UTF-8.
VN_BASE_API std::vector<std::string> arguments(int argc, char const * const * argv);

// Whether a standard stream of the process is a terminal: 0 the input, 1 the output, 2 the errors.
VN_BASE_API bool isTerminal(int stream) noexcept;

// The system's own words for an error, in UTF-8 and on one line.
VN_BASE_API std::string errorText(std::error_code const & error);

// The errno of a write that has just failed: EPIPE if nobody reads any more, which the C library of
// Windows has no errno for.
VN_BASE_API int writeError() noexcept;

// While it lives, the user's wish to end what runs, by Ctrl-C at the terminal or by the signal
// SIGINT, doesn't end the process, but is noted for long work to ask for.  A process that was
// started to ignore it goes on to.  They may nest; only one thread makes them.
class VN_BASE_API NotedInterruptions {
public:
    // Nothing is noted yet.
    NotedInterruptions() noexcept;
    // What was noted and not honoured is forgotten.
    ~NotedInterruptions();
    NotedInterruptions(NotedInterruptions const &) = delete;
    NotedInterruptions & operator=(NotedInterruptions const &) = delete;

private:
    [[maybe_unused]] bool m_bFirst = false; // the one that noted nothing before
};

// Whether the user has wished so since that was last forgotten; never without NotedInterruptions.
// Any thread may ask.
VN_BASE_API bool wasInterrupted() noexcept;
// Forgets it, for the next piece of work.
VN_BASE_API void forgetInterruption() noexcept;

// A line typed at the terminal, without its end; none when there are no more.  Only for systems
// whose terminals edit lines and don't speak UTF-8, as on Windows; none elsewhere.  An interruption
// that is noted leaves an empty line.
VN_BASE_API std::optional<std::wstring> readTerminalLine();

// While it lives, bytes pass the standard streams as they are, and a terminal takes them for UTF-8.
class VN_BASE_API Utf8Streams {
public:
    // To be made before the streams are used.
    Utf8Streams() noexcept;
    // The terminal, which other programs use too, is put back.
    ~Utf8Streams();
    Utf8Streams(Utf8Streams const &) = delete;
    Utf8Streams & operator=(Utf8Streams const &) = delete;

private:
    [[maybe_unused]] unsigned int m_encoding = 0; // of the terminal before; 0 if it had none
};

// The name of a class as it is written in the source.
VN_BASE_API std::string className(std::type_info const & type);
// The same from what `name` of its type_info says; a text that no compiler made is given back.
VN_BASE_API std::string className(char const * name);

// Gives a file another name in the same directory, in place of a file that has it.  Anyone who
// looks sees the one or the other, never neither.
[[nodiscard]] VN_BASE_API Status renameFile(std::filesystem::path const & from,
                                            std::filesystem::path const & to);
// Gives a file another name that is free.  What has the name stays, a link too, and the answer is
// StatusAlreadyExists.  A link is renamed itself, not what it leads to.
[[nodiscard]] VN_BASE_API Status renameToFreeName(std::filesystem::path const & from,
                                                  std::filesystem::path const & to);
// Makes an empty file with a name that is free.  What has the name stays, and nothing is followed
// if it is a link: the answer is StatusAlreadyExists.
[[nodiscard]] VN_BASE_API Status createFile(std::filesystem::path const & file);
// Waits until the names in a directory are on the disk, where the system has such a thing.
[[nodiscard]] VN_BASE_API Status syncDirectory(std::filesystem::path const & directory);

// Keeps others who would hold it from a file, also while it is renamed.  Only for systems that
// don't rename a file which is open for writing, so that no lock by which it was written outlasts
// that; elsewhere it does nothing.
class VN_BASE_API FileHold {
public:
    FileHold() = default;
    ~FileHold() { release(); }
    FileHold(FileHold const &) = delete;
    FileHold & operator=(FileHold const &) = delete;

    // Holds a file instead of the one before.  StatusBusy if it is held, StatusNotFound if gone.
    [[nodiscard]] Status take(std::filesystem::path const & file);
    void release() noexcept;

private:
    void * m_pHandle = nullptr;
};

// Whether `renameFile` takes files that are open.
inline constexpr bool c_renamesOpenFiles =
#ifdef _WIN32
    false;
#else
    true;
#endif

// While it lives, a write of this thread beyond the size that files may have fails like any other
// write.  Elsewhere it ends the process, on systems with such a limit.
class VN_BASE_API FileSizeLimitFails {
public:
    FileSizeLimitFails() noexcept;
    ~FileSizeLimitFails();
    // Whether a write has failed for that.
    bool wasReached() const noexcept;
    FileSizeLimitFails(FileSizeLimitFails const &) = delete;
    FileSizeLimitFails & operator=(FileSizeLimitFails const &) = delete;

private:
    [[maybe_unused]] bool m_bBlocked = false; // the signal, by this object
};

// A module loaded at run time.  It is unloaded with the object, unless `keep` was called.
class VN_BASE_API Module {
public:
    // Without a module, or with that of `other`, which is left without one.
    Module() noexcept = default;
    Module(Module && other) noexcept;
    Module & operator=(Module && other) noexcept;
    ~Module();

    // Loads a module; its static objects are constructed before this returns.  A module that the
    // object held before is unloaded first.  If it can't be loaded, the status carries the system's
    // reason, and the object holds none.
    //
    // A static object that throws is such a reason too, and the module is let go.  On Linux the
    // system's loader then stays locked by the thread: other threads that load, unload or look up
    // wait until the process ends.
    [[nodiscard]] Status load(std::filesystem::path const & file);

    // Loads a library of the system by its name alone, such as "libm.so.6", from where the system
    // looks for libraries.  As above otherwise; StatusNotFound if the system finds none.
    [[nodiscard]] Status loadLibrary(std::string const & name);

    // Whether the process has a module loaded from that file, by whomever.  A module may outlive
    // its unloading: others may use it, or the system may keep it for what it has made.
    static bool isInProcess(std::filesystem::path const & file);

    // The address of an exported name; null if there is none, or no module.
    void * symbol(char const * name) const noexcept;

    // Unloads the module.  Whatever came from it must be gone.
    void unload() noexcept;

    // Leaves the module loaded to the end of the process.
    void keep() noexcept { m_pHandle = nullptr; }

    // Whether there is a module to unload.
    bool isLoaded() const noexcept { return m_pHandle != nullptr; }

private:
    void * m_pHandle = nullptr;
};

} // namespace Vn::OS

#endif
