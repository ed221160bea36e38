#ifndef VN_PLATFORM_BASE_CREATIONLOCK_H
#define VN_PLATFORM_BASE_CREATIONLOCK_H

#include <optional>

#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/SpinLock.h"

namespace Vn {

// Holds a spin lock for the creation of a shared object, if locks have to be taken at all.
class CreationLock {
public:
    // Waits for the lock, which must outlive this object.
    explicit CreationLock(SpinLock & lock) : m_scope(LockCreation, 2) {
        if (m_scope.isLocking()) m_guard.emplace(lock);
    }

private:
    ScopedLockBase const m_scope;
    std::optional<SpinLockGuard> m_guard;
};

} // namespace Vn

#endif
