#include "Server/CommonData/Managed/PersistedEntity.h"

#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/DataModel/Asset.h"

namespace Vn::Managed {

void PersistedAccess::markCoreAddIn(EntityMetaType & type) {
    AddIn const * const addIn = AddInMgr::get()->addIn(type.addInIdentifier());
    if (addIn && addIn->isCoreAddIn()) type.addFlags(EntityMetaType::c_coreAddInFlag);
}

MemberSet * PersistedAccess::baseMemberSet(EntityMetaType const & type) {
    // Entity itself, at the end of every chain, has no members and so no meta type.
    MetaType const * const base = MetaTypeMgr::get()->metaType(type.baseIdentifier());
    return base ? base->memberSet(c_latestVersion) : nullptr;
}

std::optional<unsigned> PersistedAccess::migratesFrom(Entity const & entity,
                                                      EntityMetaType const & type) {
    Segment const * const segment = entity.segment();
    if (segment->isTransient() || segment->isStandalone()) return std::nullopt;
    if (!segment->asset()->isMigrating() || segment->asset()->isAssetMigrating())
        return std::nullopt;
    unsigned const version = segment->persistedMetaTypeVersion(&type);
    if (version >= type.version()) return std::nullopt;
    return version;
}

} // namespace Vn::Managed
