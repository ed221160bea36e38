// How classes tell each other apart at run time.

#ifndef VN_PLATFORM_DATAMODEL_INTERFACEID_H
#define VN_PLATFORM_DATAMODEL_INTERFACEID_H

#include "Platform/Base/Shared.h"
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
    UniqueString const * get() {
        UniqueString const * const id = m_id.peek();
        return id ? id : intern();
    }

private:
    // Apart, since queries ask for ids all the time.
    [[gnu::noinline]] UniqueString const * intern() {
        return &m_id.get([this] { return UniqueString::find(m_name, true); });
    }

    char const * const m_name;
    Shared<UniqueString const> m_id;
};

// `object` as a T, if it offers that; else null.  `object` may be null.
template <class T, class Object>
T * query(Object * object) {
    return object ? static_cast<T *>(object->queryInterface(T::interfaceId())) : nullptr;
}

} // namespace Vn

#endif
