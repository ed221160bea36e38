// The meta types that register first, of two folders, in their order.

#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"

namespace Vn::CommonData {

namespace {

using Managed::PersistedMetaType;

class CommonDataAssetSettingsMetaType final : public PersistedMetaType<CommonDataAssetSettings> {};
class CommonBaseEntityMetaType final : public PersistedMetaType<CommonBaseEntity> {};
class CommonBaseGroupEntityMetaType final : public PersistedMetaType<CommonBaseGroupEntity> {};
class CommonBaseRootCollectionMetaType final : public PersistedMetaType<CommonBaseRootCollection> {
};

CommonDataAssetSettingsMetaType s_settings VN_LOAD_ASSET_META_TYPES;
CommonBaseEntityMetaType s_entity VN_LOAD_ASSET_META_TYPES;
CommonBaseGroupEntityMetaType s_groupEntity VN_LOAD_ASSET_META_TYPES;
CommonBaseRootCollectionMetaType s_rootCollection VN_LOAD_ASSET_META_TYPES;

} // namespace

EntityMetaType * CommonDataAssetSettings::s_metaType() { return &s_settings; }
EntityMetaType * CommonBaseEntity::s_metaType() { return &s_entity; }
EntityMetaType * CommonBaseGroupEntity::s_metaType() { return &s_groupEntity; }
EntityMetaType * CommonBaseRootCollection::s_metaType() { return &s_rootCollection; }

} // namespace Vn::CommonData
