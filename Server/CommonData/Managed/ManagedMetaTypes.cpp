// The meta types of the managed tree, in the order in which they register.

#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Managed/CustomGroup.h"
#include "Server/CommonData/Managed/CustomGroups.h"
#include "Server/CommonData/Managed/ManagedEntity.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"
#include "Server/CommonData/Managed/ManagedRootCollection.h"

namespace Vn::Managed {

namespace {

class CustomGroupMetaType final : public PersistedMetaType<CustomGroup> {};
class CustomGroupsMetaType final : public PersistedMetaType<CustomGroups> {};
class ManagedEntityMetaType final : public PersistedMetaType<ManagedEntity> {};
class ManagedGroupEntityMetaType final : public PersistedMetaType<ManagedGroupEntity> {};
class ManagedRootCollectionMetaType final : public PersistedMetaType<ManagedRootCollection> {};

CustomGroupMetaType s_customGroup VN_LOAD_MANAGED_META_TYPES;
CustomGroupsMetaType s_customGroups VN_LOAD_MANAGED_META_TYPES;
ManagedEntityMetaType s_managedEntity VN_LOAD_MANAGED_META_TYPES;
ManagedGroupEntityMetaType s_managedGroupEntity VN_LOAD_MANAGED_META_TYPES;
ManagedRootCollectionMetaType s_managedRootCollection VN_LOAD_MANAGED_META_TYPES;

} // namespace

EntityMetaType * CustomGroup::s_metaType() { return &s_customGroup; }
EntityMetaType * CustomGroups::s_metaType() { return &s_customGroups; }
EntityMetaType * ManagedEntity::s_metaType() { return &s_managedEntity; }
EntityMetaType * ManagedGroupEntity::s_metaType() { return &s_managedGroupEntity; }
EntityMetaType * ManagedRootCollection::s_metaType() { return &s_managedRootCollection; }

} // namespace Vn::Managed
