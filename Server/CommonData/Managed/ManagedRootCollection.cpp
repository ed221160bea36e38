#include "Server/CommonData/Managed/ManagedRootCollection.h"

#include <algorithm>
#include <cstddef>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/Segment.h"

namespace Vn::Managed {

ManagedRootCollection::ManagedRootCollection(Segment * segment, std::string const & rootId,
                                             EntityMetaType * elementType)
    : Persisted(segment), m_rootId(rootId), m_pElementMetaType(elementType) {
    initializeMemberSetIfNeeded();
}

ManagedRootCollection::ManagedRootCollection(Segment * segment, unsigned long long id)
    : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

ManagedRootCollection::~ManagedRootCollection() {
    // From all types: a class that installs another one still follows that before.
    if (segment()) segment()->entityEventSource()->unsubscribe(this);
}

void ManagedRootCollection::initializeMemberSet(unsigned, MemberSet * set) {
    addVector(set, "rooted", m_rooted, PassiveRefMetaType::get());
    addMember(set, "rootId", m_rootId, IntrinsicMetaType<std::string>::get())
        ->readOnly(localizable("it is the key of the collection in the document"));
}

void ManagedRootCollection::follow() {
    segment()->entityEventSource()->subscribe(this, MetaTypeFilter::make(m_pElementMetaType));
}

void ManagedRootCollection::installMetaType(EntityMetaType * type) {
    m_pElementMetaType = type;
    follow();
}

void ManagedRootCollection::onPostCreation(DataChange::ETransact transact) {
    ManagedEntity::onPostCreation(transact);
    if (DataChange::test(transact, DataChange::TransactReplay)) return;
    if (!segment()->rootEntity(m_rootId)) segment()->addRoot(StrongRef<Entity>(this), m_rootId);
    follow();
}

// A collection that an undo has taken out of the document stays subscribed, since a redo may bring
// it back; its list is then to be as it was.
void ManagedRootCollection::postCreate(EntityEvent * event) {
    if (isAlive() && !DataChange::test(event->transact(), DataChange::TransactReplay))
        addRootElement(event->entity());
}

void ManagedRootCollection::preDelete(EntityEvent * event) {
    if (isAlive() && !DataChange::test(event->transact(), DataChange::TransactReplay))
        removeRootElement(event->entity());
}

void ManagedRootCollection::addRootElement(StrongRef<Entity> const & element) {
    if (element && !canReferTo(*element)) return;
    ListChange change(this, &m_rooted, DataChange::ChangeStructural, nullptr);
    m_rooted.emplace_back(element);
    change.inserted(m_rooted.size() - 1);
}

void ManagedRootCollection::removeRootElement(StrongRef<Entity> const & element) {
    ListChange change(this, &m_rooted, DataChange::ChangeStructural, nullptr);
    auto const found = std::find(m_rooted.begin(), m_rooted.end(), element);
    if (found == m_rooted.end()) return;
    change.erasing(static_cast<std::size_t>(found - m_rooted.begin()));
    m_rooted.erase(found);
}

std::wstring ManagedRootCollection::onToString() const {
    return (debugFormat(L"ManagedRootCollection (base %1%) root id %2% : rooted objects: %3% ") %
            ManagedEntity::onToString() % Text::fromUtf8(m_rootId) % rootElements())
        .str();
}

} // namespace Vn::Managed
