#include "Server/CommonData/Managed/ManagedGroupEntity.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Server/CommonData/Managed/ListPlaceInternal.h"

namespace Vn::Managed {

using Details = ManagedGroupEntityChangeDetails;

ManagedGroupEntity::ManagedGroupEntity(PassiveRef<Entity> const & parent) : Persisted(parent) {
    initializeMemberSetIfNeeded();
}

ManagedGroupEntity::ManagedGroupEntity(Segment * segment) : Persisted(segment) {
    initializeMemberSetIfNeeded();
}

ManagedGroupEntity::ManagedGroupEntity(Segment * segment, unsigned long long id)
    : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

ManagedGroupEntity::~ManagedGroupEntity() = default;

StrongRefCreator<ManagedGroupEntity> ManagedGroupEntity::make(PassiveRef<Entity> const & parent) {
    return create(parent);
}

StrongRefCreator<ManagedGroupEntity> ManagedGroupEntity::make(Segment * segment) {
    return create(segment);
}

void ManagedGroupEntity::initializeMemberSet(unsigned, MemberSet * set) {
    addVector(set, "children", m_children, StrongRefMetaType::get());
}

void ManagedGroupEntity::addChild(StrongRef<ManagedEntity> const & child) {
    if (!child || !canReferTo(*child)) return;
    // Made first to hold the child: `child` may be an element of a list that a hook changes.
    Details details(child, Details::ChildAdded, Details::c_noIndex);
    // A child that was made for this group is the usual case, and needs no look at its parent.
    if (!(child->m_rParent == this) && !child->managedParent())
        child->parent(StrongRef<Entity>(this));
    ListChange change(this, &m_children, DataChange::ChangeChildren, &details);
    m_children.push_back(details.managedEntity());
    change.inserted(m_children.size() - 1);
}

void ManagedGroupEntity::insertChild(StrongRef<ManagedEntity> const & child, unsigned index) {
    if (child && !canReferTo(*child)) return;
    Details details(child, Details::ChildInserted, index);
    ListChange change(this, &m_children, DataChange::ChangeStructural, &details);
    // An observer that was told before the change may have shortened the list.
    std::size_t const place = std::min<std::size_t>(index, m_children.size());
    m_children.insert(m_children.begin() + static_cast<std::ptrdiff_t>(place),
                      details.managedEntity());
    change.inserted(place);
}

void ManagedGroupEntity::removeChild(StrongRef<ManagedEntity> const & child) {
    auto const found = std::find(m_children.begin(), m_children.end(), child);
    if (found == m_children.end()) return;
    auto const index = found - m_children.begin();
    Details details(child, Details::ChildRemoved, Details::c_noIndex);
    ListChange change(this, &m_children, DataChange::ChangeChildren, &details);
    auto const place = findAgain(m_children, details.managedEntity(), index);
    if (place == m_children.end()) return;
    change.erasing(static_cast<std::size_t>(place - m_children.begin()));
    m_children.erase(place);
}

IScriptableObject * ManagedGroupEntity::getChildObject(Onk const & onk, ObjectPath const &) const {
    int const index = onk.repAsInt();
    if (index < 0 || static_cast<std::size_t>(index) >= m_children.size()) return nullptr;
    return query<IScriptableObject>(m_children[static_cast<std::size_t>(index)].get());
}

void ManagedGroupEntity::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                                     DataChange * details) {
    if (DataChange::test(transact, DataChange::TransactReplay))
        m_pTransactDetails = std::make_unique<ManagedGroupEntityTransactChangeDetails>(m_children);
    ManagedEntity::onPreChange(transact, type, details);
}

void ManagedGroupEntity::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                                      DataChange * details) {
    // Lasts until everybody has been told, even if one of them ends this group meanwhile.
    std::unique_ptr<ManagedGroupEntityTransactChangeDetails> own;
    if (DataChange::test(transact, DataChange::TransactReplay)) own.swap(m_pTransactDetails);
    if (own) {
        own->calculateChildrenDiff(m_children);
        if (details)
            details->addDataChange(own.release(), true);
        else
            details = own.get();
    }
    ManagedEntity::onPostChange(transact, type, details);
}

// The list is given up as a whole first, so that an observer of the end of a child meets a
// group without children, and each is let go at the same cost.
void ManagedGroupEntity::onPreDeletion(DataChange::ETransact transact) {
    while (!m_children.empty())
        for (StrongRef<ManagedEntity> & child : std::exchange(m_children, {})) child.reset();
    Entity::onPreDeletion(transact);
}

std::wstring ManagedGroupEntity::onToString() const {
    return (debugFormat(L"ManagedGroupEntity (base %1%) children : %2%") %
            ManagedEntity::onToString() % children())
        .str();
}

} // namespace Vn::Managed
