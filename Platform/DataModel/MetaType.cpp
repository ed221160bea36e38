#include "Platform/DataModel/MetaType.h"

#include <utility>

#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Shared.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MemberLayoutInternal.h"

namespace Vn {

namespace {

// Has a member set filled by the class unless it is, all or nothing.
template <class Fill>
void fillIfNeeded(MemberSet & set, Fill && fill) {
    tbb::spin_rw_mutex_v3::scoped_lock const lock(set.mutex(), true);
    if (set.initialized()) return;
    try {
        fill();
    } catch (...) {
        set.clear();
        throw;
    }
}

} // namespace

MetaType::MetaType(std::string id, std::string name, unsigned version, std::string baseIdentifier)
    : m_id(std::move(id)), m_name(std::move(name)), m_version(version),
      m_baseIdentifier(std::move(baseIdentifier)), m_pLatest(std::make_unique<MemberSet>(this)),
      m_bRegistered(m_id.empty() || MetaTypeMgr::get()->add(this)) {
    if (!m_id.empty()) RegistrationLog::note(RegistrationLog::EKind::MetaType, m_name, this);
}

MetaType::~MetaType() {
    if (m_id.empty()) return;
    MetaTypeMgr::get()->remove(this);
    RegistrationLog::note(RegistrationLog::EKind::MetaType, m_name, this,
                          RegistrationLog::EEvent::Leaves);
}

MemberSet * MetaType::memberSet(unsigned version) const {
    if (version == c_latestVersion || version == m_version) return m_pLatest.get();
    std::lock_guard const guard(m_mutex);
    auto const i = m_older.find(version);
    return i == m_older.end() ? nullptr : i->second.get();
}

MemberSet * MetaType::makeMemberSet(unsigned version, bool & made) {
    std::lock_guard const guard(m_mutex);
    auto const found = m_older.find(version);
    made = found == m_older.end();
    if (!made) return found->second.get();
    auto set = std::make_unique<MemberSet>(this);
    return m_older.emplace(version, std::move(set)).first->second.get();
}

EntityMetaType::EntityMetaType(std::string addInIdentifier, std::string id, std::string name,
                               unsigned version, std::string baseIdentifier, EType type)
    : MetaType(std::move(id), std::move(name), version, std::move(baseIdentifier)),
      m_addInIdentifier(std::move(addInIdentifier)), m_type(type) {}

EntityMetaType::~EntityMetaType() { delete m_pLayout.load(std::memory_order_acquire); }

EntityMetaType const * EntityMetaType::base() const {
    // Looked up once: a base outlives what is derived from it.
    EntityMetaType const * base = m_pBaseType.load(std::memory_order_acquire);
    if (!base && !baseIdentifier().empty()) {
        base = MetaTypeMgr::get()->entityMetaType(baseIdentifier());
        m_pBaseType.store(base, std::memory_order_release);
    }
    return base;
}

bool EntityMetaType::isA(MetaType const * type) const {
    for (EntityMetaType const * i = this; i; i = i->base())
        if (i == type) return true;
    return false;
}

void EntityMetaType::migratingMemberSetIfNeeded(Entity * entity, unsigned version) {
    if (version == c_latestVersion || version == this->version()) return;
    bool made = false;
    MemberSet * const set = makeMemberSet(version, made);
    fillIfNeeded(*set, [&] { onMigratingMemberSet(entity, version, set); });
}

DataModel::MemberLayout const & EntityMetaType::layout() {
    DataModel::MemberLayout * layout = m_pLayout.load(std::memory_order_acquire);
    if (layout) return *layout;
    auto made = std::make_unique<DataModel::MemberLayout>(memberSet(c_latestVersion));
    if (m_pLayout.compare_exchange_strong(layout, made.get(), std::memory_order_acq_rel))
        return *made.release();
    return *layout;
}

std::size_t EntityMetaType::onSizeInBytes(Entity const * entity) const {
    return entity->onSizeInBytes();
}
void EntityMetaType::onPreSave(Entity *) {}
void EntityMetaType::onPostSave(Entity *) {}
void EntityMetaType::onPreLoad(Entity *) {}
void EntityMetaType::onPostLoad(Entity *) {}
void EntityMetaType::onPostMigrate(Entity *) {}

ValueMetaType::ValueMetaType(std::string id, std::string name, unsigned version,
                             std::string valueTypeName, std::string baseIdentifier)
    : MemberMetaType(EMemberKind::Value, valueTypeName, std::move(id), std::move(name), version,
                     std::move(baseIdentifier)),
      m_valueTypeName(std::move(valueTypeName)) {}

ValueMetaType::~ValueMetaType() = default;

MemberSet * ValueMetaType::memberSetOf(void * value) {
    MemberSet * const set = memberSet(c_latestVersion);
    fillIfNeeded(*set, [&] { onMigratingMemberSet(value, version(), set, VisitorContext()); });
    return set;
}

MigrationHelper * ValueMetaType::doMigrationHelper(void *) const { return nullptr; }
unsigned ValueMetaType::doMigratingVersion(void *, VisitorContext const &) const {
    return version();
}
void ValueMetaType::doMigratingVersion(void *, unsigned, VisitorContext const &) const {}
EMigrationStatusValue ValueMetaType::onPostMigrate(void *, unsigned, VisitorContext const &) const {
    return MigrationDone;
}
MigrationHelper * ValueMetaType::doCreateMigrationHelper(void *) const { return nullptr; }
bool ValueMetaType::doDeleteMigrationHelper(void *) const { return false; }

MetaTypeMgr * MetaTypeMgr::get() {
    static constinit Shared<MetaTypeMgr> s_manager;
    return &s_manager.get([] { return new MetaTypeMgr; });
}

MetaType * MetaTypeMgr::metaType(std::string_view id) const {
    std::lock_guard const guard(m_mutex);
    auto const i = m_types.find(id);
    return i == m_types.end() ? nullptr : i->second;
}

EntityMetaType * MetaTypeMgr::entityMetaType(std::string_view id) const {
    return dynamic_cast<EntityMetaType *>(metaType(id));
}

std::vector<std::string> MetaTypeMgr::ids() const {
    std::lock_guard const guard(m_mutex);
    std::vector<std::string> ids;
    ids.reserve(m_types.size());
    for (auto const & entry : m_types) ids.push_back(entry.first);
    return ids;
}

bool MetaTypeMgr::add(MetaType * type) {
    std::lock_guard const guard(m_mutex);
    return m_types.emplace(type->identifier(), type).second;
}

void MetaTypeMgr::remove(MetaType * type) {
    std::lock_guard const guard(m_mutex);
    auto const i = m_types.find(type->identifier());
    if (i != m_types.end() && i->second == type) m_types.erase(i);
}

} // namespace Vn
