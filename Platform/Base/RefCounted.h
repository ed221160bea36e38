#ifndef VN_PLATFORM_BASE_REFCOUNTED_H
#define VN_PLATFORM_BASE_REFCOUNTED_H

#include <atomic>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include "Platform/Base/Export.h"
#include "Platform/Base/Object.h"
#include "Platform/Base/SpinLock.h"

namespace Vn {

class RefCounted;

namespace Detail {

// What passive references share: the way to their target for as long as it lives.  The target and
// every passive reference hold one count each.
class VN_BASE_API PassiveControl {
public:
    explicit PassiveControl(RefCounted * target) noexcept
        : m_target(reinterpret_cast<std::uintptr_t>(target)) {}
    PassiveControl(PassiveControl const &) = delete;
    PassiveControl & operator=(PassiveControl const &) = delete;

    void addRef() noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }
    void release() noexcept;

    // The target, or null once it is gone and while it is suspended.
    RefCounted * target() const noexcept {
        auto const target = m_target.load(std::memory_order_acquire);
        return target & c_suspended ? nullptr : reinterpret_cast<RefCounted *>(target);
    }

    // The target, also while it is suspended; null once it is gone.
    RefCounted * keptTarget() const noexcept {
        return reinterpret_cast<RefCounted *>(m_target.load(std::memory_order_acquire) &
                                              ~c_suspended);
    }

    // The target with one more strong count, which the caller then owns, or null once it is gone.
    RefCounted * lockTarget() noexcept;

    // Forgets the target.  No lockTarget reaches for it once this has returned.
    void expire() noexcept;

    // Lets the target be found no more, but for keptTarget, and lets it be found again.
    void suspend(bool suspended) noexcept;

private:
    ~PassiveControl() = default;

    std::atomic<std::uint32_t> m_count{1};
    SpinLock m_lock;
    static constexpr std::uintptr_t c_suspended = 1; // in the lowest bit of the address

    std::atomic<std::uintptr_t> m_target;
};

} // namespace Detail

// An object that is deleted when its last strong reference goes.
//
// The count is zero after construction and belongs to the first StrongRef.  A
// constructor must therefore not make a StrongRef to its own object, which would delete it at the
// end of that reference; a PassiveRef does no harm there.  An object that never had a strong
// reference, such as one on the stack, is ended as any other.
//
// Counts may be changed by any number of threads.
class VN_BASE_API RefCounted : public Object {
public:
    ~RefCounted() override;

    // The two ends of a strong reference.  StrongRef calls them; other code has no need to.
    void addRef() const noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept;

    // The number of strong references at this moment, for tests and diagnostics.
    std::uint32_t refCount() const noexcept;

    // The block that passive references to this object share, made at the first call.  The caller
    // owns one count of it.
    Detail::PassiveControl * passiveControl() const;

protected:
    RefCounted() noexcept = default;
    // A copy is another object: it starts without references of either kind.
    RefCounted(RefCounted const & other) noexcept : Object(other) {}
    RefCounted & operator=(RefCounted const &) noexcept { return *this; }

    // What happens once the last strong reference is gone: the object is deleted.  A class whose
    // objects may come back overrides it, and uses the three operations below.  Passive references
    // can't be locked meanwhile.
    virtual void destroy() noexcept;

    // Sets the number of strong references, for an object that `destroy` kept.
    void strongCount(std::uint32_t count) noexcept;
    // Lets passive references test null although the object is still there, and lets them lead to
    // it again.  Copies of them made in between come back too.
    void suspendPassive() noexcept;
    void restorePassive() noexcept;

private:
    friend class Detail::PassiveControl;

    // Adds a strong reference unless the last one is gone already.
    bool addRefIfAlive() const noexcept;

    mutable std::atomic<Detail::PassiveControl *> m_pPassive{nullptr};
    // Last, so that the fields of a derived class may begin right after it.
    mutable std::atomic<std::uint32_t> m_count{0};
};

