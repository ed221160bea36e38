// The pattern that every persisted class of this library follows, written once.
//
// A class X of entities names itself, its meta type and its members, and has the rest from here:
//
//     class Shelf : public Persisted<Shelf, ManagedGroupEntity> {
//     public:
//         static constexpr PersistedClass c_class{"Vn::Furniture::Shelf",
//                                                 "0D3C7A5E-6C1B-4B0A-9D52-0E6B3C7F1A11", 0};
//         static EntityMetaType * s_metaType();
//         static StrongRefCreator<Shelf> make(PassiveRef<Entity> const & parent) {
//             return create(parent);
//         }
//
//     protected:
//         explicit Shelf(PassiveRef<Entity> const & parent);
//         Shelf(Segment * segment, unsigned long long id);
//
//     private:
//         friend class Vn::Managed::PersistedAccess;
//         void initializeMemberSet(unsigned version, MemberSet * set);
//
//         unsigned m_boards = 0;
//     };
//
// Each constructor calls initializeMemberSetIfNeeded() as its last step.  initializeMemberSet adds
// the members of the version that it is asked for: the latest one for the first object of the
// class, an older one for the first object that comes from a file of that version.  s_metaType()
// returns the address of the one static object of a class ShelfMetaType, derived from
// PersistedMetaType<Shelf>.
//
// The member set of a class is built by the first object of it, whichever thread makes that; all
// later objects pay one test under a reader's lock.

#ifndef VN_SERVER_COMMONDATA_MANAGED_PERSISTEDENTITY_H
#define VN_SERVER_COMMONDATA_MANAGED_PERSISTEDENTITY_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <boost/format.hpp>
#include <tbb/spin_rw_mutex.h>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/Base/ScopedLock.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MemberMetaType.h"
#include "Platform/DataModel/MemberSet.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/MigrationHelper.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Types/GlobalizedString.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/AddInIdentifier.h"

namespace Vn::Managed {

// How a class is known: to scripts and other modules by its name, to documents by its id.
struct PersistedClass {
    // The full name with the namespaces, which is also the interface id.
    char const * m_fullName;
    // The key of the class in documents.  It is never parsed, and never changed.
    char const * m_metaTypeId;
    // The version of the members.
    unsigned m_version;

