#ifndef VN_PLATFORM_BASE_PATHINFO_H
#define VN_PLATFORM_BASE_PATHINFO_H

#include <filesystem>
#include <string>
#include <string_view>

#include "Platform/Base/Export.h"

namespace Vn {

// The directories that the application settles for all of its modules.  Any thread may ask; a host
// that has other places sets them before it runs the initialisers.
class VN_BASE_API PathInfo {
public:
    // The directory of the option files: "VnCommonData10" in the directory that the system has for
    // preferences, or what the host set.  Nothing is made.  Empty if the system tells none.
    // `endsInSeparator` says whether the text ends in a "/".
    [[nodiscard]] static std::wstring optionsDirectory(bool endsInSeparator);
    // Sets it.  A relative path is one below the current directory, as that is now; an empty one
    // brings back the system's.
    static void optionsDirectory(std::wstring const & directory);
    static void optionsDirectory(wchar_t const * directory);

    // The directory in which the application is installed: the one above that of the running
    // program, or what the host set.
    [[nodiscard]] static std::wstring rootDirectory(bool endsInSeparator);
    // Sets it, in the same way.
    static void rootDirectory(std::wstring const & directory);
    static void rootDirectory(wchar_t const * directory);

    // The root directory that was installed with the platform's libraries, found from their place;
    // empty if there is none.  For a host whose program isn't in that tree, or doesn't know: in
    // trees such as /usr it is "share/VnCommonData10".
    [[nodiscard]] static std::wstring installedRoot();

    // The directory of the modules that are loaded at run time: that of the platform's libraries,
    // or what the host set.  Empty if the system doesn't tell it.
    [[nodiscard]] static std::wstring modulesDirectory(bool endsInSeparator);
    // Sets it, in the same way.
    static void modulesDirectory(std::wstring const & directory);
    static void modulesDirectory(wchar_t const * directory);

    // A path as a text with "/" as its separator, and back.  Every path comes back as it was:
    // bytes that aren't UTF-8 become characters that no other text has.
    static std::wstring toText(std::filesystem::path const & path);
    static std::filesystem::path fromText(std::wstring_view text);

    PathInfo() = delete;
};

} // namespace Vn

#endif
