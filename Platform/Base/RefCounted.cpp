#include "Platform/Base/RefCounted.h"

namespace Vn {

namespace {

// The count of an object whose last strong reference is gone.  Strong references that its
// destructor makes for a while count upwards from here, and don't end it again.  Zero, in contrast,
// is the count of an object that nobody has owned yet.
constexpr std::uint32_t c_dying = 0x80000000U;

// Stands in place of the block of an object whose passive references are suspended before there
// were any.
Detail::PassiveControl * suspendedMark() noexcept {
    return reinterpret_cast<Detail::PassiveControl *>(std::uintptr_t{1});
}

// The block that stands there, if one does.
Detail::PassiveControl * blockOf(Detail::PassiveControl * control) noexcept {
    return control == suspendedMark() ? nullptr : control;
}

} // namespace

namespace Detail {

void PassiveControl::release() noexcept {
    if (m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

RefCounted * PassiveControl::lockTarget() noexcept {
    // Code that deletes the target without its last strong reference expires this block first, so
    // that the target can be read for as long as the lock is held.
    SpinLockGuard const guard(m_lock);
    RefCounted * const found = target();
    return found && found->addRefIfAlive() ? found : nullptr;
}

void PassiveControl::expire() noexcept {
    SpinLockGuard const guard(m_lock);
    m_target.store(0, std::memory_order_release);
}

void PassiveControl::suspend(bool suspended) noexcept {
    SpinLockGuard const guard(m_lock);
    auto const target = m_target.load(std::memory_order_relaxed) & ~c_suspended;
    m_target.store(suspended ? target | c_suspended : target, std::memory_order_release);
}

} // namespace Detail

RefCounted::~RefCounted() {
    if (Detail::PassiveControl * const control =
            blockOf(m_pPassive.load(std::memory_order_acquire))) {
        control->expire();
        control->release();
    }
}

void RefCounted::release() const noexcept {
    std::uint32_t count = m_count.load(std::memory_order_relaxed);
    while (!m_count.compare_exchange_weak(count, count == 1 ? c_dying : count - 1,
                                          std::memory_order_acq_rel, std::memory_order_relaxed)) {}
    if (count == 1) const_cast<RefCounted *>(this)->destroy();
}

void RefCounted::destroy() noexcept {
    if (Detail::PassiveControl * const control =
            blockOf(m_pPassive.load(std::memory_order_acquire)))
        control->expire();
    delete this;
}

void RefCounted::strongCount(std::uint32_t count) noexcept {
    m_count.store(count, std::memory_order_release);
}

void RefCounted::suspendPassive() noexcept {
    Detail::PassiveControl * control = nullptr;
    m_pPassive.compare_exchange_strong(control, suspendedMark(), std::memory_order_acq_rel,
                                       std::memory_order_acquire);
    if (blockOf(control)) control->suspend(true);
}

void RefCounted::restorePassive() noexcept {
    Detail::PassiveControl * control = suspendedMark();
    m_pPassive.compare_exchange_strong(control, nullptr, std::memory_order_acq_rel,
                                       std::memory_order_acquire);
    if (blockOf(control)) control->suspend(false);
}

bool RefCounted::addRefIfAlive() const noexcept {
    std::uint32_t count = m_count.load(std::memory_order_relaxed);
    do {
        if (count & c_dying) return false;
    } while (!m_count.compare_exchange_weak(count, count + 1, std::memory_order_relaxed));
    return true;
}

std::uint32_t RefCounted::refCount() const noexcept {
    return m_count.load(std::memory_order_relaxed) & ~c_dying;
}

Detail::PassiveControl * RefCounted::passiveControl() const {
    Detail::PassiveControl * control = m_pPassive.load(std::memory_order_acquire);
    if (!blockOf(control)) {
        auto * const made = new Detail::PassiveControl(const_cast<RefCounted *>(this));
        if (control) made->suspend(true);
        if (m_pPassive.compare_exchange_strong(control, made, std::memory_order_acq_rel,
                                               std::memory_order_acquire))
            control = made;
        else
            made->release();
    }
    control->addRef();
    return control;
}

} // namespace Vn