    // The name without the namespaces.
    constexpr char const * name() const noexcept {
        std::string_view const full = m_fullName;
        std::size_t const colon = full.rfind(':');
        return colon == full.npos ? m_fullName : m_fullName + colon + 1;
    }
};

template <class T, class... Types>
concept IsOneOf = (std::is_same_v<T, Types> || ...);

// The kind of fields of a type that isn't a class of values.  There is none for other types than
// those below and the intrinsic ones, which doesn't compile.
template <class Field>
struct FieldKind {
    // The kind of an intrinsic type.
    static MemberMetaType * get() {
        static_assert(IsOneOf<Field, bool, int, unsigned int, long long, unsigned long long, float,
                              double, std::string, std::wstring>,
                      "there is no kind for fields of this type");
        return IntrinsicMetaType<Field>::get();
    }
};
// An enumeration, which is kept as its underlying whole number.
template <class Field>
requires std::is_enum_v<Field>
struct FieldKind<Field> : FieldKind<std::underlying_type_t<Field>> {
};
// A text in the language of the user.
template <>
struct FieldKind<GlobalizedString> {
    // That kind.
    static MemberMetaType * get() { return MemberMetaType::find("GlobalizedString"); }
};
// An owning reference to an entity.
template <class T>
struct FieldKind<StrongRef<T>> {
    // That kind.
    static MemberMetaType * get() { return StrongRefMetaType::get(); }
};
// A reference to an entity that owns nothing.
template <class T>
struct FieldKind<PassiveRef<T>> {
    // That kind.
    static MemberMetaType * get() { return PassiveRefMetaType::get(); }
};

// Adds a field that isn't a container to a member set.  A kind that the field isn't of is refused,
// as by MemberSet::addNewMember; without one it is that of the field's type.
template <class Field>
Member * addMember(MemberSet * set, char const * name, Field & field, MemberMetaType * kind) {
    return set->addNewMember(name, &field, fieldTypeName<Field>(), kind, nullptr, nullptr);
}
template <class Field>
Member * addMember(MemberSet * set, char const * name, Field & field) {
    return addMember(set, name, field, FieldKind<Field>::get());
}

// Adds a vector to a member set.  The kind of the elements as above.
template <class Element>
Member * addVector(MemberSet * set, char const * name, std::vector<Element> & field,
                   MemberMetaType * elementKind) {
    return set->addNewMember(name, &field, typeid(field).name(), MemberMetaType::find("Vector"),
                             TemplatizedFunctions::makeVector<Element>(elementKind), nullptr);
}
template <class Element>
Member * addVector(MemberSet * set, char const * name, std::vector<Element> & field) {
    return addVector(set, name, field, FieldKind<Element>::get());
}

// A format for lines that are meant for a person who is looking for a mistake; it asks no locale.
inline boost::wformat debugFormat(wchar_t const * text) {
    return boost::wformat(text, std::locale::classic());
}

// Has `fill` begin and fill a member set, unless that was done: by the first object of its class,
// whichever thread makes that.  `level` is the place of the lock in the order of locks.  If `fill`
// throws, the set is empty again, and the next object fills it.
template <class Fill>
void fillOnce(MemberSet * set, unsigned level, Fill && fill) {
    ScopedLockBase const scope(LockShared, level);
    tbb::spin_rw_mutex_v3::scoped_lock lock;
    if (scope.isLocking()) lock.acquire(set->mutex(), false);
    if (set->initialized()) return;
    if (scope.isLocking()) lock.upgrade_to_writer();
    // The upgrade may have let another thread go first.
    if (set->initialized()) return;
    try {
        fill();
    } catch (...) {
        set->clear();
        throw;
    }
}

// The steps of the pattern that look the same for all classes, and its way to what classes keep to
// themselves.
class VN_COMMONDATA_API PersistedAccess {
private:
    template <class, class, class...>
    friend class Persisted;
    template <class>
    friend class PersistedMetaType;

    static void markCoreAddIn(EntityMetaType & type);
    static MemberSet * baseMemberSet(EntityMetaType const & type);
    // The older version that an object is being loaded from, if that has to be migrated.
    static std::optional<unsigned> migratesFrom(Entity const & entity, EntityMetaType const & type);
    // Whether an object can be made there: in a segment, or in that of a parent.
    static bool takesObjects(Segment const * segment) noexcept { return segment != nullptr; }
    static bool takesObjects(PassiveRef<Entity> const & parent) noexcept {
        return parent && parent->segment();
    }

    template <class X>
    static void initializeMemberSet(X & object, unsigned version, MemberSet * set) {
        object.initializeMemberSet(version, set);
    }
    template <class X, class... Arguments>
    static X * construct(Arguments &&... arguments) {
        return new X(std::forward<Arguments>(arguments)...);
    }
};

// What a persisted class X has beside its own: derived from its persisted base and from interfaces,
// each of which may answer queryInterface.  Bases see each other in this order everywhere.
template <class X, class Base, class... Interfaces>
class Persisted : public Identified<X, Base, Interfaces...> {
public:
    // The class that X persists on top of.
    using PersistedBase = Base;

    // The id of the meta type, as of X::c_class.
    static std::string s_metaTypeId() { return X::c_class.m_metaTypeId; }
    // The members of the latest version; complete as soon as there was an object.
    MemberSet * memberSet() const { return X::s_metaType()->memberSet(c_latestVersion); }

    // The version of X that the object is being migrated from; the latest if it isn't.
    unsigned version() const override { return this->migratingVersion(X::s_metaType()); }
    // Records that version.
    void version(unsigned version) { this->migratingVersion(X::s_metaType(), version); }

    // The object as what a meta type describes; null if it isn't one of X's chain.
    void * queryMTInterface(MetaType const * type) override {
        return type == X::s_metaType() ? static_cast<X *>(this) : Base::queryMTInterface(type);
    }