// An owning reference to a RefCounted object, one pointer wide.  It may be null; `->` and `*` need
// one that isn't.  One StrongRef belongs to one thread at a time, the object may be shared.
template <class T>
class StrongRef {
public:
    // What is referred to.
    using Element = T;

    // Null, or one more reference to an object, which may be null.  A moved reference is left null.
    constexpr StrongRef() noexcept = default;
    constexpr StrongRef(std::nullptr_t) noexcept {}
    explicit StrongRef(T * object) noexcept : m_p(object) {
        if (m_p) m_p->addRef();
    }
    StrongRef(StrongRef const & other) noexcept : StrongRef(other.m_p) {}
    StrongRef(StrongRef && other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    template <class U>
    requires std::convertible_to<U *, T *> StrongRef(StrongRef<U> const & other)
    noexcept : StrongRef(static_cast<T *>(other.get())) {}
    template <class U>
    requires std::convertible_to<U *, T *> StrongRef(StrongRef<U> && other)
    noexcept : m_p(other.detach()) {}
    ~StrongRef() {
        if (m_p) m_p->release();
    }

    // Lets go of the object so far, if any, after taking the new one.
    StrongRef & operator=(StrongRef other) noexcept {
        swap(other);
        return *this;
    }

    // Takes over a count that the caller owns.
    static StrongRef adopt(T * object) noexcept {
        StrongRef ref;
        ref.m_p = object;
        return ref;
    }

    // Gives the count to the caller and leaves the reference null.
    [[nodiscard]] T * detach() noexcept { return std::exchange(m_p, nullptr); }

    // Becomes null, or what the other was.
    void reset() noexcept { StrongRef().swap(*this); }
    void swap(StrongRef & other) noexcept { std::swap(m_p, other.m_p); }

    // The object, which stays owned by its references; null if there is none.
    T * get() const noexcept { return m_p; }
    T * operator->() const noexcept { return m_p; }
    T & operator*() const noexcept { return *m_p; }
    explicit operator bool() const noexcept { return m_p != nullptr; }

private:
    T * m_p = nullptr;
};

// References are equal if they refer to the same object, and ordered by its address.
template <class T, class U>
bool operator==(StrongRef<T> const & a, StrongRef<U> const & b) noexcept {
    return a.get() == b.get();
}
template <class T>
bool operator==(StrongRef<T> const & a, std::nullptr_t) noexcept {
    return a.get() == nullptr;
}
template <class T, class U>
bool operator==(StrongRef<T> const & a, U * b) noexcept {
    return a.get() == b;
}
template <class T, class U>
std::strong_ordering operator<=>(StrongRef<T> const & a, StrongRef<U> const & b) noexcept {
    return std::compare_three_way()(static_cast<void const *>(a.get()),
                                    static_cast<void const *>(b.get()));
}

// A reference that doesn't keep its target alive and tests null once the target is gone; one
// pointer wide.  The target must be derived from RefCounted without virtual inheritance.
//
// While another thread may release the target, only `lock` gives a pointer that can be trusted;
// what `get` returns is for threads that hold the target otherwise.  A PassiveRef may be copied and
// locked by several threads at once, and assigned to by one thread while no other uses it.
template <class T>
class PassiveRef {
public:
    // What is referred to.
    using Element = T;

    // Null, or a reference to an object, which may be null and must be held by a StrongRef for the
    // reference to last.  A moved reference is left null.
    constexpr PassiveRef() noexcept = default;
    constexpr PassiveRef(std::nullptr_t) noexcept {}
    explicit PassiveRef(T * object) : m_pControl(object ? object->passiveControl() : nullptr) {}
    template <class U>
    requires std::convertible_to<U *, T *> PassiveRef(StrongRef<U> const & object)
        : PassiveRef(static_cast<T *>(object.get())) {}
    PassiveRef(PassiveRef const & other) noexcept : m_pControl(other.m_pControl) {
        if (m_pControl) m_pControl->addRef();
    }
    PassiveRef(PassiveRef && other) noexcept
        : m_pControl(std::exchange(other.m_pControl, nullptr)) {}
    template <class U>
    requires std::convertible_to<U *, T *> PassiveRef(PassiveRef<U> const & other)
    noexcept : m_pControl(other.m_pControl) {
        if (m_pControl) m_pControl->addRef();
    }
    ~PassiveRef() {
        if (m_pControl) m_pControl->release();
    }

