#include "Samples/Blocks/Workbench.h"

#include <unordered_set>
#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Scene/NodeChange.h"
#include "Platform/Scene/SceneAssetAdapter.h"
#include "Samples/Blocks/Assembly.h"

namespace Vn::Blocks {

using Managed::ManagedEntity;
using Scene::NodeChange;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;

namespace {

// The root of the graph of a document; null while it isn't shown.
GroupNode * sceneOf(Entity const & entity) {
    Asset const * const asset = entity.asset();
    auto const * const adapter =
        asset ? query<Scene::SceneAssetAdapter>(asset->adapter()) : nullptr;
    return adapter ? adapter->scene() : nullptr;
}

// The node of the document's origin, in front of which the loose parts stand; null if there is
// none.
ARenderNode * originNode(Entity const & entity) {
    StrongRef<Workbench> const bench = Workbench::find(*entity.asset());
    auto const * const origin = bench ? query<Origin>(bench->commonData()) : nullptr;
    return origin ? origin->renderNode() : nullptr;
}

void showLoose(Entity const & collection, Entity & part) {
    GroupNode * const scene = sceneOf(collection);
    auto const * const source = query<Scene::INodeSource>(&part);
    if (!scene || !source) return;
    NodeChange change(scene, false);
    change.insertChild(source->renderNode(), originNode(collection));
}

void hide(Entity const & document, Entity & item) {
    GroupNode * const scene = sceneOf(document);
    auto const * const source = query<Scene::INodeSource>(&item);
    if (!scene || !source) return;
    NodeChange change(scene, false);
    change.removeChild(source->renderNode());
}

} // namespace

Origin::Origin(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
Origin::Origin(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}
StrongRefCreator<Origin> Origin::make(Segment * segment) { return create(segment); }

ARenderNode * Origin::renderNode() const {
    if (m_rNode || !isAlive()) return m_rNode.get();
    NodeChange change;
    m_rNode =
        StrongRef<ARenderNode>(change.createLODGeometryNode(const_cast<Origin *>(this), true));
    change.geometry(axesMesh(1, 0.04).get(), Vrx::Graphics::LevelAll);
    change.colorEffect(Color(0.3F, 0.3F, 0.3F), false, 0);
    return m_rNode.get();
}

void Origin::onPreDelete() {
    CommonBaseEntity::onPreDelete();
    hide(*this, *this);
    m_rNode.reset();
}

LooseParts::LooseParts(Segment * segment) : Persisted(segment, c_rootId, Part::s_metaType()) {
    initializeMemberSetIfNeeded();
}
LooseParts::LooseParts(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}
StrongRefCreator<LooseParts> LooseParts::make(Segment * segment) { return create(segment); }

void LooseParts::add(Part & part) {
    addRootElement(StrongRef<Entity>(&part));
    showLoose(*this, part);
}

void LooseParts::remove(Part & part) {
    removeRootElement(StrongRef<Entity>(&part));
    hide(*this, part);
}

std::vector<StrongRef<Entity>> LooseParts::elements() {
    std::vector<StrongRef<Entity>> all;
    all.reserve(rootElements());
    for (unsigned i = 0; i < rootElements(); ++i)
        if (StrongRef<Entity> element = rootElement(i)) all.push_back(std::move(element));
    return all;
}

void LooseParts::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                             DataChange * details) {
    if (DataChange::test(transact, DataChange::TransactReplay)) m_before = elements();
    CommonBaseRootCollection::onPreChange(transact, type, details);
}

void LooseParts::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                              DataChange * details) {
    CommonBaseRootCollection::onPostChange(transact, type, details);
    if (!DataChange::test(transact, DataChange::TransactReplay)) return;
    std::vector<StrongRef<Entity>> const before = std::exchange(m_before, {});
    std::vector<StrongRef<Entity>> const now = elements();
    if (!sceneOf(*this) || before == now) return;
    std::unordered_set<Entity const *> listed;
    for (StrongRef<Entity> const & element : now) listed.insert(element.get());
    NodeChange all;
    for (StrongRef<Entity> const & element : before)
        if (!listed.count(element.get())) hide(*this, *element);
    for (StrongRef<Entity> const & element : now) showLoose(*this, *element);
}

