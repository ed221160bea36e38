// A document.

#ifndef VN_PLATFORM_DATAMODEL_ASSET_H
#define VN_PLATFORM_DATAMODEL_ASSET_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

class AssetAdapter;
class MetaType;
class Request;

namespace DataModel {
class EntityAccess;
class EntityTable;
} // namespace DataModel

// A kind of document.
class VN_DATAMODEL_API AssetType {
public:
    // By its identifier, such as the name of the application's documents.  Throws
    // std::invalid_argument if that is empty, since an add-in that serves no type has an empty one.
    explicit AssetType(std::string identifier);
    // What the constructor was given.
    std::string const & identifier() const noexcept { return m_identifier; }

private:
    std::string const m_identifier;
};

// A document: its segments, its history, and the file it was saved to.
class VN_DATAMODEL_API Asset : public RefCounted {
public:
    // An empty document with a design segment, never saved.  `type` may be null and must outlive
    // it.
    static StrongRefCreator<Asset> make(AssetType const * type);
    ~Asset() override;

    // How many documents there are in the process.  One counts until the last of what it holds is
    // gone.  Any thread may ask.
    static std::size_t openAssets() noexcept;

    // What `make` was given.
    AssetType const * assetType() const noexcept { return m_pType; }

    // The segment of a kind; null if there is none.
    Segment * segment(SegmentType const * type) const noexcept;
    Segment * segment(unsigned type) const noexcept;
    // All segments, in the order of their creation.
    std::size_t segments() const noexcept { return m_segments.size(); }
    Segment * segmentAt(std::size_t index) const { return m_segments[index].get(); }

    // The adapter that equips the document, owned by it; null until one is set.
    AssetAdapter * adapter() const noexcept { return m_pAdapter.get(); }
    void adapter(std::unique_ptr<AssetAdapter> adapter);

    // Changes, transactions, undo and redo.
    ChangeHistory & history() noexcept { return m_history; }
    ChangeHistory const & history() const noexcept { return m_history; }

    // The entity with an id, or null if it isn't alive.
    StrongRef<Entity> entity(unsigned long long id) const;
    // The number of entities that are alive, and all of them in the order of their ids.
    std::size_t entities() const noexcept;
    std::vector<Entity *> allEntities() const;

    // Whether a document of an older version is being loaded, and whether the document as a whole
    // is in a migration of its own, in which the entities do nothing.
    bool isMigrating() const noexcept { return m_bMigrating; }
    bool isAssetMigrating() const noexcept { return m_bAssetMigrating; }
    void assetMigrating(bool migrating) noexcept { m_bAssetMigrating = migrating; }
    // Whether it is being loaded at all.
    bool isLoading() const noexcept { return m_bLoading; }

    // Whether something differs from what was last saved or loaded.
    bool isDirty() const noexcept;

    // The file that the document was last loaded from or saved to; empty if it has none.
    std::filesystem::path const & file() const noexcept { return m_file; }

    // Runs a request in a transaction of its name, and deletes it.  The status is what the request
    // set; unless it is ok, or if the request throws, everything it did is taken back.
    Status run(std::unique_ptr<Request> request);

private:
    friend class AssetAdapter;
    friend class DataModel::EntityAccess;
    friend class DocumentFile;
    friend class Entity;
    friend class Segment;

    explicit Asset(AssetType const * type);

    // The id of a new entity.  Throws std::length_error once there are none left.
    unsigned long long takeId();
    // Enter and leave the table of entities.
    void enter(Entity & entity);
    void leave(Entity & entity) noexcept;
    // Notes that an entity differs from what was saved.
    void markDirty(Entity & entity) noexcept;
    void note(std::vector<unsigned long long> & ids, unsigned long long id) noexcept;
    // Leaves an entity that is dead for good to those that hold it.
    void abandon(Entity & entity) noexcept;

    // Counts the document from the first to the last moment of its members.
    struct Counted {
        Counted() noexcept;
        ~Counted();
        Counted(Counted const &) = delete;
        Counted & operator=(Counted const &) = delete;
    };

    [[no_unique_address]] Counted const m_counted;
    AssetType const * const m_pType;
    std::unique_ptr<DataModel::EntityTable> const m_pTable;
    ChangeHistory m_history;
    std::vector<std::unique_ptr<Segment>> m_segments;
    std::unique_ptr<AssetAdapter> m_pAdapter;
    unsigned long long m_nextId = 1;
    bool m_bMigrating = false;
    bool m_bAssetMigrating = false;
    bool m_bLoading = false;
    bool m_bClosing = false;

    // Entities that are dead for good and still held.
    std::unordered_set<Entity *> m_held;

    // Side tables of what few entities have.
    std::unordered_map<Entity const *, std::vector<IEntityObserver *>> m_observers;
    std::unordered_map<Entity const *, std::vector<std::pair<EntityMetaType const *, unsigned>>>
        m_versions;
    std::unordered_map<MetaType const *, unsigned> m_persistedVersions;
    // The classes whose versions in the file were older, until an adapter was told of them.
    std::vector<std::pair<MetaType *, unsigned>> m_upgraded;

    // What the next save has to write: the entities that changed, those that left and stand in the
    // file, and whether the roots changed.  Entities are found by id, since they may be gone
    // meanwhile.
    std::vector<unsigned long long> m_dirty;
    std::vector<unsigned long long> m_deleted;
    bool m_bRootsDirty = false;
    bool m_bUnnoted = false; // memory ran out while that was noted: the next save writes all
    // By the ids of entities in the file, 0 for the roots: the ids of the targets that weren't
    // alive when they were written, and in whose place null stands.
    std::unordered_map<unsigned long long, std::vector<unsigned long long>> m_gaps;
    bool m_bLeftHeld = false; // an entity of the file left while it was still held
    std::filesystem::path m_file;
    std::string m_fileStamp; // the state of the file as this document left or found it
};

} // namespace Vn

#endif
