#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"

namespace Vn::CommonData {

CommonBaseGroupEntity::CommonBaseGroupEntity(PassiveRef<Entity> const & parent)
    : CommonBase(parent) {
    initializeMemberSetIfNeeded();
}

CommonBaseGroupEntity::CommonBaseGroupEntity(Segment * segment) : CommonBase(segment) {
    initializeMemberSetIfNeeded();
}

CommonBaseGroupEntity::CommonBaseGroupEntity(Segment * segment, unsigned long long id)
    : CommonBase(segment, id) {
    initializeMemberSetIfNeeded();
}

CommonBaseGroupEntity::~CommonBaseGroupEntity() = default;

StrongRefCreator<CommonBaseGroupEntity>
CommonBaseGroupEntity::make(PassiveRef<Entity> const & parent) {
    return create(parent);
}

StrongRefCreator<CommonBaseGroupEntity> CommonBaseGroupEntity::make(Segment * segment) {
    return create(segment);
}

void CommonBaseGroupEntity::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "rClientObject", m_rClientObject, PassiveRefMetaType::get());
}

std::wstring CommonBaseGroupEntity::onToString() const {
    return (Managed::debugFormat(L"CommonBaseEntData (base %1%) HasClientObject: %2%") %
            ManagedGroupEntity::onToString() % static_cast<bool>(m_rClientObject))
        .str();
}

} // namespace Vn::CommonData
