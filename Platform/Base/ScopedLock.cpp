#include "Platform/Base/ScopedLock.h"

#include <atomic>

namespace Vn {

namespace {

constinit std::atomic<bool> s_lockingEnabled{true};

}

ScopedLockBase::ScopedLockBase(ELockType lockType, unsigned level) noexcept
    : m_lockType(lockType), m_level(level), m_bLocking(lockingEnabled()) {}

void ScopedLockBase::lockingEnabled(bool enabled) noexcept {
    s_lockingEnabled.store(enabled, std::memory_order_relaxed);
}

bool ScopedLockBase::lockingEnabled() noexcept {
    return s_lockingEnabled.load(std::memory_order_relaxed);
}

} // namespace Vn
