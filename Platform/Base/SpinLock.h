#ifndef VN_PLATFORM_BASE_SPINLOCK_H
#define VN_PLATFORM_BASE_SPINLOCK_H

#include <atomic>
#include <cstdint>

#include "Platform/Base/Export.h"

namespace Vn {

// A lock of one byte, for sections of a few instructions that are hardly ever contended, such as
// the first creation of a shared object.  It is constant-initialised, so that it may guard statics
// while modules are still loading.
//
// It isn't recursive: a thread that locks twice waits for ever.
class VN_BASE_API SpinLock {
public:
    constexpr SpinLock() noexcept = default;
    SpinLock(SpinLock const &) = delete;
    SpinLock & operator=(SpinLock const &) = delete;

    // Returns when the calling thread holds the lock.
    void lock() noexcept {
        if (!tryLock()) wait();
    }

    // Takes the lock if it is free, and tells whether it did.
    bool tryLock() noexcept {
        std::uint8_t expected = 0;
        return m_state.compare_exchange_strong(expected, 1, std::memory_order_acquire,
                                               std::memory_order_relaxed);
    }

    // Gives the lock back.  Only the thread that holds it may call this.
    void unlock() noexcept { m_state.store(0, std::memory_order_release); }

private:
    void wait() noexcept;

    std::atomic<std::uint8_t> m_state{0};
};

static_assert(sizeof(SpinLock) == 1);

// Holds a spin lock for the length of a scope.
class SpinLockGuard {
public:
    // Waits for the lock, which must outlive this object.
    explicit SpinLockGuard(SpinLock & lock) noexcept : m_rLock(lock) { m_rLock.lock(); }
    ~SpinLockGuard() { m_rLock.unlock(); }
    SpinLockGuard(SpinLockGuard const &) = delete;
    SpinLockGuard & operator=(SpinLockGuard const &) = delete;

private:
    SpinLock & m_rLock;
};

} // namespace Vn

#endif
