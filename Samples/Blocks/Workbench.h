// What a document with blocks has once: three roots, each of which the adapter of the document
// shows by another of its rules.
//
//   "Blocks"              the Workbench: it owns what stands by itself.  It is no source of nodes,
//                         but a client object: its common data, the Origin, is shown.
//   "Blocks.Parts"        the LooseParts: a collection, whose elements are shown.
//   "Blocks.Assembly.ID"  each assembly that stands by itself: a source of nodes, which is shown.
//
// The adapter goes over the roots when a document is opened.  Afterwards the workbench keeps the
// graph in step; the loose parts stand in front of the origin, and the assemblies come last, as
// they do in a document that is opened.

#ifndef VN_SAMPLES_BLOCKS_WORKBENCH_H
#define VN_SAMPLES_BLOCKS_WORKBENCH_H

#include "Platform/DataModel/Asset.h"
#include "Platform/Scene/INodeSource.h"
#include "Samples/Blocks/Children.h"
#include "Samples/Blocks/Part.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/CommonBaseRootCollection.h"
#include "Server/CommonData/Managed/ICommonDataClientObject.h"

namespace Vn::Blocks {

class Assembly;

// Shows where places are counted from: three bars of 1 cm along the axes.
class Origin : public Managed::Persisted<Origin, CommonData::CommonBaseEntity, Scene::INodeSource> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Origin",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10008", 0};
    static EntityMetaType * s_metaType();
    // Without a parent: its client owns it.  Null without a segment.
    static StrongRefCreator<Origin> make(Segment * segment);

    // The bars; there is no group.
    Vrx::Graphics::ARenderNode * renderNode() const override;
    Vrx::Graphics::GroupNode * groupNode() const override { return nullptr; }

protected:
    explicit Origin(Segment * segment);
    Origin(Segment * segment, unsigned long long id);
    void onPreDelete() override;

private:
    friend class Managed::PersistedAccess;
    void initializeMemberSet(unsigned, MemberSet *) {} // none beside those of the base

    mutable StrongRef<Vrx::Graphics::ARenderNode> m_rNode;
};

// The parts that stand in no assembly, in the order in which they came out.
class LooseParts : public Managed::Persisted<LooseParts, CommonData::CommonBaseRootCollection> {
public:
    static constexpr char c_rootId[] = "Blocks.Parts";
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::LooseParts",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10009", 0};
    static EntityMetaType * s_metaType();
    // An empty collection, which takes the root key.  Null without a segment.
    static StrongRefCreator<LooseParts> make(Segment * segment);

    // A part comes to stand in no assembly, or no longer does.
    void add(Part & part);
    void remove(Part & part);

    // Events tell of parts wherever they stand, so the collection doesn't go by them.
    void postCreate(EntityEvent *) override {}
    void preDelete(EntityEvent *) override {}

protected:
    explicit LooseParts(Segment * segment);
    LooseParts(Segment * segment, unsigned long long id);
    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;

private:
    friend class Managed::PersistedAccess;
    void initializeMemberSet(unsigned, MemberSet *) {} // none beside those of the base
    std::vector<StrongRef<Entity>> elements();

    std::vector<StrongRef<Entity>> m_before; // while a replay changes the list
};

// Owns the items that stand in no assembly.
class Workbench : public Managed::Persisted<Workbench, CommonData::CommonBaseGroupEntity,
                                            CommonData::ICommonDataClientObjectHelper> {
public:
    static constexpr char c_rootId[] = "Blocks";
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Workbench",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D1000A", 0};
    static EntityMetaType * s_metaType();

    // That of a document; null if it has none.
    static StrongRef<Workbench> find(Asset const & asset);
    // The same, and makes it with the collection and the origin if there is none.  That is a change
    // of the document, and needs a transaction.  Null if something else has one of the root keys.
    static StrongRef<Workbench> make(Asset & asset);

protected:
    Workbench(Segment * segment, StrongRef<LooseParts> const & loose);
    Workbench(Segment * segment, unsigned long long id);
    void onPostCreation(DataChange::ETransact transact) override;
    void onPreDeletion(DataChange::ETransact transact) override;
    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    void followList(ChildrenChange const & change);
    void show(ChildrenChange const & change);
    void showAll();

    PassiveRef<LooseParts> m_rLooseParts;
    Children m_childrenBefore; // while a replay changes them
};

} // namespace Vn::Blocks

#endif