    // Forgets the object so far.
    PassiveRef & operator=(PassiveRef other) noexcept {
        swap(other);
        return *this;
    }

    // Becomes null, or what the other was.
    void reset() noexcept { PassiveRef().swap(*this); }
    void swap(PassiveRef & other) noexcept { std::swap(m_pControl, other.m_pControl); }

    // An owning reference to the target, or null if it is gone.
    StrongRef<T> lock() const noexcept {
        if (!m_pControl) return nullptr;
        return StrongRef<T>::adopt(static_cast<T *>(m_pControl->lockTarget()));
    }

    // The target, or null if it is gone.
    T * get() const noexcept {
        return m_pControl ? static_cast<T *>(m_pControl->target()) : nullptr;
    }
    T * operator->() const noexcept { return get(); }
    T & operator*() const noexcept { return *get(); }
    explicit operator bool() const noexcept { return get() != nullptr; }

    // The target, also while passive references to it test null because it may come back; for who
    // keeps such objects.
    T * getKept() const noexcept {
        return m_pControl ? static_cast<T *>(m_pControl->keptTarget()) : nullptr;
    }

private:
    template <class U>
    friend class PassiveRef;

    Detail::PassiveControl * m_pControl = nullptr;
};

// References to targets that are gone equal each other and null.
template <class T, class U>
bool operator==(PassiveRef<T> const & a, PassiveRef<U> const & b) noexcept {
    return a.get() == b.get();
}
template <class T, class U>
bool operator==(PassiveRef<T> const & a, StrongRef<U> const & b) noexcept {
    return a.get() == b.get();
}
template <class T>
bool operator==(PassiveRef<T> const & a, std::nullptr_t) noexcept {
    return a.get() == nullptr;
}
template <class T, class U>
bool operator==(PassiveRef<T> const & a, U * b) noexcept {
    return a.get() == b;
}

// What the `make` operations return: a new object on its way to its first StrongRef.  It is null if
// nothing was made.  It owns the object until it is converted; an object that nobody took is
// deleted with it.
template <class T>
class [[nodiscard]] StrongRefCreator {
public:
    // Null: nothing was made.
    constexpr StrongRefCreator() noexcept = default;
    constexpr StrongRefCreator(std::nullptr_t) noexcept {}
    // Takes the new object.
    explicit StrongRefCreator(T * object) noexcept : m_rObject(object) {}
    explicit StrongRefCreator(StrongRef<T> object) noexcept : m_rObject(std::move(object)) {}
    StrongRefCreator(StrongRefCreator &&) noexcept = default;
    StrongRefCreator & operator=(StrongRefCreator &&) noexcept = default;

    // Hands the object over and leaves the creator null.
    template <class U>
    requires std::convertible_to<T *, U *>
    operator StrongRef<U>() && noexcept { return std::move(m_rObject); }

    // The object, still owned by the creator; null if there is none.
    T * get() const noexcept { return m_rObject.get(); }
    T * operator->() const noexcept { return m_rObject.get(); }
    T & operator*() const noexcept { return *m_rObject; }
    explicit operator bool() const noexcept { return static_cast<bool>(m_rObject); }

private:
    StrongRef<T> m_rObject;
};

} // namespace Vn

template <class T>
struct std::hash<Vn::StrongRef<T>> {
    std::size_t operator()(Vn::StrongRef<T> const & ref) const noexcept {
        return std::hash<T *>()(ref.get());
    }
};

#endif