    using Base::postMigrate;
    // What a step of X's own leaves behind; classes without one are done.
    EMigrationStatus postMigrate(unsigned) { return MigrationDone; }
    // What reads members that X no longer has; null if there is none.  A class that needs it has
    // this and the next two of its own.
    MigrationHelper *& migrationHelper() noexcept { return m_pMigrationHelper; }
    // Makes the helper; null for a class that needs none.
    MigrationHelper * createMigrationHelper() { return nullptr; }
    // Ends the helper; false if there was none.
    bool deleteMigrationHelper() { return false; }

protected:
    using Identified<X, Base, Interfaces...>::Identified;

    // The one way in which running code makes an object.  `place` is the parent or the segment;
    // null if that is null, gone, or in a document that is closed.
    template <class Place, class... Arguments>
    static StrongRefCreator<X> create(Place && place, Arguments &&... arguments) {
        if (!PersistedAccess::takesObjects(place)) return nullptr;
        StrongRefCreator<X> made(PersistedAccess::construct<X>(
            std::forward<Place>(place), std::forward<Arguments>(arguments)...));
        made->postCreation(DataChange::TransactDirect);
        return made;
    }

    // The last step of each constructor of X.
    void initializeMemberSetIfNeeded() {
        EntityMetaType * const type = X::s_metaType();
        MemberSet * const set = type->memberSet(c_latestVersion);
        fillOnce(set, 0, [&] { fillMemberSet(*type, set); });
        m_pMigrationHelper = nullptr;
        if (!this->isCreating()) beginMigration(*type);
    }

    // What is still to be migrated is migrated once the base is.
    void onPostMigrate() override {
        Base::onPostMigrate();
        EntityMetaType * const type = X::s_metaType();
        if (this->migratingVersion(type) < type->version())
            this->migratingVersion(type, type->version());
    }
    // The base's helpers, since X has none unless it says so.
    void doInitializeMigrationHelpers() override { Base::doInitializeMigrationHelpers(); }
    // The same for their end.
    void doUninitializeMigrationHelpers() override { Base::doUninitializeMigrationHelpers(); }

private:
    EntityMetaType * onMetaType() const override { return X::s_metaType(); }

    void fillMemberSet(EntityMetaType & type, MemberSet * set) {
        PersistedAccess::markCoreAddIn(type);
        set->initialize(static_cast<X *>(this), X::c_class.name());
        PersistedAccess::initializeMemberSet(static_cast<X &>(*this), type.version(), set);
        set->base(PersistedAccess::baseMemberSet(type));
    }

    void beginMigration(EntityMetaType & type) {
        std::optional<unsigned> const from = PersistedAccess::migratesFrom(*this, type);
        if (!from) return;
        this->migratingVersion(&type, *from);
        static_cast<X *>(this)->createMigrationHelper();
        // The most derived meta type so far, since the constructors run base first.
        this->metaType()->migratingMemberSetIfNeeded(this, *from);
        this->markMigrating();
    }

    MigrationHelper * m_pMigrationHelper = nullptr;
};

// The base of XMetaType, of which there is one static object.  A class X with operations that only
// its derived classes have, and so without objects of its own, is abstract to documents too.
template <class X>
class PersistedMetaType : public EntityMetaType {
public:
    // `addInIdentifier` is that of the add-in that brings X.
    explicit PersistedMetaType(std::string addInIdentifier = CommonDataAddInIdentifier())
        : EntityMetaType(std::move(addInIdentifier), X::s_metaTypeId(),
                         std::string(X::c_class.name()) + "MetaType", X::c_class.m_version,
                         X::PersistedBase::s_metaTypeId(),
                         std::is_abstract_v<X> ? TypeAbstract : TypeConcrete) {}

private:
    void onMigratingMemberSet(Entity * entity, unsigned version, MemberSet * set) override {
        set->initialize(entity, X::c_class.name());
        PersistedAccess::initializeMemberSet(static_cast<X &>(*entity), version, set);
    }
    StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) override {
        if constexpr (std::is_abstract_v<X>)
            return nullptr;
        else
            return StrongRef<Entity>(PersistedAccess::construct<X>(segment, id));
    }
    std::size_t onInstanceSize() const override { return sizeof(X); }
};

} // namespace Vn::Managed

#endif
