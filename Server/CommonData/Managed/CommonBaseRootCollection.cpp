#include "Server/CommonData/Managed/CommonBaseRootCollection.h"

#include <utility>

namespace Vn::CommonData {

CommonBaseRootCollectionMigrationHelper::CommonBaseRootCollectionMigrationHelper(Segment * segment)
    : MigrationHelper(segment) {}

CommonBaseRootCollectionMigrationHelper::~CommonBaseRootCollectionMigrationHelper() = default;

CommonBaseRootCollection::CommonBaseRootCollection(Segment * segment, std::string const & rootId,
                                                   EntityMetaType * elementType)
    : CommonBase(segment, rootId, elementType) {
    initializeMemberSetIfNeeded();
}

StrongRefCreator<CommonBaseRootCollection>
CommonBaseRootCollection::make(Segment * segment, std::string const & rootId,
                               EntityMetaType * elementType) {
    return create(segment, rootId, elementType);
}

CommonBaseRootCollection::CommonBaseRootCollection(Segment * segment, unsigned long long id)
    : CommonBase(segment, id) {
    initializeMemberSetIfNeeded();
}

// A load that fails ends objects that are still migrating.
CommonBaseRootCollection::~CommonBaseRootCollection() { deleteMigrationHelper(); }

void CommonBaseRootCollection::initializeMemberSet(unsigned version, MemberSet * set) {
    if (version != 0) return;
    auto * const helper =
        static_cast<CommonBaseRootCollectionMigrationHelper *>(createMigrationHelper());
    Managed::addVector(set, "rooted", helper->m_rooted, PassiveRefMetaType::get());
    Managed::addMember(set, "rootId", helper->m_rootId, IntrinsicMetaType<std::string>::get());
}

MigrationHelper * CommonBaseRootCollection::createMigrationHelper() {
    MigrationHelper *& helper = migrationHelper();
    if (!helper) {
        helper = new CommonBaseRootCollectionMigrationHelper(segment());
        segment()->registerMigrationHelper(this, s_metaType(), helper);
    }
    return helper;
}

bool CommonBaseRootCollection::deleteMigrationHelper() {
    MigrationHelper * const helper = std::exchange(migrationHelper(), nullptr);
    if (!helper) return false;
    if (segment()) segment()->unregisterMigrationHelper(this, s_metaType());
    delete helper;
    return true;
}

void CommonBaseRootCollection::doInitializeMigrationHelpers() {
    Persisted::doInitializeMigrationHelpers();
    createMigrationHelper();
}

void CommonBaseRootCollection::doUninitializeMigrationHelpers() {
    Persisted::doUninitializeMigrationHelpers();
    deleteMigrationHelper();
}

void * CommonBaseRootCollection::queryMTInterface(MetaType const * type) {
    void * found = CommonBase::queryMTInterface(type);
    if (!found && migrationHelper()) found = migrationHelper()->queryMTInterface(type);
    return found;
}

void CommonBaseRootCollection::onPostMigrate() {
    // Not Persisted's, which would take the migration for done.
    ManagedRootCollection::onPostMigrate(); // NOLINT(bugprone-parent-virtual-call)
    EntityMetaType * const type = s_metaType();
    if (migratingVersion(type) >= type->version()) return;
    deleteMigrationHelper();
    migratingVersion(type, type->version());
}

std::wstring CommonBaseRootCollection::onToString() const {
    return (Managed::debugFormat(L"CommonBaseRootCollection (base %1%) HasClientObject: %2%") %
            ManagedRootCollection::onToString() % static_cast<bool>(m_rClientObject))
        .str();
}

} // namespace Vn::CommonData
