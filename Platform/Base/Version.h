// The version of the product: the one place where it stands.  CMakeLists.txt reads it from here.
//
// A program that links the libraries can ask which headers it was built with (the macros) and which
// library it runs with (the operations); Docs/compatibility.md tells what may differ between them.

#ifndef VN_PLATFORM_BASE_VERSION_H
#define VN_PLATFORM_BASE_VERSION_H

#include "Platform/Base/Export.h"

// The three numbers of the version.
#define VN_VERSION_MAJOR 10
// See VN_VERSION_MAJOR.
#define VN_VERSION_MINOR 0
// See VN_VERSION_MAJOR.
#define VN_VERSION_PATCH 0

// The version as one number that can be compared: 10.2.3 is 100203.
#define VN_VERSION (VN_VERSION_MAJOR * 10000 + VN_VERSION_MINOR * 100 + VN_VERSION_PATCH)

namespace Vn {

// The version of the library that runs, as VN_VERSION counts it.
VN_BASE_API int libraryVersion() noexcept;
// The same as a text, such as "10.2.3"; it lasts as long as the library is loaded.
VN_BASE_API char const * libraryVersionText() noexcept;

// Whether the library that runs serves what was built with the headers of version `built`: it is of
// the same major version and not older.
VN_BASE_API bool isCompatible(int built = VN_VERSION) noexcept;

} // namespace Vn

#endif
