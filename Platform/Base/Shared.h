#ifndef VN_PLATFORM_BASE_SHARED_H
#define VN_PLATFORM_BASE_SHARED_H

#include <atomic>
#include <concepts>
#include <type_traits>

#include "Platform/Base/CreationLock.h"

namespace Vn {

// An object that is made at its first use and shared from then on.
//
//     static constinit Shared<Table> s_table;
//     Table & Table::get() { return s_table.get([] { return new Table; }); }
//
// The holder is constant-initialised and has a trivial destructor, so that a static one works
// before any constructor and after any destructor of the module has run.  The object is never
// deleted: it lives to the end of the process.
template <class T>
class Shared {
public:
    constexpr Shared() noexcept = default;
    Shared(Shared const &) = delete;
    Shared & operator=(Shared const &) = delete;

    // The object, made by `create` if there is none yet.  `create` returns a T * that isn't null
    // and becomes this holder's; it must be complete, since other threads read it as soon as it is
    // stored.  It must not ask for the same object again.  If it throws, the exception goes to the
    // caller and the next call tries anew.
    template <class Creator>
    requires std::convertible_to<std::invoke_result_t<Creator &>, T *> T & get(Creator && create) {
        T * object = m_pObject.load(std::memory_order_acquire);
        return object ? *object : make(create);
    }

    // The object, or null if it hasn't been made yet.
    T * peek() const noexcept { return m_pObject.load(std::memory_order_acquire); }

private:
    template <class Creator>
    T & make(Creator & create) {
        CreationLock const lock(m_lock);
        T * object = m_pObject.load(std::memory_order_relaxed);
        if (!object) {
            object = create();
            m_pObject.store(object, std::memory_order_release);
        }
        return *object;
    }

    std::atomic<T *> m_pObject{nullptr};
    SpinLock m_lock;
};

} // namespace Vn

#endif
