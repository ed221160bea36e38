// The objects of a document.

#ifndef VN_PLATFORM_DATAMODEL_ENTITY_H
#define VN_PLATFORM_DATAMODEL_ENTITY_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/EntityState.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;
class EntityChange;
class EntityMetaType;
class IEntityObserver;
class MetaType;
class Segment;

namespace DataModel {
class EntityAccess;
}

// What a step of migration leaves behind.
enum EMigrationStatus : unsigned { MigrationFailed = 0, MigrationDone = 1 };

// An object that lives in a document: created, changed, undone, saved and loaded by it.
//
// An entity is alive from its constructor until its last StrongRef goes, or until a replay takes
// its creation back.  It is then told so by onPreDeletion, leaves its segment, and every PassiveRef
// to it tests null.  As long as an undo or a redo may bring it back, the object itself is kept; if
// that happens, it is alive again with the same address, id and fields, and the PassiveRefs lead to
// it.
//
// Every class of entities derives from Entity first, so that the address of the object is that of
// its Entity.  All of it runs on the thread of the document.
class VN_DATAMODEL_API Entity : public RefCounted {
public:
    ~Entity() override;
    Entity(Entity const &) = delete;
    Entity & operator=(Entity const &) = delete;

    // The meta-type id at the end of every chain of meta types.
    static std::string s_metaTypeId();
    static UniqueString const * interfaceId();
    UniqueString const * getInterfaceId() const override;
    // This object as the class or interface with that id, or null if it doesn't offer it.
    void * queryInterface(UniqueString const * id) const override;

    // Unique in the document and the same after loading; never used again.
    unsigned long long id() const noexcept { return m_id; }
    // The owners; null once the document is closed.
    Segment * segment() const noexcept { return m_pSegment; }
    Asset * asset() const noexcept;
    // The meta type of the most derived class.
    EntityMetaType * metaType() const { return onMetaType(); }

    // Whether the entity was made by running code and not loaded.
    bool isCreating() const noexcept { return !m_state.test(DataModel::EntityState::Loaded); }
    // Whether it is in its document at present.
    bool isAlive() const noexcept { return m_state.isAlive(); }

    // The version that the entity is being migrated from, for one meta type of its chain.  Without
    // a record of its own it is that of the meta type.
    unsigned migratingVersion(EntityMetaType const * type) const;
    void migratingVersion(EntityMetaType const * type, unsigned version);
    // Has the document run onPostMigrate once everything is loaded.
    void markMigrating();
    bool isMarkedMigrating() const noexcept {
        return m_state.test(DataModel::EntityState::Migrating);
    }

    // Runs onPostCreation and tells the segment's event source.  Called by `make` of each class,
    // once.
    void postCreation(DataChange::ETransact transact);

    // The steps of a migration, called by the document while it loads.
    void postMigrate() { onPostMigrate(); }
    void initializeMigrationHelpers() { doInitializeMigrationHelpers(); }
    void uninitializeMigrationHelpers() { doUninitializeMigrationHelpers(); }

    // The outermost bracket that is open on this entity, or null.
    EntityChange * outerChange() const noexcept;

    // Attaches and detaches an observer, which isn't owned and must detach itself before it ends.
    // Null is ignored, and so is one that is there already or isn't.
    void subscribe(IEntityObserver * observer);
    void unsubscribe(IEntityObserver * observer);

    // One line for a person who is looking for a mistake.  It is neither translated nor meant to be
    // read back.
    std::wstring toString() const { return onToString(); }

protected:
    // Enters the object into the segment as a new one, with a new id.
    explicit Entity(Segment * segment);
    // The same for one that is being loaded, with its id.
    Entity(Segment * segment, unsigned long long id);

    // For setters that have stored a persisted member, at the address `member`, without a bracket:
    // the document differs from its file until the next save, which writes this entity.  No
    // observer is told, there is no step for it, and undo and redo stay as they are; what was
    // stored isn't undone, not even if a bracket is open on this entity.  Without effect in a
    // segment that isn't saved, on an entity that isn't alive, and once the document is closed.
    void markModified(void const * member) noexcept;

    // The virtual operations.  Their order is binding, since modules built at other times call them
    // by their place; it begins with what Object and RefCounted declare: the destructor,
    // getInterfaceId, queryInterface and destroy.  The hooks among them are called by the document,
    // and an override calls that of its base first.

    // Right before onPreDeletion, once for each time that the entity leaves the document, so that a
    // class can let go of what isn't the document's.  All references still lead where they led.
    // Nothing by default.
    virtual void onPreDelete();

public:
    // This object, or a part of it, as the one that a meta type describes; null if it doesn't.
    virtual void * queryMTInterface(MetaType const * type);

protected:
    // Around a change of members; details may be null.
    virtual void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                             DataChange * details);
    virtual void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                              DataChange * details);
    // Before the entity leaves the document.  If it comes back, so do the references and lists that
    // this let go, with or without a bracket; of other members, what was changed within a bracket.
    virtual void onPreDeletion(DataChange::ETransact transact);
    // Once it is complete.
    virtual void onPostCreation(DataChange::ETransact transact);
    // After the outermost transaction in which the entity changed was committed, and after the undo
    // or redo that changed it, whose replay bit is then set: once, whatever the number of changes,
    // with the whole document as it is to stay; after a replay that changes nothing but numbers,
    // other entities may still be to get theirs.  An entity that isn't in the document by then
    // isn't told, nor is one whose transaction was aborted.  Nothing by default.
    virtual void onPostTransactChange(DataChange::ETransact transact);
    // The same for an entity that came, which isn't told of changes too.
    virtual void onPostTransactCreation(DataChange::ETransact transact);
    // As of toString.
    virtual std::wstring onToString() const;
    virtual EntityMetaType * onMetaType() const = 0;
    // The bytes of the object beyond its instance size, for the ceiling of the undo history.  The
    // meta type asks for them unless it knows better.
    virtual std::size_t onSizeInBytes() const;
    // Lifts the entity to the latest version, once everything is loaded.
    virtual void onPostMigrate();

public:
    // The version of the class, or of the file while the entity is migrating.
    virtual unsigned version() const;

protected:
    // Around the migration of an entity, for what a class needs only then.
    virtual void doInitializeMigrationHelpers();
    virtual void doUninitializeMigrationHelpers();

private:
    friend class Asset;
    friend class DataModel::EntityAccess;
    friend class DocumentFile;
    friend class EntityChange;
    friend class EntityMetaType;

    // In the place that RefCounted gives it.
    void destroy() noexcept override;
    template <class Tell>
    void tellObservers(Tell && tell);
    template <class Tell>
    [[gnu::noinline]] void tellThem(Tell & tell);

    DataModel::EntityState m_state;
    unsigned long long const m_id;
    Segment * m_pSegment;
};

} // namespace Vn

#endif
