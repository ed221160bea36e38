// The one road by which the parts of the data model that stand in this folder reach what Entity and
// Asset keep to themselves.

#ifndef VN_PLATFORM_DATAMODEL_LOG_ENTITYACCESS_H
#define VN_PLATFORM_DATAMODEL_LOG_ENTITYACCESS_H

#include <cstdint>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/EntityState.h"

namespace Vn::DataModel {

class EntityAccess {
public:
    static EntityState & state(Entity & entity) noexcept { return entity.m_state; }
    static EntityState const & state(Entity const & entity) noexcept { return entity.m_state; }

    // As those of RefCounted.
    static void strongCount(Entity & entity, std::uint32_t count) noexcept {
        entity.strongCount(count);
    }
    static void suspendPassive(Entity & entity) noexcept { entity.suspendPassive(); }
    static void restorePassive(Entity & entity) noexcept { entity.restorePassive(); }
    static void tellPreDelete(Entity & entity) { entity.onPreDelete(); }
    static void tellTransacted(Entity & entity, bool came, DataChange::ETransact transact) {
        came ? entity.onPostTransactCreation(transact) : entity.onPostTransactChange(transact);
    }
    static void tellPreDeletion(Entity & entity, DataChange::ETransact transact) {
        entity.onPreDeletion(transact);
    }

    // As those of Asset.
    static EntityTable & table(Asset & asset) noexcept { return *asset.m_pTable; }
    static void enter(Asset & asset, Entity & entity) { asset.enter(entity); }
    static void leave(Asset & asset, Entity & entity) noexcept { asset.leave(entity); }
    static void markDirty(Asset & asset, Entity & entity) noexcept { asset.markDirty(entity); }
    static void abandon(Asset & asset, Entity & entity) noexcept { asset.abandon(entity); }
    static bool isLoading(Asset const & asset) noexcept { return asset.m_bLoading; }
    static bool isClosing(Asset const & asset) noexcept { return asset.m_bClosing; }

    // Puts a root in its place without recording it, as Segment::placeRoot.
    static void placeRoot(Segment & segment, StrongRef<Entity> entity, std::string const & key,
                          std::size_t place) {
        segment.placeRoot(std::move(entity), key, place);
    }
    static std::size_t rootPlace(Segment const & segment, std::string_view key) noexcept {
        return segment.rootPlace(key);
    }
    static Entity * rootUnder(Segment const & segment, std::string_view key) noexcept {
        return segment.rootUnder(key);
    }
};

} // namespace Vn::DataModel

#endif
