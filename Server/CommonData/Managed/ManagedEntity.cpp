#include "Server/CommonData/Managed/ManagedEntity.h"

#include <atomic>

#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/Scene/INodeSource.h"
#include "Server/CommonData/Managed/Ancestors.h"
#include "Server/CommonData/Managed/ChangeSummariesInternal.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::Managed {

namespace {

// The kinds of changes that are summarized, before and after.  A structural change has no bits.
constexpr unsigned c_preChangeMask = 0x3F;
constexpr unsigned c_postChangeMask = 0x3F;

constinit std::atomic<ChangeSummaries const *> s_pSummaries{nullptr};

// A new summarizer in the bracket that is open on `entity`, which takes it over; null if the change
// isn't to be summarized or if there is one already.
EntityChangeSummarizer * addSummarizer(Entity & entity, DataChange::ETransact transact,
                                       DataChange::EChangeType type, unsigned mask) {
    if (!(type & mask) || DataChange::test(transact, DataChange::TransactUnsummarized))
        return nullptr;
    ChangeSummaries const * const summaries = s_pSummaries.load(std::memory_order_acquire);
    void * const object = summaries ? entity.queryInterface(summaries->objectId()) : nullptr;
    if (!object) return nullptr;
    EntityChange * const bracket = entity.outerChange();
    if (!bracket || bracket->findSummarizer(summaries->summarizerId())) return nullptr;
    EntityChangeSummarizer * const summarizer = summaries->make(object);
    bracket->add(summarizer);
    return summarizer;
}

// The question that leaves hand on upwards: which child of a group has this name.
struct ChildQuestion : UpwardQuestion<IScriptableObject *> {
    ChildQuestion(Onk const & wanted, ObjectPath const & way) : onk(wanted), path(way) {}

    Onk const onk;
    ObjectPath const & path;
};

thread_local constinit UpwardQuestion<IScriptableObject *> * s_pChildQuestion = nullptr;

} // namespace

void summarizeChanges(ChangeSummaries const & summaries) noexcept {
    s_pSummaries.store(&summaries, std::memory_order_release);
}

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
        onk.strName(ManagedEntityUtils::c_childName);
        onk.rep(static_cast<int>(i));
        return;
    }
}

IScriptableObject * ManagedEntity::getChildObject(Onk const & onk, ObjectPath const & path) const {
    StrongRef<Entity> const up = parent();
    if (!query<IScriptableObject>(up.get())) return nullptr;
    auto const ask = [&](ChildQuestion & question) {
        return question.ask(
            up,
            [&](Entity & ancestor) {
                return query<IScriptableObject>(&ancestor)->getChildObject(onk, path);
            },
            [](Entity & ancestor) -> StrongRef<Entity> {
                if (query<ManagedGroupEntity>(&ancestor)) return nullptr;
                StrongRef<Entity> next = ManagedEntityUtils::parentOf(ancestor);
                return query<IScriptableObject>(next.get()) ? next : nullptr;
            });
    };
    auto * const current = static_cast<ChildQuestion *>(s_pChildQuestion);
    if (current && &current->path == &path && current->onk == onk) return ask(*current);
    ChildQuestion question(onk, path);
    ChildQuestion::Scope const scope(s_pChildQuestion, question);
    return ask(question);
}

Vrx::Graphics::GroupNode * ManagedEntity::_parentGroupNode() const {
    for (AncestorWalk walk(parent()); walk; walk.goTo(ManagedEntityUtils::parentOf(*walk)))
        if (auto const * const source = query<Scene::INodeSource>(&*walk))
            return source->groupNode();
    return nullptr;
}

std::wstring ManagedEntity::onToString() const {
    return (debugFormat(L"ManagedEntity (base %1%) : HasParent: %2%") % Entity::onToString() %
            static_cast<bool>(m_rParent))
        .str();
}

} // namespace Vn::Managed
