#include "Platform/Base/Version.h"

#define VN_TEXT_OF(number) #number
#define VN_TEXT(number) VN_TEXT_OF(number)

namespace Vn {

int libraryVersion() noexcept { return VN_VERSION; }

char const * libraryVersionText() noexcept {
    return VN_TEXT(VN_VERSION_MAJOR) "." VN_TEXT(VN_VERSION_MINOR) "." VN_TEXT(VN_VERSION_PATCH);
}

bool isCompatible(int built) noexcept {
    return built / 10000 == VN_VERSION_MAJOR && built <= VN_VERSION;
}

} // namespace Vn
