// How the sources that ask the operating system tell of what it refused.

#ifndef VN_PLATFORM_BASE_OSFAILURESINTERNAL_H
#define VN_PLATFORM_BASE_OSFAILURESINTERNAL_H

#include <filesystem>
#include <string>
#include <system_error>

#include "Platform/Base/Status.h"

namespace Vn::OS::Detail {

// A path in UTF-8, for a status.
std::string pathText(std::filesystem::path const & path);

#ifdef _WIN32
// Of the last call of the system that failed.
std::error_code lastError() noexcept;
// The outcome of an operation on a file whose last call failed.
Status fileFailure(char const * operation, std::filesystem::path const & file);
#endif

} // namespace Vn::OS::Detail

#endif