Workbench::Workbench(Segment * segment, StrongRef<LooseParts> const & loose)
    : Persisted(segment), m_rLooseParts(loose) {
    initializeMemberSetIfNeeded();
}
Workbench::Workbench(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

void Workbench::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "rCommonData", m_rCommonData);
    Managed::addMember(set, "rOwnedCommonData", m_rOwnedCommonData);
    Managed::addMember(set, "rLooseParts", m_rLooseParts);
}

StrongRef<Workbench> Workbench::find(Asset const & asset) {
    Segment const * const design = asset.segment(SegmentType::DesignSegment);
    StrongRef<Entity> const root = design->rootEntity(c_rootId);
    return StrongRef<Workbench>(query<Workbench>(root.get()));
}

StrongRef<Workbench> Workbench::make(Asset & asset) {
    if (StrongRef<Workbench> bench = find(asset)) return bench;
    Segment * const design = asset.segment(SegmentType::DesignSegment);
    if (design->rootEntity(c_rootId) || design->rootEntity(LooseParts::c_rootId)) return nullptr;
    StrongRef<LooseParts> const loose = LooseParts::make(design);
    StrongRef<Workbench> const bench = create(design, loose);
    design->addRoot(bench, c_rootId);
    StrongRef<Origin> const origin = Origin::make(design);
    bench->commonData(query<CommonData::ICommonData>(origin.get()));
    bench->showAll();
    return bench;
}

// An undo takes the workbench away with all that it has, and a redo brings it back so.
void Workbench::onPostCreation(DataChange::ETransact transact) {
    CommonBaseGroupEntity::onPostCreation(transact);
    if (DataChange::test(transact, DataChange::TransactReplay)) showAll();
}

void Workbench::showAll() {
    GroupNode * const scene = sceneOf(*this);
    if (!scene) return;
    NodeChange change(scene, false);
    StrongRef<LooseParts> const loose = m_rLooseParts.lock();
    for (unsigned i = 0; loose && i < loose->rootElements(); ++i)
        if (auto const * const source = query<Scene::INodeSource>(loose->rootElement(i).get()))
            change.addChild(source->renderNode());
    if (auto const * const origin = query<Origin>(commonData()))
        change.addChild(origin->renderNode());
    for (StrongRef<ManagedEntity> const & child : childrenVector())
        if (auto const * const assembly = query<Assembly>(child.get()))
            change.addChild(assembly->renderNode());
}

void Workbench::onPreDeletion(DataChange::ETransact transact) {
    CommonBaseGroupEntity::onPreDeletion(transact);
    ICommonDataClientObjectHelper::onPreDeletion(transact);
}

void Workbench::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                            DataChange * details) {
    if (DataChange::test(transact, DataChange::TransactReplay)) m_childrenBefore = childrenVector();
    CommonBaseGroupEntity::onPreChange(transact, type, details);
}

void Workbench::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                             DataChange * details) {
    CommonBaseGroupEntity::onPostChange(transact, type, details);
    if (DataChange::test(transact, DataChange::TransactReplay)) {
        Children const before = std::exchange(m_childrenBefore, {});
        show(ChildrenChange::replayed(*this, before));
    } else {
        ChildrenChange const change = ChildrenChange::direct(*this, details);
        followList(change);
        show(change);
    }
}

// The roots and the collection follow the list.  A replay restores them by itself.
void Workbench::followList(ChildrenChange const & change) {
    Segment & design = *segment();
    StrongRef<LooseParts> const loose = m_rLooseParts.lock();
    for (StrongRef<ManagedEntity> const & child : change.gone) {
        if (auto * const assembly = query<Assembly>(child.get()))
            design.addRoot(nullptr, assembly->rootKey());
        else if (auto * const part = query<Part>(child.get()); part && loose)
            loose->remove(*part);
    }
    if (auto * const part = query<Part>(change.listed.get()); part && loose) loose->add(*part);
    // The order of the assemblies is that of their roots.
    for (StrongRef<ManagedEntity> const & child : change.came) {
        auto * const assembly = query<Assembly>(child.get());
        if (!assembly) continue;
        if (change.isWhole) design.addRoot(nullptr, assembly->rootKey());
        design.addRoot(StrongRef<Entity>(assembly), assembly->rootKey());
    }
}

// The nodes of the assemblies.
void Workbench::show(ChildrenChange const & change) {
    GroupNode * const scene = sceneOf(*this);
    if (!scene) return;
    NodeChange group(scene, false);
    change.follow<Assembly>(group);
}

} // namespace Vn::Blocks
