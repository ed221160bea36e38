#include "Server/CommonData/Managed/CustomGroups.h"

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Managed/CustomGroup.h"

namespace Vn::Managed {

namespace {

// Leaves room for the numbers of groups that are still to come.
constexpr int c_highestMark = 1'000'000'000;

} // namespace

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
    addMember(set, "highWaterMark", m_highWaterMark, IntrinsicMetaType<unsigned int>::get())
        ->setter(&setHighWaterMark);
}

Status CustomGroups::setHighWaterMark(CustomGroups & groups, int const & mark) {
    char const * const operation = "set the number of the last group";
    if (mark < groups.m_highWaterMark && mark >= 0)
        return Status::invalidArgument(
            operation, {}, localized("numbers are never given twice, so it only goes up"));
    if (mark < 0 || mark > c_highestMark)
        return Status::invalidArgument(operation, {}, localized("it is 1,000,000,000 at most"));
    if (mark == groups.m_highWaterMark) return Status();
    EntityChange const change(&groups, DataChange::TransactDirect, DataChange::ChangeStructural,
                              DataChange::TimingPreAndPost, nullptr, true);
    groups.m_highWaterMark = mark;
    return Status();
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
