#include "Platform/DataModel/Segment.h"

#include <algorithm>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Log/RecorderInternal.h"
#include "Platform/DataModel/MetaType.h"

namespace Vn {

SegmentTypeMgr * SegmentTypeMgr::get() {
    static SegmentTypeMgr s_manager;
    return &s_manager;
}

SegmentType * SegmentTypeMgr::segmentType(unsigned type) const noexcept {
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
    auto const i = std::find_if(m_roots.begin(), m_roots.end(),
                                [&](auto const & root) { return root.first == key; });
    return static_cast<std::size_t>(i - m_roots.begin());
}

StrongRef<Entity> Segment::rootEntity(std::string_view key) const {
    std::size_t const place = rootPlace(key);
    return place < m_roots.size() ? m_roots[place].second : nullptr;
}

void Segment::addRoot(StrongRef<Entity> const & entity, std::string const & key) {
    if (entity && (entity->segment() != this || !entity->isAlive())) return;
    std::size_t const place = rootPlace(key);
    Entity * const old = place < m_roots.size() ? m_roots[place].second.get() : nullptr;
    if (old == entity.get()) return;
    m_pAsset->history().recorder().rootChanging(*this, key, place, old);
    placeRoot(entity, key, place);
}

void Segment::placeRoot(StrongRef<Entity> entity, std::string const & key, std::size_t place) {
    std::size_t const present = rootPlace(key);
    if (present < m_roots.size()) {
        if (entity)
            std::swap(m_roots[present].second, entity);
        else {
            entity = std::move(m_roots[present].second); // let go of once the list is in order
            m_roots.erase(m_roots.begin() + static_cast<std::ptrdiff_t>(present));
        }
    } else if (entity)
        m_roots.emplace(m_roots.begin()
                            + static_cast<std::ptrdiff_t>(std::min(place, m_roots.size())),
                        key, std::move(entity));
    if (!m_bTransient) m_pAsset->m_bRootsDirty = true;
}

void Segment::rootEntityIds(std::vector<std::string> & keys) const {
    keys.clear();
    for (auto const & root : m_roots) keys.push_back(root.first);
}

std::string const * Segment::rootKey(Entity const * entity) const noexcept {
    for (auto const & root : m_roots)
        if (root.second.get() == entity) return &root.first;
    return nullptr;
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
