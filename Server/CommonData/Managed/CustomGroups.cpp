#include "Server/CommonData/Managed/CustomGroups.h"

#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Managed/CustomGroup.h"

namespace Vn::Managed {

CustomGroups::CustomGroups(PassiveRef<Entity> const & parent) : Persisted(parent) {
    initializeMemberSetIfNeeded();
}

CustomGroups::CustomGroups(Segment * segment) : Persisted(segment) {
    initializeMemberSetIfNeeded();
}

CustomGroups::CustomGroups(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

CustomGroups::~CustomGroups() = default;

StrongRefCreator<CustomGroups> CustomGroups::make(PassiveRef<Entity> const & parent) {
    return create(parent);
}

void CustomGroups::initializeMemberSet(unsigned, MemberSet * set) {
    addMember(set, "highWaterMark", m_highWaterMark, IntrinsicMetaType<unsigned int>::get());
}

int CustomGroups::getNextID() {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeStructural,
                              DataChange::TimingPreAndPost, nullptr, true);
    return ++m_highWaterMark;
}

StrongRef<CustomGroup> CustomGroups::group(unsigned index) {
    return StrongRef<CustomGroup>(query<CustomGroup>(child(index).get()));
}

std::wstring CustomGroups::onToString() const {
    return (debugFormat(L"CustomGroups (base %1%)") % CommonBaseGroupEntity::onToString()).str();
}

} // namespace Vn::Managed
