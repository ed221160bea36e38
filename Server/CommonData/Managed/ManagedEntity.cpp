#include "Server/CommonData/Managed/ManagedEntity.h"

#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/Scene/INodeSource.h"
#include "Server/CommonData/Components/ComponentChangeSummarizer.h"
#include "Server/CommonData/Components/IComponentObject.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::Managed {

namespace {

// The kinds of changes that components hear of, before and after.  A structural change has no bits.
constexpr unsigned c_preChangeMask = 0x3F;
constexpr unsigned c_postChangeMask = 0x3F;

// A new summarizer in the bracket that is open on `entity`, which takes it over; null if the change
// isn't to be summarized or if there is one already.
CommonData::ComponentChangeSummarizer * addSummarizer(Entity & entity,
                                                      DataChange::ETransact transact,
                                                      DataChange::EChangeType type, unsigned mask) {
    if (!(type & mask) || DataChange::test(transact, DataChange::TransactUnsummarized))
        return nullptr;
    auto * const object = query<CommonData::IComponentObject>(&entity);
    if (!object) return nullptr;
    EntityChange * const bracket = entity.outerChange();
    if (!bracket || bracket->findSummarizer(CommonData::ComponentChangeSummarizer::interfaceId()))
        return nullptr;
    auto * const summarizer = new CommonData::ComponentChangeSummarizer(object);
    bracket->add(summarizer);
    return summarizer;
}

// Whether parents lead in a circle, to no group.
bool parentsLeadInCircle(ManagedEntity const & entity) {
    StrongRef<Entity> walk = entity.parent();
    for (std::size_t steps = walk ? walk->asset()->entities() : 0; walk; --steps) {
        if (query<ManagedGroupEntity>(walk.get())) return false;
        if (steps == 0) return true;
        auto const * const managed = query<ManagedEntity>(walk.get());
        walk = managed ? managed->parent() : nullptr;
    }
    return false;
}

} // namespace

ManagedEntity::ManagedEntity(PassiveRef<Entity> const & parent)
    : Persisted(parent->segment()), m_rParent(parent) {
    initializeMemberSetIfNeeded();
}

ManagedEntity::ManagedEntity(Segment * segment) : Persisted(segment) {
    initializeMemberSetIfNeeded();
}

ManagedEntity::ManagedEntity(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

ManagedEntity::~ManagedEntity() = default;

StrongRefCreator<ManagedEntity> ManagedEntity::make(PassiveRef<Entity> const & parent) {
    return create(parent);
}

StrongRefCreator<ManagedEntity> ManagedEntity::make(Segment * segment) { return create(segment); }

void ManagedEntity::initializeMemberSet(unsigned, MemberSet * set) {
    addMember(set, "rParent", m_rParent, PassiveRefMetaType::get())->set(Member::OptionParent);
}

StrongRef<ManagedGroupEntity> ManagedEntity::managedParent() const {
    StrongRef<Entity> const up = parent();
    return StrongRef<ManagedGroupEntity>(query<ManagedGroupEntity>(up.get()));
}

void ManagedEntity::parent(StrongRef<Entity> const & parent) {
    if (parent && !canReferTo(*parent)) return;
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeStructural,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_rParent = parent;
}

void ManagedEntity::nullParent() {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeStructural,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_rParent.reset();
}

void ManagedEntity::addToParent() {
    StrongRef<ManagedGroupEntity> const group = managedParent();
    if (!group) return;
    unsigned const index = insertionIndex();
    StrongRef<ManagedEntity> const self(this);
    if (index == c_atEnd)
        group->addChild(self);
    else
        group->insertChild(self, index);
}

unsigned ManagedEntity::insertionIndex() const { return c_atEnd; }

void ManagedEntity::onPostCreation(DataChange::ETransact transact) {
    Entity::onPostCreation(transact);
    if (!DataChange::test(transact, DataChange::TransactReplay)) addToParent();
}

void ManagedEntity::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                                DataChange * details) {
    Entity::onPreChange(transact, type, details);
    if (auto * const added = addSummarizer(*this, transact, type, c_preChangeMask))
        added->preChange(type, outerChange()->timing());
}

// A summarizer that comes here for the first time has seen no change begin, and isn't told of it.
void ManagedEntity::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                                 DataChange * details) {
    Entity::onPostChange(transact, type, details);
    addSummarizer(*this, transact, type, c_postChangeMask);
}

void ManagedEntity::getOnk(Onk & onk) const {
    StrongRef<ManagedGroupEntity> const group = managedParent();
    if (!group) return;
    for (unsigned i = 0; i < group->children(); ++i) {
        if (!(group->child(i) == this)) continue;
        onk.strName(L"CmnData");
        onk.rep(static_cast<int>(i));
        return;
    }
}

IScriptableObject * ManagedEntity::getChildObject(Onk const & onk, ObjectPath const & path) const {
    if (parentsLeadInCircle(*this)) return nullptr;
    StrongRef<Entity> const up = parent();
    auto const * const scriptable = query<IScriptableObject>(up.get());
    return scriptable ? scriptable->getChildObject(onk, path) : nullptr;
}

Vrx::Graphics::GroupNode * ManagedEntity::_parentGroupNode() const {
    StrongRef<Entity> walk = parent();
    // Parents that lead in a circle end where there are no more entities.
    for (std::size_t steps = walk ? walk->asset()->entities() : 0; walk && steps; --steps) {
        if (auto const * const source = query<Scene::INodeSource>(walk.get()))
            return source->groupNode();
        auto const * const managed = query<ManagedEntity>(walk.get());
        walk = managed ? managed->parent() : nullptr;
    }
    return nullptr;
}

std::wstring ManagedEntity::onToString() const {
    return (debugFormat(L"ManagedEntity (base %1%) : HasParent: %2%") % Entity::onToString() %
            static_cast<bool>(m_rParent))
        .str();
}

} // namespace Vn::Managed
