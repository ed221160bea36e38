#include "Platform/DataModel/AssetAdapter.h"

#include <utility>

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

namespace {

class AssetSettingsMetaType : public EntityMetaType {
public:
    AssetSettingsMetaType()
        : EntityMetaType("DataModel", AssetSettings::s_metaTypeId(), "AssetSettingsMetaType", 0,
                         Entity::s_metaTypeId(), TypeAbstract) {}

private:
    void onMigratingMemberSet(Entity * entity, unsigned, MemberSet * set) override {
        set->initialize(entity, "AssetSettings");
    }
    StrongRef<Entity> onCreateEntity(Segment *, unsigned long long) override { return nullptr; }
    std::size_t onInstanceSize() const override { return sizeof(AssetSettings); }
};

AssetSettingsMetaType s_settingsMetaType;

} // namespace

std::string const & AssetSettings::segmentRootId() {
    static std::string const s_id = "AssetSettings";
    return s_id;
}
std::string AssetSettings::s_metaTypeId() { return "AssetSettings"; }
EntityMetaType * AssetSettings::s_metaType() { return &s_settingsMetaType; }
void * AssetSettings::queryMTInterface(MetaType const * type) {
    return type == s_metaType() ? this : Entity::queryMTInterface(type);
}

AssetSettings::AssetSettings(Segment * segment) : Identified(segment) {
    initializeMemberSetIfNeeded();
}
AssetSettings::AssetSettings(Segment * segment, unsigned long long id) : Identified(segment, id) {
    initializeMemberSetIfNeeded();
}

// A replay brings the root back by itself.
void AssetSettings::onPostCreation(DataChange::ETransact transact) {
    Entity::onPostCreation(transact);
    if (transact & DataChange::TransactReplay || !segment()) return;
    if (!segment()->rootEntity(segmentRootId()))
        segment()->addRoot(StrongRef<Entity>(this), segmentRootId());
}

void AssetSettings::initializeMemberSetIfNeeded() {
    MemberSet * const set = s_metaType()->memberSet(c_latestVersion);
    tbb::spin_rw_mutex_v3::scoped_lock lock(set->mutex(), false);
    if (set->initialized()) return;
    if (!lock.upgrade_to_writer() && set->initialized()) return;
    set->initialize(this, "AssetSettings");
}

AssetAdapter::~AssetAdapter() = default;

StrongRef<AssetSettings> AssetAdapter::assetSettings() const {
    Segment const * const segment = designSegment();
    if (!segment) return nullptr;
    StrongRef<Entity> const root = segment->rootEntity(AssetSettings::segmentRootId());
    return StrongRef<AssetSettings>(query<AssetSettings>(root.get()));
}

void AssetAdapter::initializeLoadedAsset() {
    onInitializeLoadedAsset();
    if (!m_pAsset) return;
    for (auto const & [type, version] : std::exchange(m_pAsset->m_upgraded, {}))
        onUpgradeMetaType(type, version);
}

void AssetAdapter::fullyInitializeLoadedAsset() {
    onFullyInitializeLoadedAsset();
    onPostAssetLoadUpdate();
}

bool AssetAdapter::isAssetDirty() const {
    return m_pAsset && canDirtyAsset() && m_pAsset->isDirty();
}
bool AssetAdapter::canDirtyAsset() const { return true; }

void AssetAdapter::onPostAssetSave() {}
void AssetAdapter::onInitializeNewAsset() {}
void AssetAdapter::onInitializeLoadedAsset() {}
void AssetAdapter::onFullyInitializeLoadedAsset() {}
void AssetAdapter::onUpgradeMetaType(MetaType *, unsigned) {}
void AssetAdapter::onCreateSpecialSerializers() {}
void AssetAdapter::onReleaseSpecialSerializers() {}
void AssetAdapter::onPostStartTransacting() {}
void AssetAdapter::onPostAssetLoadUpdate() {}
void AssetAdapter::onTranslatorCallback(ETranslation) {}
Segment * AssetAdapter::onDesignSegment() const {
    return m_pAsset ? m_pAsset->segment(SegmentType::DesignSegment) : nullptr;
}
Segment * AssetAdapter::onTransientSegment() const {
    return m_pAsset ? m_pAsset->segment(SegmentType::TransientSegment) : nullptr;
}
void AssetAdapter::onPreDelete() {}

} // namespace Vn
