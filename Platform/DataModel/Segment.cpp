#include "Platform/DataModel/Segment.h"

#include <algorithm>
#include <utility>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Log/Recorder.h"
#include "Platform/DataModel/MetaType.h"

namespace Vn {

SegmentTypeMgr * SegmentTypeMgr::get() {
    static SegmentTypeMgr s_manager;
    return &s_manager;
}

SegmentType * SegmentTypeMgr::segmentType(unsigned type) const {
    // Never destroyed: documents may be closed while the process ends.
    static SegmentType * const s_types[] = {
        new SegmentType(SegmentType::DesignSegment, "Design"),
        new SegmentType(SegmentType::TransientSegment, "Transient"),
        new SegmentType(SegmentType::StandaloneSegment, "Standalone")};
    return type >= 1 && type <= std::size(s_types) ? s_types[type - 1] : nullptr;
}

Segment * Segment::create(Asset * asset, SegmentType * type, bool transient) {
    if (!asset || !type) return nullptr;
    if (Segment * const present = asset->segment(type)) return present;
    asset->m_segments.push_back(std::unique_ptr<Segment>(
        new Segment(asset, type, transient || type->type() == SegmentType::TransientSegment)));
    return asset->m_segments.back().get();
}

Segment::Segment(Asset * asset, SegmentType * type, bool transient)
    : m_pAsset(asset), m_pType(type), m_bTransient(transient),
      m_pEvents(std::make_unique<EntityEventSource>()) {}

Segment::~Segment() = default;

std::size_t Segment::rootPlace(std::string_view key) const noexcept {
    auto const i = m_rootPlaces.find(key);
    return i == m_rootPlaces.end() ? m_nextRootPlace : i->second;
}

Entity * Segment::rootUnder(std::string_view key) const noexcept {
    auto const i = m_rootPlaces.find(key);
    return i == m_rootPlaces.end() ? nullptr : m_roots.find(i->second)->second.second.get();
}

StrongRef<Entity> Segment::rootEntity(std::string_view key) const {
    return StrongRef<Entity>(rootUnder(key));
}

void Segment::addRoot(StrongRef<Entity> const & entity, std::string const & key) {
    if (entity && (entity->segment() != this || !entity->isAlive())) return;
    std::size_t const place = rootPlace(key);
    Entity * const old = rootUnder(key);
    if (old == entity.get()) return;
    m_pAsset->history().recorder().rootChanging(*this, key, place, old);
    placeRoot(entity, key, place);
    m_pAsset->history().tellUnrecorded();
}

void Segment::placeRoot(StrongRef<Entity> entity, std::string const & key, std::size_t place) {
    StrongRef<Entity> old; // let go of once the roots are in order
    auto const present = m_rootPlaces.find(key);
    if (present != m_rootPlaces.end()) {
        auto const root = m_roots.find(present->second);
        if (entity == root->second.second) return;
        if (entity) m_placesOfRoots.emplace(entity.get(), root->first);
        m_placesOfRoots.erase({root->second.second.get(), root->first});
        old = std::exchange(root->second.second, std::move(entity));
        if (!root->second.second) {
            m_rootPlaces.erase(present);
            m_roots.erase(root);
        }
    } else if (entity) {
        Entity const * const target = entity.get();
        // A place that another key has is none for this one.
        if (m_roots.contains(place)) place = m_nextRootPlace;
        auto const root = m_roots.try_emplace(place, key, std::move(entity)).first;
        try {
            m_rootPlaces.emplace(root->second.first, place);
            m_placesOfRoots.emplace(target, place);
        } catch (...) {
            m_rootPlaces.erase(root->second.first);
            m_roots.erase(root);
            throw;
        }
        m_nextRootPlace = std::max(m_nextRootPlace, place + 1);
    }
    if (!m_bTransient) m_pAsset->m_bRootsDirty = true;
}

void Segment::clearRoots() noexcept {
    m_placesOfRoots.clear();
    m_rootPlaces.clear();
    m_roots.clear();
}

void Segment::rootEntityIds(std::vector<std::string> & keys) const {
    keys.clear();
    for (auto const & [place, root] : m_roots) keys.push_back(root.first);
}

std::string const * Segment::rootKey(Entity const * entity) const noexcept {
    auto const i = m_placesOfRoots.lower_bound({entity, 0});
    if (!entity || i == m_placesOfRoots.end() || i->first != entity) return nullptr;
    return &m_roots.find(i->second)->second.first;
}

unsigned Segment::persistedMetaTypeVersion(MetaType const * type) const {
    auto const i = m_pAsset->m_persistedVersions.find(type);
    return i == m_pAsset->m_persistedVersions.end() ? type->version() : i->second;
}

void Segment::registerMigrationHelper(void * entity, MetaType * type, MigrationHelper * helper) {
    m_helpers[{entity, type}] = helper;
}

void Segment::unregisterMigrationHelper(void * entity, MetaType * type) {
    m_helpers.erase({entity, type});
}

MigrationHelper * Segment::migrationHelper(void const * entity, MetaType const * type) const {
    auto const i = m_helpers.find({entity, type});
    return i == m_helpers.end() ? nullptr : i->second;
}

} // namespace Vn
