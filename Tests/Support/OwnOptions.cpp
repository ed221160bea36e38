// Tests and measurements have preferences of their own: those of whoever runs them must not change
// what they find.  Linked into a program, this gives it a place for option files before anything is
// read, and takes the place away at its end.  Processes that it starts have the same place, and
// speak English unless they are told otherwise.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

#include "Platform/Base/PathInfo.h"

namespace {

class OwnOptions {
public:
    OwnOptions() {
#ifdef _WIN32
        // Other processes have the place that Windows tells, which in Wine is the build's own.
        Vn::PathInfo::optionsDirectory(Vn::PathInfo::toText(m_directory));
        _putenv_s("LC_ALL", "C");
#else
        ::setenv("XDG_CONFIG_HOME", m_directory.c_str(), 1);
        ::setenv("LC_ALL", "C", 1);
#endif
    }
    ~OwnOptions() {
        std::error_code ignored;
        std::filesystem::remove_all(m_directory, ignored);
    }
    OwnOptions(OwnOptions const &) = delete;
    OwnOptions & operator=(OwnOptions const &) = delete;

private:
#ifdef _WIN32
    static int process() { return _getpid(); }
#else
    static int process() { return getpid(); }
#endif

    std::filesystem::path const m_directory =
        std::filesystem::path(VN_OWN_OPTIONS) / std::to_string(process());
};

OwnOptions const s_ownOptions;

} // namespace
