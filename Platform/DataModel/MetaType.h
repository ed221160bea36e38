// The companion objects by which the data model knows classes.

#ifndef VN_PLATFORM_DATAMODEL_METATYPE_H
#define VN_PLATFORM_DATAMODEL_METATYPE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/MemberMetaType.h"
#include "Platform/DataModel/MemberSet.h"

namespace Vn {

class MigrationHelper;
class Segment;

namespace DataModel {
class MemberLayout;
}

// Stands for one version of the word "latest".
inline constexpr unsigned c_latestVersion = 0xFFFFFFFFU;

// One class of entities.  There is one instance, a static object; its address is the identity of
// the type.  It joins the MetaTypeMgr when it is constructed and leaves it when it is destroyed.
//
// The virtual operations stand in an order that other modules rely on.
class VN_DATAMODEL_API EntityMetaType : public MetaType {
public:
    // What the class is for.  Concrete classes are created by the data model when a document loads.
    enum EType : unsigned { TypeAbstract = 1, TypeConcrete = 2 };

    // The bit in `flags` that marks the types of a core add-in.
    static constexpr std::uint32_t c_coreAddInFlag = 4;

    // `addInIdentifier` names the add-in that brings the class, `id` is the key of the class in
    // documents, `name` the name of the meta type's own class, `version` that of the members, and
    // `baseIdentifier` the id of the base class.
    EntityMetaType(std::string addInIdentifier, std::string id, std::string name, unsigned version,
                   std::string baseIdentifier, EType type);
    ~EntityMetaType() override;

    // What the constructor was given.
    std::string const & addInIdentifier() const noexcept { return m_addInIdentifier; }
    EType type() const noexcept { return m_type; }

    // The meta type of the base class; null at the end of the chain, or if it isn't known.
    EntityMetaType const * base() const;
    // Whether the class is `type` or derived from it.
    bool isA(MetaType const * type) const;

    // If there is no member set for that version yet, makes it and has it filled.
    void migratingMemberSetIfNeeded(Entity * entity, unsigned version);

    // A new object for an entity that is being loaded.
    StrongRef<Entity> createEntity(Segment * segment, unsigned long long id) {
        return onCreateEntity(segment, id);
    }

    // The bytes of an object, and of an entity with what it has beyond that.
    std::size_t instanceSize() const { return onInstanceSize(); }
    std::size_t sizeInBytes(Entity const & entity) const {
        return onInstanceSize() + onSizeInBytes(&entity);
    }

    // Bits about the type; set only.
    std::uint32_t flags() const noexcept { return m_flags.load(std::memory_order_relaxed); }
    void addFlags(std::uint32_t flags) noexcept {
        m_flags.fetch_or(flags, std::memory_order_relaxed);
    }

    // All members of the class and its bases, base first, in their latest versions.  At least one
    // object of the class must have been constructed.  For the data model's own use.
    DataModel::MemberLayout const & layout();

private:
    // `set->initialize(entity, "X")`, then the class's members of that version.
    virtual void onMigratingMemberSet(Entity * entity, unsigned version, MemberSet * set) = 0;
    virtual StrongRef<Entity> onCreateEntity(Segment * segment, unsigned long long id) = 0;
    // The bytes of an entity beyond the instance size; unless overridden what the entity says
    // itself.
    virtual std::size_t onSizeInBytes(Entity const * entity) const;
    // Told around the saving and loading of each entity of the class.
    virtual void onPreSave(Entity * entity);
    virtual void onPostSave(Entity * entity);
    virtual void onPreLoad(Entity * entity);
    virtual void onPostLoad(Entity * entity);
    // Told once of each entity of an older version, after its own onPostMigrate.
    virtual void onPostMigrate(Entity * entity);
    virtual std::size_t onInstanceSize() const = 0;

    friend class DocumentFile;

