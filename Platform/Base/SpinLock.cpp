#include "Platform/Base/SpinLock.h"

#include "Platform/Base/OS.h"

namespace Vn {

void SpinLock::wait() noexcept {
    unsigned pauses = 1;
    do {
        if (pauses < 17) {
            for (unsigned i = 0; i < pauses; ++i) OS::pause();
            pauses *= 2;
        } else {
            OS::yield();
        }
    } while (!tryLock());
}

} // namespace Vn
