// How classes tell each other apart at run time.

#ifndef VN_PLATFORM_DATAMODEL_INTERFACEID_H
#define VN_PLATFORM_DATAMODEL_INTERFACEID_H

#include <atomic>
#include <string_view>

#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/SpinLock.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

// The id of a class or an interface, interned at its first use and kept.  Any thread may ask.
class InterfaceId {
public:
    // `name` is the full name of the class with its namespaces, and must be a literal.
    constexpr explicit InterfaceId(char const * name) noexcept : m_name(name) {}
    InterfaceId(InterfaceId const &) = delete;
    InterfaceId & operator=(InterfaceId const &) = delete;

    // The id, the same pointer at every call.
    UniqueString const * get() noexcept {
        UniqueString const * id = m_pId.load(std::memory_order_acquire);
        return id ? id : make();
    }

private:
    UniqueString const * make() noexcept {
        ScopedLockBase const scope(1, 2);
        if (!scope.isLocking()) return makeAlone();
        SpinLockGuard const guard(m_lock);
        return makeAlone();
    }
    UniqueString const * makeAlone() noexcept {
        UniqueString const * id = m_pId.load(std::memory_order_relaxed);
        if (!id) {
            id = UniqueString::find(m_name, true);
            m_pId.store(id, std::memory_order_release);
        }
        return id;
    }

    char const * const m_name;
    std::atomic<UniqueString const *> m_pId{nullptr};
    SpinLock m_lock;
};

// `object` as a T, if it offers that; else null.  `object` may be null.
template <class T, class Object>
T * query(Object * object) {
    return object ? static_cast<T *>(object->queryInterface(T::interfaceId())) : nullptr;
}

} // namespace Vn

#endif
