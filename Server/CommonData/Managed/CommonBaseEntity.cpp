#include "Server/CommonData/Managed/CommonBaseEntity.h"

namespace Vn::CommonData {

CommonBaseEntity::CommonBaseEntity(PassiveRef<Entity> const & parent) : CommonBase(parent) {
    initializeMemberSetIfNeeded();
}

CommonBaseEntity::CommonBaseEntity(Segment * segment) : CommonBase(segment) {
    initializeMemberSetIfNeeded();
}

CommonBaseEntity::CommonBaseEntity(Segment * segment, unsigned long long id)
    : CommonBase(segment, id) {
    initializeMemberSetIfNeeded();
}

CommonBaseEntity::~CommonBaseEntity() = default;

StrongRefCreator<CommonBaseEntity> CommonBaseEntity::make(PassiveRef<Entity> const & parent) {
    return create(parent);
}

StrongRefCreator<CommonBaseEntity> CommonBaseEntity::make(Segment * segment) {
    return create(segment);
}

void CommonBaseEntity::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "rClientObject", m_rClientObject, PassiveRefMetaType::get());
}

std::wstring CommonBaseEntity::onToString() const {
    return (Managed::debugFormat(L"CommonBaseEntData (base %1%) HasClientObject: %2%") %
            ManagedEntity::onToString() % static_cast<bool>(m_rClientObject))
        .str();
}

} // namespace Vn::CommonData
