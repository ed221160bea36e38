#include "Platform/DataModel/EntityEvents.h"

#include <algorithm>

#include "Platform/DataModel/MetaType.h"

namespace Vn {

EntityEventSite::~EntityEventSite() = default;

MetaTypeFilter * MetaTypeFilter::make(MetaType * type) { return new MetaTypeFilter(type); }

bool MetaTypeFilter::matches(EntityMetaType const * type) const {
    return !m_pType || (type && type->isA(m_pType));
}

void EntityEventSource::subscribe(EntityEventSite * site, MetaTypeFilter * filter) {
    StrongRef<MetaTypeFilter> const owned(filter);
    if (!site || !filter) return;
    for (Subscription const & i : m_subscriptions)
        if (i.site == site && i.filter->type() == filter->type()) return;
    m_subscriptions.push_back({site, owned});
}

void EntityEventSource::unsubscribe(EntityEventSite * site, MetaTypeFilter * filter) {
    StrongRef<MetaTypeFilter> const owned(filter);
    if (!filter) return;
    unsubscribeWhere([&](Subscription const & i) {
        return i.site == site && i.filter->type() == filter->type();
    });
}

void EntityEventSource::unsubscribe(EntityEventSite * site) {
    unsubscribeWhere([&](Subscription const & i) { return i.site == site; });
}

template <class Which>
void EntityEventSource::unsubscribeWhere(Which && which) {
    for (Subscription & i : m_subscriptions)
        if (which(i)) {
            i.site = nullptr;
            m_bGaps = true;
        }
    closeGaps();
}

// While sites are told, the places of all stay as they are.
void EntityEventSource::closeGaps() {
    if (!m_bGaps || m_telling) return;
    std::erase_if(m_subscriptions, [](Subscription const & i) { return !i.site; });
    m_bGaps = false;
}

std::size_t EntityEventSource::subscriptions() const noexcept {
    return static_cast<std::size_t>(
        std::count_if(m_subscriptions.begin(), m_subscriptions.end(),
                      [](Subscription const & i) { return i.site != nullptr; }));
}

template <class Tell>
void EntityEventSource::tell(Entity & entity, Tell && tell) {
    EntityMetaType const * const type = entity.metaType();
    std::size_t const count =
        m_subscriptions.size(); // who comes meanwhile hears from the next event on
    ++m_telling;
    struct Leave {
        EntityEventSource & m_source;
        ~Leave() {
            --m_source.m_telling;
            m_source.closeGaps();
        }
    } const leave{*this};
    for (std::size_t i = 0; i < count; ++i) {
        Subscription const subscription = m_subscriptions[i];
        if (subscription.site && subscription.filter->matches(type)) tell(*subscription.site);
    }
}

void EntityEventSource::tellPostCreate(Entity & entity, DataChange::ETransact transact) {
    if (m_subscriptions.empty()) return;
    EntityEvent event(StrongRef<Entity>(&entity), transact);
    tell(entity, [&](EntityEventSite & site) { site.postCreate(&event); });
}

void EntityEventSource::tellPreDelete(Entity & entity, DataChange::ETransact transact) {
    if (m_subscriptions.empty()) return;
    EntityEvent event(StrongRef<Entity>(&entity), transact);
    tell(entity, [&](EntityEventSite & site) { site.preDelete(&event); });
}

} // namespace Vn
