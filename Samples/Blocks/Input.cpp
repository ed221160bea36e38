#include "Samples/Blocks/Input.h"

#include <utility>

#include "Platform/DataModel/EntityChange.h"

namespace Vn::Blocks {

Input::Input(Segment * segment, std::vector<std::wstring> sizes, std::vector<std::wstring> place)
    : Persisted(segment), m_sizes(std::move(sizes)), m_place(std::move(place)) {
    initializeMemberSetIfNeeded();
}

Input::Input(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRefCreator<Input> Input::make(Segment * segment, std::vector<std::wstring> sizes,
                                    std::vector<std::wstring> place) {
    return create(segment, std::move(sizes), std::move(place));
}

void Input::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "rCommonData", m_rCommonData);
    Managed::addMember(set, "rOwnedCommonData", m_rOwnedCommonData);
    Managed::addVector(set, "sizes", m_sizes);
    Managed::addVector(set, "place", m_place);
}

void Input::sizes(std::vector<std::wstring> sizes) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_sizes = std::move(sizes);
}

void Input::place(std::vector<std::wstring> place) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_place = std::move(place);
}

void Input::onPreDeletion(DataChange::ETransact transact) {
    ManagedEntity::onPreDeletion(transact);
    ICommonDataClientObjectHelper::onPreDeletion(transact);
}

} // namespace Vn::Blocks