    std::string const m_addInIdentifier;
    EType const m_type;
    std::atomic<std::uint32_t> m_flags{0};
    std::atomic<DataModel::MemberLayout *> m_pLayout{nullptr};
    mutable std::atomic<EntityMetaType const *> m_pBaseType{nullptr};
};

// One class of values that stand inside entities, such as points.  A value has members of its own.
class VN_DATAMODEL_API ValueMetaType : public MemberMetaType {
public:
    // Where a value is being handled; nothing at present.
    class VisitorContext {};

    // The key of the class in documents, the name of the meta type, the version of the members, the
    // name of the class of the values, and the id of the base, empty if there is none.
    ValueMetaType(std::string id, std::string name, unsigned version, std::string valueTypeName,
                  std::string baseIdentifier);
    ~ValueMetaType() override;

    // The name of the class of the values.
    std::string const & valueTypeName() const noexcept { return m_valueTypeName; }

    // The public road to the virtual operations below.
    std::size_t sizeInBytes(VisitorContext const & context = {}) const {
        return doSizeInBytes(context);
    }
    void * construct(void * memory, VisitorContext const & context = {}) const {
        return doConstruct(memory, context);
    }
    void * construct() const { return doConstruct(); }
    void destruct(void * value) const { doDestruct(value); }
    std::wstring toString(void * value, VisitorContext const & context = {}) const {
        return doToString(value, context);
    }
    unsigned migratingVersion(void * value, VisitorContext const & context = {}) const {
        return doMigratingVersion(value, context);
    }
    void migratingVersion(void * value, unsigned version,
                          VisitorContext const & context = {}) const {
        doMigratingVersion(value, version, context);
    }
    void * queryMTInterface(void * value) const { return doQueryMTInterface(value); }
    EMigrationStatusValue postMigrate(void * value, unsigned version,
                                      VisitorContext const & context = {}) const {
        return onPostMigrate(value, version, context);
    }

    // The latest member set, filled from `value` if no object has filled it yet.
    MemberSet * memberSetOf(void * value);

private:
    virtual std::size_t doSizeInBytes(VisitorContext const & context) const = 0;
    // Default-constructs a value in `memory`, which may be null; returns `memory`.
    virtual void * doConstruct(void * memory, VisitorContext const & context) const = 0;
    // A new value, ended by doDestruct; null is ignored there.
    virtual void * doConstruct() const = 0;
    virtual void doDestruct(void * value) const = 0;
    virtual std::wstring doToString(void * value, VisitorContext const & context) const = 0;
    virtual MigrationHelper * doMigrationHelper(void * value) const;
    virtual unsigned doMigratingVersion(void * value, VisitorContext const & context) const;
    virtual void doMigratingVersion(void * value, unsigned version,
                                    VisitorContext const & context) const;
    virtual void * doQueryMTInterface(void * value) const = 0;
    virtual EMigrationStatusValue onPostMigrate(void * value, unsigned version,
                                                VisitorContext const & context) const;
    virtual MigrationHelper * doCreateMigrationHelper(void * value) const;
    virtual bool doDeleteMigrationHelper(void * value) const;
    virtual void onMigratingMemberSet(void * value, unsigned version, MemberSet * set,
                                      VisitorContext const & context) const = 0;

    std::string const m_valueTypeName;
};

// All meta types of the process, by id.
class VN_DATAMODEL_API MetaTypeMgr {
public:
    // The one instance.
    static MetaTypeMgr * get();

    // The meta type with that id, compared byte for byte; null if there is none.
    MetaType * metaType(std::string_view id) const;
    // The same for a class of entities.
    EntityMetaType * entityMetaType(std::string_view id) const;
    // All ids, sorted.
    std::vector<std::string> ids() const;

private:
    friend class MetaType;

    MetaTypeMgr() = default;
    bool add(MetaType * type);
    void remove(MetaType * type);

    mutable std::mutex m_mutex;
    std::map<std::string, MetaType *, std::less<>> m_types;
};

} // namespace Vn

#endif
