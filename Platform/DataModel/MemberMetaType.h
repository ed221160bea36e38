// The kinds of persisted fields.

#ifndef VN_PLATFORM_DATAMODEL_MEMBERMETATYPE_H
#define VN_PLATFORM_DATAMODEL_MEMBERMETATYPE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "Platform/DataModel/Export.h"

namespace Vn {

class MemberSet;
class MemberMetaType;

// The answer of a value's migration step; values as of EMigrationStatus.
using EMigrationStatusValue = unsigned;

// Whatever a member set or an entity can be described by.
class VN_DATAMODEL_API MetaType {
public:
    // Joins the MetaTypeMgr, and leaves it at its end.  An empty id isn't listed there.  The first
    // meta type of an id keeps it as long as it lives.  Another one of the same id isn't
    // registered, then or later: nothing can be made of its class, and its end changes nothing.
    MetaType(std::string id, std::string name, unsigned version, std::string baseIdentifier);
    virtual ~MetaType();
    MetaType(MetaType const &) = delete;
    MetaType & operator=(MetaType const &) = delete;

    // The key of the type in documents, the name of its meta type, the version of its members, and
    // the id of its base type, empty if it has none.
    std::string const & identifier() const noexcept { return m_id; }
    std::string const & name() const noexcept { return m_name; }
    unsigned version() const noexcept { return m_version; }
    std::string const & baseIdentifier() const noexcept { return m_baseIdentifier; }
    // False if another meta type had its id first.
    bool isRegistered() const noexcept { return m_bRegistered; }

    // The member set of a version; c_latestVersion stands for the latest, whose set is there from
    // the start, empty until the first object fills it.  Null for another version that no document
    // needed yet.
    MemberSet * memberSet(unsigned version) const;

protected:
    // The set of an older version, made if there is none; `made` says so.
    MemberSet * makeMemberSet(unsigned version, bool & made);

private:
    std::string const m_id;
    std::string const m_name;
    unsigned const m_version;
    std::string const m_baseIdentifier;
    std::unique_ptr<MemberSet> const m_pLatest;
    bool const m_bRegistered;
    mutable std::mutex m_mutex;
    std::map<unsigned, std::unique_ptr<MemberSet>> m_older;
};

// How the data model handles a kind of field.
enum class EMemberKind : std::uint8_t {
    Bool,
    Int,
    UnsignedInt,
    Int64,
    UnsignedInt64,
    Float,
    Double,
    String,           // std::string
    WideString,       // std::wstring
    GlobalizedString, // Vn::GlobalizedString
    StrongRef,
    PassiveRef,
    Vector, // a std::vector of any other kind but Vector
    Value   // an object with a ValueMetaType
};

// One kind of field.  The kinds are shared objects that live to the end of the process.
class VN_DATAMODEL_API MemberMetaType : public MetaType {
public:
    // How the data model handles it.
    EMemberKind kind() const noexcept { return m_kind; }

    // The kind with that name: that of intrinsic types ("bool", "unsigned int", "double",
    // "std::string", ...), "StrongRef", "PassiveRef", "Vector", or the value type name of a value
    // meta type.  Null if there is none.
    static MemberMetaType * find(std::string_view name);

    // The name by which `find` finds it, also in documents.
    std::string const & kindName() const noexcept { return m_kindName; }

protected:
    // The kind, the name for `find`, and what MetaType is given.
    MemberMetaType(EMemberKind kind, std::string kindName, std::string id, std::string name,
                   unsigned version, std::string baseIdentifier);
    ~MemberMetaType() override;

private:
    EMemberKind const m_kind;
    std::string const m_kindName;
};

// The kind of fields of a plain type: bool, int, unsigned int, long long, unsigned long long,
// float, double, std::string, std::wstring.
template <class T>
class VN_DATAMODEL_API IntrinsicMetaType : public MemberMetaType {
public:
    // The one instance.
    static IntrinsicMetaType * get();

private:
    IntrinsicMetaType();
    friend struct IntrinsicMetaTypeMaker;
};

// The kind of fields StrongRef<T>, where T is a class of entities.
class VN_DATAMODEL_API StrongRefMetaType : public MemberMetaType {
public:
    // The one instance.
    static StrongRefMetaType * get();

private:
    StrongRefMetaType();
};

// The kind of fields PassiveRef<T>, where T is a class of entities.
class VN_DATAMODEL_API PassiveRefMetaType : public MemberMetaType {
public:
    // The one instance.
    static PassiveRefMetaType * get();

private:
    PassiveRefMetaType();
};

// Tells how to handle a vector of any element type: six families of functions, the kind of the
// elements, and the block for elements that are containers themselves, which is null; and three
// operations on a place within the vector.
class VN_DATAMODEL_API TemplatizedFunctions {
public:
    // The addresses of the elements of a container, in order.
    class instances {
    public:
        // As of a vector of addresses.
        void push_back(void * element) { m_elements.push_back(element); }
        void clear() noexcept { m_elements.clear(); }
        std::size_t size() const noexcept { return m_elements.size(); }
        void * operator[](std::size_t index) const noexcept { return m_elements[index]; }

