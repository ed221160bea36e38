// How classes tell each other apart at run time.

#ifndef VN_PLATFORM_BASE_INTERFACEID_H
#define VN_PLATFORM_BASE_INTERFACEID_H

#include "Platform/Base/Shared.h"
#include "Platform/Base/UniqueString.h"

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

// How others know a class.
struct NamedClass {
    // The full name with the namespaces, a literal; it is also the interface id.
    char const * m_fullName;
};

// What a class X has beside its own that derives from a base and from interfaces, each of which may
// answer queryInterface.  X names itself by a NamedClass, or by another struct with that field:
//
//     class Shelf : public Identified<Shelf, Furniture, ILockable> {
//     public:
//         static constexpr NamedClass c_class{"Vn::Shelf"};
//     };
//
// The base brings the virtual operations.  A class that introduces them declares them itself, since
// their place among its own is binding.
template <class X, class Base, class... Interfaces>
class Identified : public Base, public Interfaces... {
public:
    // The id of X, the same pointer at every call.
    static UniqueString const * interfaceId() {
        static constinit InterfaceId s_id(X::c_class.m_fullName);
        return s_id.get();
    }
    // The id of the object's own class.
    UniqueString const * getInterfaceId() const override { return interfaceId(); }
    // The object as the class or interface with an id: itself, its base, its interfaces, in this
    // order.  Null if none of them is meant.
    void * queryInterface(UniqueString const * id) const override {
        if (id == interfaceId()) return const_cast<X *>(static_cast<X const *>(this));
        void * found = Base::queryInterface(id);
        if (!found) static_cast<void>(((found = ask<Interfaces>(id)) || ...));
        return found;
    }

protected:
    using Base::Base;

private:
    template <class Interface>
    void * ask(UniqueString const * id) const {
        if constexpr (requires { Interface::interfaceId(); })
            return static_cast<Interface const *>(this)->Interface::queryInterface(id);
        else
            return nullptr;
    }
};

// `object` as a T, if it offers that; else null.  `object` may be null.
template <class T, class Object>
T * query(Object * object) {
    return object ? static_cast<T *>(object->queryInterface(T::interfaceId())) : nullptr;
}

} // namespace Vn

#endif
