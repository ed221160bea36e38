#ifndef VN_PLATFORM_BASE_SCOPEDLOCK_H
#define VN_PLATFORM_BASE_SCOPEDLOCK_H

#include "Platform/Base/Export.h"

namespace Vn {

// What a scope guards.
enum ELockType {
    LockShared = 0,   // something that many read and few change
    LockCreation = 1, // the creation of a shared object
};

// Tells, for the length of a scope, whether locks have to be taken at all.  A host that uses a
// single thread may switch locking off for the whole process.
class VN_BASE_API ScopedLockBase {
public:
    // `lockType` says what the scope guards, and `level` how deep in the order of locks it stands.
    // Both are for the reader and for diagnostics; neither changes the answer.  The second takes
    // the type as its number.
    ScopedLockBase(ELockType lockType, unsigned level) noexcept;
    ScopedLockBase(int lockType, unsigned level) noexcept
        : ScopedLockBase(static_cast<ELockType>(lockType), level) {}
    ScopedLockBase(ScopedLockBase const &) = delete;
    ScopedLockBase & operator=(ScopedLockBase const &) = delete;

    // The answer, fixed when the scope was entered, so that what locks also unlocks.
    bool isLocking() const noexcept { return m_bLocking; }
    ELockType lockType() const noexcept { return m_lockType; }
    unsigned level() const noexcept { return m_level; }

    // On from the start.  To be switched by the host while it runs a single thread.
    static void lockingEnabled(bool enabled) noexcept;
    static bool lockingEnabled() noexcept;

private:
    ELockType const m_lockType;
    unsigned const m_level;
    bool const m_bLocking;
};

} // namespace Vn

#endif