    private:
        std::vector<void *> m_elements;
    };

    // The block for a std::vector<T> with elements of kind `elementType`; the caller owns it.
    template <class T>
    static TemplatizedFunctions * makeVector(MemberMetaType * elementType);

    // Bytes for `count` elements; those of one if `count` is 0.
    std::size_t memberBytes(std::size_t count) const { return m_memberBytes(count); }
    // Makes `count` empty containers in raw memory.
    void constructElements(void * memory, std::size_t count) const {
        m_constructElements(memory, count);
    }
    // Ends `count` containers that lie one after the other.
    void destroyContainer(void * containers, std::size_t count) const {
        m_destroyContainer(containers, count);
    }
    // Pushes the address of each element.
    void listElements(void * container, instances & elements) const {
        m_listElements(container, elements);
    }
    // The number of elements.
    std::size_t elementCount(void const * container) const { return m_elementCount(container); }
    // Grows by `count` default elements, as the standard vector grows.
    void appendElements(void * container, std::size_t count) const {
        m_appendElements(container, count);
    }
    // The kind of the elements, their run-time type name, that of what it is stored as for an
    // enumeration, and the block for them, which is null.
    MemberMetaType * elementType() const noexcept { return m_pElementType; }
    char const * elementTypeName() const noexcept { return m_elementTypeName; }
    TemplatizedFunctions * elementFunctions() const noexcept { return nullptr; }

    // The first element; the others follow at a distance of memberBytes(1).
    void * firstElement(void * container) const { return m_firstElement(container); }
    // Makes `count` default elements at `index`, and takes elements out there.
    void insertElements(void * container, std::size_t index, std::size_t count) const {
        m_insertElements(container, index, count);
    }
    void eraseElements(void * container, std::size_t index, std::size_t count) const {
        m_eraseElements(container, index, count);
    }

private:
    TemplatizedFunctions() = default;

    std::size_t (*m_memberBytes)(std::size_t) = nullptr;
    void (*m_constructElements)(void *, std::size_t) = nullptr;
    void (*m_destroyContainer)(void *, std::size_t) = nullptr;
    void (*m_listElements)(void *, instances &) = nullptr;
    std::size_t (*m_elementCount)(void const *) = nullptr;
    void (*m_appendElements)(void *, std::size_t) = nullptr;
    void * (*m_firstElement)(void *) = nullptr;
    void (*m_insertElements)(void *, std::size_t, std::size_t) = nullptr;
    void (*m_eraseElements)(void *, std::size_t, std::size_t) = nullptr;
    MemberMetaType * m_pElementType = nullptr;
    char const * m_elementTypeName = nullptr;
};

// The run-time type name of a field, by which a member set checks its kind; that of what it is
// stored as for an enumeration.
template <class Field>
char const * fieldTypeName() noexcept {
    if constexpr (std::is_enum_v<Field>)
        return typeid(std::underlying_type_t<Field>).name();
    else
        return typeid(Field).name();
}

template <class T>
TemplatizedFunctions * TemplatizedFunctions::makeVector(MemberMetaType * elementType) {
    using Container = std::vector<T>;
    auto * const made = new TemplatizedFunctions;
    made->m_memberBytes = [](std::size_t count) { return (count ? count : 1) * sizeof(T); };
    made->m_constructElements = [](void * memory, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            new (static_cast<Container *>(memory) + i) Container;
    };
    made->m_destroyContainer = [](void * containers, std::size_t count) {
        std::destroy_n(static_cast<Container *>(containers), count);
    };
    made->m_listElements = [](void * container, instances & elements) {
        for (T & element : *static_cast<Container *>(container)) elements.push_back(&element);
    };
    made->m_elementCount = [](void const * container) {
        return static_cast<Container const *>(container)->size();
    };
    made->m_appendElements = [](void * container, std::size_t count) {
        auto & elements = *static_cast<Container *>(container);
        elements.resize(elements.size() + count);
    };
    made->m_firstElement = [](void * container) -> void * {
        return static_cast<Container *>(container)->data();
    };
    made->m_insertElements = [](void * container, std::size_t index, std::size_t count) {
        auto & elements = *static_cast<Container *>(container);
        std::size_t const size = elements.size();
        elements.resize(size + count);
        auto const begin = elements.begin();
        std::rotate(begin + static_cast<std::ptrdiff_t>(index),
                    begin + static_cast<std::ptrdiff_t>(size), elements.end());
    };
    made->m_eraseElements = [](void * container, std::size_t index, std::size_t count) {
        auto & elements = *static_cast<Container *>(container);
        auto const first = elements.begin() + static_cast<std::ptrdiff_t>(index);
        elements.erase(first, first + static_cast<std::ptrdiff_t>(count));
    };
    made->m_pElementType = elementType;
    made->m_elementTypeName = fieldTypeName<T>();
    return made;
}

} // namespace Vn

#endif
