#include "Platform/DataModel/Asset.h"

#include <atomic>
#include <new>
#include <stdexcept>
#include <utility>

#include "Platform/DataModel/ActiveAsset.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/EntityTableInternal.h"
#include "Platform/DataModel/Limits.h"
#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/MigrationHelper.h"

namespace Vn {

using DataModel::EntityState;

MigrationHelper::~MigrationHelper() = default;
void * MigrationHelper::queryMTInterface(MetaType const *) { return nullptr; }

AssetType::AssetType(std::string identifier) : m_identifier(std::move(identifier)) {
    if (m_identifier.empty()) throw std::invalid_argument("an asset type has an identifier");
}

StrongRefCreator<Asset> Asset::make(AssetType const * type) {
    return StrongRefCreator<Asset>(new Asset(type));
}

namespace {

constinit std::atomic<std::size_t> s_openAssets{0};
constinit Asset * s_pActive = nullptr;

} // namespace

Asset * ActiveAsset::get() noexcept { return s_pActive; }
void ActiveAsset::set(Asset * asset) noexcept { s_pActive = asset; }

Asset::Counted::Counted() noexcept { ++s_openAssets; }
Asset::Counted::~Counted() { --s_openAssets; }

std::size_t Asset::openAssets() noexcept { return s_openAssets; }

Asset::Asset(AssetType const * type)
    : m_pType(type), m_pTable(std::make_unique<DataModel::EntityTable>()), m_history(*this) {
    Segment::create(this, SegmentTypeMgr::get()->segmentType(SegmentType::DesignSegment), false);
}

Asset::~Asset() {
    if (ActiveAsset::get() == this) ActiveAsset::set(nullptr);
    try {
        if (m_pAdapter) m_pAdapter->preDelete();
    } catch (...) { // the document ends all the same
    }
    m_history.clear();
    m_pAdapter.reset();
    m_bClosing = true;
    m_history.lifetimes().clear();
    for (auto const & segment : m_segments) {
        segment->clearRoots();
        segment->m_unowned.clear();
    }

    // The entities let go of each other first, so that none ends another within its own end, and
    // cycles are no matter.  Those that are held elsewhere live on without a document.
    for (Entity * const entity : std::exchange(m_held, {})) entity->m_pSegment = nullptr;
    m_pTable->forEach([](Entity & entity) {
        entity.addRef();
        entity.m_state.close();
    });
    m_pTable->forEach([](Entity & entity) {
        try {
            entity.metaType()->layout().dropStrong(entity);
        } catch (std::bad_alloc const &) { // of a class without a finished object: it ends with it
        }
    });
    m_pTable->forEach([](Entity & entity) {
        if (entity.refCount() <= 1) return;
        entity.suspendPassive();
        entity.m_pSegment = nullptr;
    });
    m_pTable->forEach([](Entity & entity) {
        if (entity.m_pSegment && entity.refCount() == 1) {
            entity.suspendPassive();
            delete &entity;
        } else {
            entity.m_pSegment = nullptr; // a reference was taken during the end of another
            entity.release();
        }
    });
}

Segment * Asset::segment(SegmentType const * type) const noexcept {
    return type ? segment(type->type()) : nullptr;
}

Segment * Asset::segment(unsigned type) const noexcept {
    for (auto const & segment : m_segments)
        if (segment->segmentType()->type() == type) return segment.get();
    return nullptr;
}

void Asset::adapter(std::unique_ptr<AssetAdapter> adapter) { m_pAdapter = std::move(adapter); }

StrongRef<Entity> Asset::entity(unsigned long long id) const {
    return StrongRef<Entity>(m_pTable->find(id));
}

std::size_t Asset::entities() const noexcept { return m_pTable->size(); }

std::vector<Entity *> Asset::allEntities() const {
    std::vector<Entity *> all;
    all.reserve(m_pTable->size());
    m_pTable->forEach([&](Entity & entity) { all.push_back(&entity); });
    return all;
}

bool Asset::isDirty() const noexcept { return !m_history.isClean(); }

unsigned long long Asset::takeId() {
    if (m_nextId >= Limits::c_entityId)
        throw std::length_error("the document has no ids left for new entities");
    return m_nextId++;
}

void Asset::enter(Entity & entity) { m_pTable->add(entity.id(), &entity); }

void Asset::leave(Entity & entity) noexcept {
    m_pTable->remove(entity.id());
    if (entity.m_state.test(EntityState::Stored)) {
        note(m_deleted, entity.id());
        // While an entity leaves, the history holds it once.
        if (entity.refCount() > 1) m_bLeftHeld = true;
    }
    // If it comes back, it has to be written whether or not it was to be before.
    entity.m_state.clear(EntityState::Stored);
    entity.m_state.clear(EntityState::Dirty);
}

void Asset::markDirty(Entity & entity) noexcept {
    if (entity.m_state.test(EntityState::Dirty) || entity.m_pSegment->isTransient()) return;
    note(m_dirty, entity.id());
    entity.m_state.set(EntityState::Dirty);
}

void Asset::note(std::vector<unsigned long long> & ids, unsigned long long id) noexcept {
    try {
        ids.push_back(id);
    } catch (std::bad_alloc const &) {
        m_bUnnoted = true;
    }
}

void Asset::abandon(Entity & entity) noexcept {
    try {
        m_held.insert(&entity);
    } catch (std::bad_alloc const &) { // it lives on as it would once the document is closed
        m_observers.erase(&entity);
        m_versions.erase(&entity);
        entity.m_pSegment = nullptr;
    }
}

} // namespace Vn
