#include "Server/CommonData/Managed/CustomGroup.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Managed/CustomGroups.h"
#include "Server/CommonData/Managed/ListPlaceInternal.h"

namespace Vn::Managed {

using Details = ManagedGroupEntityChangeDetails;

CustomGroup::CustomGroup(PassiveRef<Entity> const & parent, ICustomGroupParent * groupParent)
    : Persisted(parent) {
    auto * const group = query<ManagedEntity>(groupParent);
    if (group && canReferTo(*group)) m_rGroupParent = PassiveRef<Entity>(group);
    initializeMemberSetIfNeeded();
}

CustomGroup::CustomGroup(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }

CustomGroup::CustomGroup(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

CustomGroup::~CustomGroup() = default;

StrongRefCreator<CustomGroup> CustomGroup::make(StrongRef<Entity> const & parent,
                                                ICustomGroupParent * groupParent) {
    return create(PassiveRef<Entity>(parent), groupParent);
}

void CustomGroup::initializeMemberSet(unsigned, MemberSet * set) {
    addMember(set, "creationIndex", m_creationIndex, IntrinsicMetaType<unsigned int>::get())
        ->readOnly(localizable("the group got its number when it was made"));
    addMember(set, "rGroupParent", m_rGroupParent, PassiveRefMetaType::get());
    addVector(set, "groupChildren", m_groupChildren, PassiveRefMetaType::get());
}

void CustomGroup::onPostCreation(DataChange::ETransact transact) {
    ManagedEntity::onPostCreation(transact);
    if (DataChange::test(transact, DataChange::TransactReplay)) return;
    StrongRef<Entity> const groups = parent();
    m_creationIndex = static_cast<unsigned>(query<CustomGroups>(groups.get())->getNextID());
}

bool CustomGroup::canAddGroupChild(ICustomGroupChild const *) const { return true; }

unsigned CustomGroup::groupChildren() const {
    return static_cast<unsigned>(m_groupChildren.size());
}

ICustomGroupChild * CustomGroup::groupChild(unsigned index) const {
    return query<ICustomGroupChild>(m_groupChildren[index].get());
}

ICustomGroupParent * CustomGroup::groupParent() const {
    return query<ICustomGroupParent>(m_rGroupParent.get());
}

void CustomGroup::groupParent(ICustomGroupParent * parent) {
    auto const * const group = query<ManagedEntity>(parent);
    if (group && !canReferTo(*group)) return;
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeStructural,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_rGroupParent = PassiveRef<Entity>(query<ManagedEntity>(parent));
}

void CustomGroup::addGroupChild(ICustomGroupChild * child) {
    if (!child) return;
    StrongRef<ManagedEntity> const entity(query<ManagedEntity>(child));
    if (entity && !canReferTo(*entity)) return;
    child->groupParent(this);
    Details details(entity, Details::ChildAdded, Details::c_noIndex);
    ListChange change(this, &m_groupChildren, DataChange::ChangeChildren, &details);
    m_groupChildren.emplace_back(entity);
    change.inserted(m_groupChildren.size() - 1);
}

void CustomGroup::insertGroupChild(ICustomGroupChild * child, unsigned index) {
    if (!child) return;
    StrongRef<ManagedEntity> const entity(query<ManagedEntity>(child));
    if (entity && !canReferTo(*entity)) return;
    child->groupParent(this);
    Details details(entity, Details::ChildInserted, index);
    ListChange change(this, &m_groupChildren, DataChange::ChangeStructural, &details);
    // What was told before the change may have shortened the list.
    std::size_t const place = std::min<std::size_t>(index, m_groupChildren.size());
    m_groupChildren.emplace_back(entity);
    std::rotate(m_groupChildren.begin() + static_cast<std::ptrdiff_t>(place),
                m_groupChildren.end() - 1, m_groupChildren.end());
    change.inserted(place);
}

void CustomGroup::removeGroupChild(ICustomGroupChild * child) {
    if (!child) return;
    StrongRef<ManagedEntity> const entity(query<ManagedEntity>(child));
    auto const found = std::find(m_groupChildren.begin(), m_groupChildren.end(), entity);
    if (found == m_groupChildren.end()) return;
    auto const index = found - m_groupChildren.begin();
    Details details(entity, Details::ChildRemoved, Details::c_noIndex);
    ListChange change(this, &m_groupChildren, DataChange::ChangeChildren, &details);
    auto const place = findAgain(m_groupChildren, entity, index);
    if (place == m_groupChildren.end()) return;
    change.erasing(static_cast<std::size_t>(place - m_groupChildren.begin()));
    m_groupChildren.erase(place);
}

std::vector<StrongRef<ManagedEntity>> CustomGroup::livingMembers() const {
    std::vector<StrongRef<ManagedEntity>> members;
    members.reserve(m_groupChildren.size());
    for (PassiveRef<ManagedEntity> const & child : m_groupChildren)
        if (StrongRef<ManagedEntity> member = child.lock()) members.push_back(std::move(member));
    return members;
}

void CustomGroup::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                              DataChange * details) {
    if (DataChange::test(transact, DataChange::TransactReplay))
        m_pTransactDetails =
            std::make_unique<ManagedGroupEntityTransactChangeDetails>(livingMembers());
    ManagedGroupEntity::onPreChange(transact, type, details);
}

void CustomGroup::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                               DataChange * details) {
    // Lasts until everybody has been told, even if one of them ends this group meanwhile.
    std::unique_ptr<ManagedGroupEntityTransactChangeDetails> own;
    if (DataChange::test(transact, DataChange::TransactReplay)) own.swap(m_pTransactDetails);
    if (own) {
        own->calculateChildrenDiff(livingMembers());
        if (details)
            details->addDataChange(own.release(), true);
        else
            details = own.get();
    }
    ManagedGroupEntity::onPostChange(transact, type, details);
}

void CustomGroup::onPreDeletion(DataChange::ETransact transact) {
    m_groupChildren.clear();
    m_pTransactDetails.reset();
    m_rGroupParent.reset();
    ManagedGroupEntity::onPreDeletion(transact);
}

} // namespace Vn::Managed
