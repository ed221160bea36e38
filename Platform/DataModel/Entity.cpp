#include "Platform/DataModel/Entity.h"

#include <algorithm>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ChangeHistory.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/IEntityObserver.h"
#include "Platform/DataModel/Log/Lifetimes.h"
#include "Platform/DataModel/Log/Recorder.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

using DataModel::EntityState;

namespace {

constinit InterfaceId s_entityId("Vn::Entity");
constinit InterfaceId s_observerId("Vn::IEntityObserver");

} // namespace

std::string Entity::s_metaTypeId() { return "98542EB9-A4F2-4137-A808-DBB5B3CD6159"; }

UniqueString const * Entity::interfaceId() { return s_entityId.get(); }
UniqueString const * Entity::getInterfaceId() const { return interfaceId(); }

void * Entity::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<Entity *>(this) : nullptr;
}

void * Entity::queryMTInterface(MetaType const *) { return nullptr; }

Entity::Entity(Segment * segment) : m_id(segment->asset()->takeId()), m_pSegment(segment) {
    Asset & asset = *segment->asset();
    asset.enter(*this);
    try {
        asset.history().lifetimes().born(*this);
    } catch (...) {
        asset.leave(*this);
        throw;
    }
}

Entity::Entity(Segment * segment, unsigned long long id) : m_id(id), m_pSegment(segment) {
    m_state.set(EntityState::Loaded);
    segment->asset()->enter(*this);
}

Entity::~Entity() {
    if (!m_pSegment) return;
    if (m_state.testAny(EntityState::Observed | EntityState::Versions)) {
        asset()->m_observers.erase(this);
        asset()->m_versions.erase(this);
    }
    if (!asset()->m_held.empty()) asset()->m_held.erase(this);
    // An object that nothing ever owned leaves here; all others did when they died.
    if (m_state.isAlive()) asset()->history().lifetimes().unborn(*this);
}

Asset * Entity::asset() const noexcept { return m_pSegment ? m_pSegment->asset() : nullptr; }

void Entity::destroy() noexcept {
    if (!m_pSegment) return RefCounted::destroy();
    asset()->history().lifetimes().orphaned(*this);
}

unsigned Entity::migratingVersion(EntityMetaType const * type) const {
    if (m_pSegment && m_state.test(EntityState::Versions)) {
        auto const i = asset()->m_versions.find(this);
        if (i != asset()->m_versions.end())
            for (auto const & entry : i->second)
                if (entry.first == type) return entry.second;
    }
    return type->version();
}

void Entity::migratingVersion(EntityMetaType const * type, unsigned version) {
    if (!m_pSegment) return;
    auto & versions = asset()->m_versions[this];
    m_state.set(EntityState::Versions);
    for (auto & entry : versions)
        if (entry.first == type) {
            entry.second = version;
            return;
        }
    versions.emplace_back(type, version);
}

void Entity::markMigrating() { m_state.set(EntityState::Migrating); }

void Entity::postCreation(DataChange::ETransact transact) {
    // Made while it may still be refused: an end can't be.
    if (m_pSegment) metaType()->layout();
    onPostCreation(transact);
    if (m_pSegment) m_pSegment->entityEventSource()->tellPostCreate(*this, transact);
    if (m_pSegment) asset()->m_history.tellUnrecorded();
}

void Entity::markModified(void const * member) noexcept {
    if (!m_pSegment || m_pSegment->isTransient() || !isAlive()) return;
    asset()->history().recorder().leaveOut(*this, member);
    asset()->markDirty(*this);
    asset()->m_history.markModified();
}

EntityChange * Entity::outerChange() const noexcept {
    return m_state.test(EntityState::Changing) ? asset()->history().recorder().outermost(*this)
                                               : nullptr;
}

void Entity::subscribe(IEntityObserver * observer) {
    if (!observer || !m_pSegment) return;
    auto & observers = asset()->m_observers[this];
    m_state.set(EntityState::Observed);
    if (std::find(observers.begin(), observers.end(), observer) == observers.end())
        observers.push_back(observer);
}

void Entity::unsubscribe(IEntityObserver * observer) {
    if (!m_pSegment || !m_state.test(EntityState::Observed)) return;
    auto const i = asset()->m_observers.find(this);
    if (i == asset()->m_observers.end()) return;
    std::erase(i->second, observer);
    if (i->second.empty()) {
        asset()->m_observers.erase(i);
        m_state.clear(EntityState::Observed);
    }
}

unsigned Entity::version() const { return migratingVersion(onMetaType()); }

template <class Tell>
void Entity::tellObservers(Tell && tell) {
    if (m_state.test(EntityState::Observed) && m_pSegment) tellThem(tell);
}

template <class Tell>
void Entity::tellThem(Tell & tell) {
    auto const & all = asset()->m_observers;
    auto const i = all.find(this);
    if (i == all.end()) return;
    std::vector<IEntityObserver *> const observers = i->second;
    for (IEntityObserver * const observer : observers) {
        auto const now = all.find(this); // one that is told may send others away
        if (now == all.end()) return;
        if (std::find(now->second.begin(), now->second.end(), observer) != now->second.end())
            tell(*observer);
    }
}

void Entity::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                         DataChange * details) {
    tellObservers([&](IEntityObserver & o) { o.preChange(this, transact, type, details); });
}

void Entity::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                          DataChange * details) {
    tellObservers([&](IEntityObserver & o) { o.postChange(this, transact, type, details); });
}

void Entity::onPreDeletion(DataChange::ETransact transact) {
    tellObservers([&](IEntityObserver & o) { o.preDeletion(this, transact); });
}

void Entity::onPreDelete() {}
void Entity::onPostCreation(DataChange::ETransact) {}
void Entity::onPostTransactChange(DataChange::ETransact) {}
void Entity::onPostTransactCreation(DataChange::ETransact) {}
void Entity::onPostMigrate() {}
void Entity::doInitializeMigrationHelpers() {}
void Entity::doUninitializeMigrationHelpers() {}
std::size_t Entity::onSizeInBytes() const { return 0; }
std::wstring Entity::onToString() const { return L"Entity " + std::to_wstring(m_id); }

IEntityObserver::~IEntityObserver() = default;
UniqueString const * IEntityObserver::interfaceId() { return s_observerId.get(); }
UniqueString const * IEntityObserver::getInterfaceId() const { return interfaceId(); }
void * IEntityObserver::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IEntityObserver *>(this) : nullptr;
}

} // namespace Vn
