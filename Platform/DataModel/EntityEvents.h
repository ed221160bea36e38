// Events about the entities of a segment.

#ifndef VN_PLATFORM_DATAMODEL_ENTITYEVENTS_H
#define VN_PLATFORM_DATAMODEL_ENTITYEVENTS_H

#include <cstddef>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/DataChange.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class EntityMetaType;
class MetaType;

// An entity has been created, or is about to be deleted.
class VN_DATAMODEL_API EntityEvent {
public:
    // About that entity, and who makes it come or go.
    EntityEvent(StrongRef<Entity> entity, DataChange::ETransact transact) noexcept
        : m_rEntity(std::move(entity)), m_transact(transact) {}

    // What the constructor was given.
    StrongRef<Entity> entity() const noexcept { return m_rEntity; }
    DataChange::ETransact transact() const noexcept { return m_transact; }

private:
    StrongRef<Entity> const m_rEntity;
    DataChange::ETransact const m_transact;
};

// What is told of events.
class VN_DATAMODEL_API EntityEventSite {
public:
    virtual ~EntityEventSite();
    // An entity is complete, or about to leave its document.  The event lasts for the call.
    virtual void postCreate(EntityEvent * event) = 0;
    virtual void preDelete(EntityEvent * event) = 0;
};

// Lets pass the entities of one type and of those derived from it.  It is counted: what `make`
// returns may be handed on as it is to a source, which keeps or drops it.
class VN_DATAMODEL_API MetaTypeFilter : public RefCounted {
public:
    // A filter for `type`; null lets every entity pass.  It belongs to the first StrongRef to it.
    static MetaTypeFilter * make(MetaType * type);

    // What `make` was given, and whether an entity of that type passes.
    MetaType * type() const noexcept { return m_pType; }
    bool matches(EntityMetaType const * type) const;

private:
    explicit MetaTypeFilter(MetaType * type) noexcept : m_pType(type) {}

    MetaType * const m_pType;
};

// Tells sites of the entities of one segment.  Sites may subscribe and unsubscribe while events are
// told: who comes hears from the next event on, who goes hears no more.
class VN_DATAMODEL_API EntityEventSource {
public:
    EntityEventSource() = default;
    EntityEventSource(EntityEventSource const &) = delete;
    EntityEventSource & operator=(EntityEventSource const &) = delete;

    // Tells `site`, which isn't owned, of entities that `filter` lets pass.  A site that subscribes
    // twice for the same type is told once.  Both take `filter` over; a null site is ignored.
    void subscribe(EntityEventSite * site, MetaTypeFilter * filter);
    void unsubscribe(EntityEventSite * site, MetaTypeFilter * filter);
    // The same for all types, as a site does that is about to end.
    void unsubscribe(EntityEventSite * site);
    // The number of subscriptions.
    std::size_t subscriptions() const noexcept;

    // Tells all sites concerned, in the order of their subscriptions.
    void tellPostCreate(Entity & entity, DataChange::ETransact transact);
    void tellPreDelete(Entity & entity, DataChange::ETransact transact);

private:
    struct Subscription {
        EntityEventSite * site; // null once unsubscribed
        StrongRef<MetaTypeFilter> filter;
    };
    template <class Tell>
    void tell(Entity & entity, Tell && tell);
    template <class Which>
    void unsubscribeWhere(Which && which);
    void closeGaps();

    std::vector<Subscription> m_subscriptions;
    std::size_t m_telling = 0;
    bool m_bGaps = false;
};

} // namespace Vn

#endif
