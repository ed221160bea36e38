// The parts of a document.

#ifndef VN_PLATFORM_DATAMODEL_SEGMENT_H
#define VN_PLATFORM_DATAMODEL_SEGMENT_H

#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/EntityEvents.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;
class MigrationHelper;

// A kind of segment.
class VN_DATAMODEL_API SegmentType {
public:
    // The kinds that there are.  The numbers stand in files: none is used again for another kind.
    enum EVantorType : unsigned {
        DesignSegment = 1,
        TransientSegment = 2,  // never written
        StandaloneSegment = 3, // stands by itself: written, and never migrated
    };

    // By its number and a name for a person.
    SegmentType(EVantorType type, std::string name) : m_type(type), m_name(std::move(name)) {}

    // What the constructor was given.
    EVantorType type() const noexcept { return m_type; }
    std::string const & name() const noexcept { return m_name; }

private:
    EVantorType const m_type;
    std::string const m_name;
};

// The kinds of segments, shared by all documents.
class VN_DATAMODEL_API SegmentTypeMgr {
public:
    // The one instance.
    static SegmentTypeMgr * get();
    // Null for a number that is none.
    SegmentType * segmentType(unsigned type) const;

private:
    SegmentTypeMgr() = default;
};

// A part of a document, with entities and with roots under keys.  It owns the roots, and nothing
// else.
class VN_DATAMODEL_API Segment {
public:
    // Creates a segment of the asset, which owns it.  An asset has one segment of each kind: if
    // there is one already, the answer is that.  With `transient` the segment isn't written,
    // whatever its kind says.  Null if the asset or the kind is null.
    static Segment * create(Asset * asset, SegmentType * type, bool transient);
    ~Segment();
    Segment(Segment const &) = delete;
    Segment & operator=(Segment const &) = delete;

    // What `create` was given.
    Asset * asset() const noexcept { return m_pAsset; }
    SegmentType * segmentType() const noexcept { return m_pType; }
    // Transient segments aren't saved; these two kinds are never migrated.
    bool isTransient() const noexcept { return m_bTransient; }
    bool isStandalone() const noexcept { return m_pType->type() == SegmentType::StandaloneSegment; }

    // The root under a key, or null.
    StrongRef<Entity> rootEntity(std::string_view key) const;
    // Makes an entity of this segment the root under a key, in place of the one before.  Null takes
    // the key out.  It is a change of the document and can be undone.
    void addRoot(StrongRef<Entity> const & entity, std::string const & key);
    // The keys in the order in which they came.
    void rootEntityIds(std::vector<std::string> & keys) const;
    // The key of a root; null if the entity is none.
    std::string const * rootKey(Entity const * entity) const noexcept;

    // Who tells of entities that come and go.
    EntityEventSource * entityEventSource() const noexcept { return m_pEvents.get(); }

    // The version of a meta type in the file being loaded; the present version if that has none.
    unsigned persistedMetaTypeVersion(MetaType const * type) const;

    // Keeps a helper per entity and meta type, without owning it.
    void registerMigrationHelper(void * entity, MetaType * type, MigrationHelper * helper);
    void unregisterMigrationHelper(void * entity, MetaType * type);
    // Null if there is none.
    MigrationHelper * migrationHelper(void const * entity, MetaType const * type) const;

private:
    friend class Asset;
    friend class DataModel::EntityAccess;
    friend class DocumentFile;

    Segment(Asset * asset, SegmentType * type, bool transient);
    // Roots stand in the order of their places, which are numbers with gaps: a place never changes,
    // and is never given again except to the key that had it, when an undo brings that back.

    // Puts a root in its place without recording it.  A key that is there stays where it is.  Null
    // takes the key out.  Changes nothing if memory runs out.
    void placeRoot(StrongRef<Entity> entity, std::string const & key, std::size_t place);
    // The place of a key; if there is none, that of the next new one.
    std::size_t rootPlace(std::string_view key) const noexcept;
    // The root under a key, or null.
    Entity * rootUnder(std::string_view key) const noexcept;
    void clearRoots() noexcept;

    Asset * const m_pAsset;
    SegmentType * const m_pType;
    bool const m_bTransient;
    std::map<std::size_t, std::pair<std::string, StrongRef<Entity>>> m_roots; // by their places
    std::map<std::string_view, std::size_t> m_rootPlaces; // by the keys, which m_roots has
    std::set<std::pair<Entity const *, std::size_t>> m_placesOfRoots;
    std::size_t m_nextRootPlace = 0;
    // Entities that were loaded and that nothing owned: kept, so that opening a document loses
    // nothing.
    std::vector<StrongRef<Entity>> m_unowned;
    std::unique_ptr<EntityEventSource> const m_pEvents;
    std::map<std::pair<void const *, MetaType const *>, MigrationHelper *> m_helpers;
};

} // namespace Vn

#endif
