#include "Server/CommonData/Managed/ManagedEntity.h"

#include <string>

#include <gtest/gtest.h>

#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/ScriptableObject.h"
#include "Platform/Scene/INodeSource.h"
#include "Tests/CommonData/Managed/ManagedTesting.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Managed::Testing {

namespace {

// A group that shows itself in the render graph, with or without a node.
class SourceGroup : public Persisted<SourceGroup, ManagedGroupEntity, Scene::INodeSource> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::SourceGroup",
                                            "1A5B0C3E-0001-4000-8000-000000000004", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<SourceGroup> make(Segment * segment) { return create(segment); }

    Vrx::Graphics::ARenderNode * renderNode() const override { return m_rNode.get(); }
    Vrx::Graphics::GroupNode * groupNode() const override { return m_rNode.get(); }
    void node(StrongRef<Vrx::Graphics::GroupNode> const & node) { m_rNode = node; }

private:
    friend PersistedAccess;
    explicit SourceGroup(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }
    SourceGroup(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}

    StrongRef<Vrx::Graphics::GroupNode> m_rNode;
};

class SourceGroupMetaType final : public PersistedMetaType<SourceGroup> {
} s_sourceGroup;

EntityMetaType * SourceGroup::s_metaType() { return &s_sourceGroup; }

TEST(ManagedEntityTests, MadeWithAPlainParentItHasThatAndIsListedNowhere) {
    Document const document;
    StrongRef<Plain> const plain = Plain::make(document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(plain));
    EXPECT_EQ(leaf->parent(), plain);
    EXPECT_EQ(leaf->managedParent(), nullptr);
    EXPECT_EQ(leaf->segment(), document.segment());
    Onk onk(L"before");
    leaf->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"before"));
}

TEST(ManagedEntityTests, MadeInAGroupItIsLinkedAndListed) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(group));
    EXPECT_EQ(leaf->parent(), group);
    EXPECT_EQ(leaf->managedParent(), group);
    ASSERT_EQ(group->children(), 1U);
    EXPECT_EQ(group->child(0), leaf);
}

TEST(ManagedEntityTests, AnInsertionIndexIsThePlaceAmongTheSiblings) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    auto const leaves = makeLeaves(group, 2);
    Recorder recorder(*group);
    StrongRef<Leaf> const between = Leaf::make(PassiveRef<Entity>(group), 1);
    EXPECT_EQ(group->childrenVector(), (Children{leaves[0], between, leaves[1]}));
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    group->unsubscribe(&recorder);
}

TEST(ManagedEntityTests, AParentThatIsGoneIsNull) {
    Document const document;
    StrongRef<Plain> plain = Plain::make(document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(plain));
    plain.reset();
    EXPECT_EQ(leaf->parent(), nullptr);
    EXPECT_EQ(leaf->managedParent(), nullptr);
}

TEST(ManagedEntityTests, NullParentForgetsTheParentAndLeavesTheList) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(group));
    Recorder recorder(*leaf);
    document.step([&] { leaf->nullParent(); });
    EXPECT_EQ(leaf->parent(), nullptr);
    EXPECT_EQ(group->childrenVector(), Children{leaf});
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].what, Told::Pre);
    EXPECT_EQ(recorder.m_told[1].what, Told::Post);
    for (Told const & told : recorder.m_told) {
        EXPECT_EQ(told.type, DataChange::ChangeStructural);
        EXPECT_EQ(told.transact, DataChange::TransactDirect);
        EXPECT_FALSE(told.hasDetails);
    }
    document.undo();
    EXPECT_EQ(leaf->parent(), group);
    document.redo();
    EXPECT_EQ(leaf->parent(), nullptr);
    leaf->unsubscribe(&recorder);
}

TEST(ManagedEntityTests, GetOnkWithoutAParentLeavesTheOnkAsItWas) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    Onk onk(L"kept", 7);
    leaf->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"kept", 7));
}

TEST(ManagedEntityTests, GetOnkOfAChildThatItsParentDoesNotListLeavesTheOnkAsItWas) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    auto const leaves = makeLeaves(group, 2);
    group->removeChild(leaves[0]);
    Onk onk(L"kept", 7);
    leaves[0]->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"kept", 7));
}

TEST(ManagedEntityTests, GetOnkIsTheWordAndThePlaceAndFollowsThePlace) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    auto const leaves = makeLeaves(group, 3);
    Onk onk;
    leaves[2]->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"CmnData", 2));
    group->removeChild(leaves[0]);
    leaves[2]->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"CmnData", 1));
}

TEST(ManagedEntityTests, GetOnkOfAChildListedTwiceIsItsFirstPlace) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    auto const leaves = makeLeaves(group, 2);
    group->addChild(leaves[1]);
    Onk onk;
    leaves[1]->getOnk(onk);
    EXPECT_EQ(onk.repAsInt(), 1);
}

TEST(ManagedEntityTests, GetChildObjectOfALeafIsItsParentsAnswerForTheSameOnk) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    auto const leaves = makeLeaves(group, 3);
    ObjectPath const path;
    IScriptableObject * const found = leaves[0]->getChildObject(Onk(L"CmnData", 2), path);
    EXPECT_EQ(found, static_cast<IScriptableObject *>(leaves[2].get()));
    EXPECT_EQ(found, group->getChildObject(Onk(L"CmnData", 2), path));
    EXPECT_EQ(leaves[0]->getChildObject(Onk(L"CmnData", 3), path), nullptr);
}

TEST(ManagedEntityTests, GetChildObjectIsNullWithoutAParentAndWithOneOutsidePaths) {
    Document const document;
    StrongRef<Plain> const plain = Plain::make(document.segment());
    StrongRef<Leaf> const orphan = Leaf::make(document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(plain));
    EXPECT_EQ(orphan->getChildObject(Onk(L"CmnData", 0), ObjectPath()), nullptr);
    EXPECT_EQ(leaf->getChildObject(Onk(L"CmnData", 0), ObjectPath()), nullptr);
}

TEST(ManagedEntityTests, AReplayedCreationDoesNotAddToTheParentAndGetOnkFindsThePlace) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    document.step([&] { makeLeaves(group, 1); });
    PassiveRef<Entity> made;
    document.step([&] { made = StrongRef<Entity>(Leaf::make(PassiveRef<Entity>(group), 0)); });
    ASSERT_EQ(group->children(), 2U);
    document.undo();
    EXPECT_EQ(group->children(), 1U);
    EXPECT_FALSE(made);
    document.redo();
    EXPECT_EQ(group->children(), 2U);
    ASSERT_TRUE(made);
    Onk onk;
    query<ManagedEntity>(made.get())->getOnk(onk);
    EXPECT_EQ(onk, Onk(L"CmnData", 0));
}

TEST(ManagedEntityTests, QueryInterfaceGoesFromTheOwnIdToTheEntityAndTheScriptableObject) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    Entity * const entity = leaf.get();
    EXPECT_EQ(entity->queryInterface(ManagedEntity::interfaceId()),
              static_cast<ManagedEntity *>(leaf.get()));
    EXPECT_EQ(entity->queryInterface(Entity::interfaceId()), entity);
    EXPECT_EQ(entity->queryInterface(IScriptableObject::interfaceId()),
              static_cast<IScriptableObject *>(leaf.get()));
    EXPECT_EQ(entity->queryInterface(ManagedGroupEntity::interfaceId()), nullptr);
    EXPECT_EQ(entity->queryInterface(nullptr), nullptr);
}

TEST(ManagedEntityTests, ItsScriptableObjectForwardsToTheEntity) {
    Document const document;
    StrongRef<Leaf> const leaf = Leaf::make(document.segment());
    IScriptableObject const * const scriptable = leaf.get();
    EXPECT_EQ(scriptable->getInterfaceId(), Leaf::interfaceId());
    EXPECT_EQ(scriptable->queryInterface(Leaf::interfaceId()), leaf.get());
}

TEST(ManagedEntityTests, TheDebugLineTellsOfTheParent) {
    Document const document;
    StrongRef<Plain> plain = Plain::make(document.segment());
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(plain));
    EXPECT_EQ(leaf->toString(), L"ManagedEntity (base " + leaf->entityText() + L") : HasParent: 1");
    plain.reset();
    EXPECT_EQ(leaf->toString(), L"ManagedEntity (base " + leaf->entityText() + L") : HasParent: 0");
}

TEST(ManagedEntityTests, TheParentGroupNodeIsThatOfTheNearestNodeSource) {
    Document const document;
    StrongRef<SourceGroup> const far = SourceGroup::make(document.segment());
    StrongRef<Group> const middle = Group::make(PassiveRef<Entity>(far));
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(middle));
    StrongRef<Vrx::Graphics::GroupNode> const node = Vrx::Graphics::GroupNode::make();
    far->node(node);
    EXPECT_EQ(leaf->_parentGroupNode(), node.get());
}

TEST(ManagedEntityTests, TheParentGroupNodeStopsAtASourceWithoutANode) {
    Document const document;
    StrongRef<SourceGroup> const far = SourceGroup::make(document.segment());
    far->node(Vrx::Graphics::GroupNode::make());
    StrongRef<SourceGroup> const near = SourceGroup::make(document.segment());
    far->addChild(near);
    StrongRef<Leaf> const leaf = Leaf::make(PassiveRef<Entity>(near));
    EXPECT_EQ(leaf->_parentGroupNode(), nullptr);
}

TEST(ManagedEntityTests, TheParentGroupNodeIsNullWithoutASource) {
    Document const document;
    StrongRef<Plain> const plain = Plain::make(document.segment());
    StrongRef<Leaf> const below = Leaf::make(PassiveRef<Entity>(plain));
    StrongRef<Leaf> const orphan = Leaf::make(document.segment());
    EXPECT_EQ(below->_parentGroupNode(), nullptr);
    EXPECT_EQ(orphan->_parentGroupNode(), nullptr);
}

TEST(ManagedEntityTests, ParentsThatLeadInACircleLeadToNothing) {
    Document const document;
    StrongRef<Leaf> const one = Leaf::make(document.segment());
    StrongRef<Leaf> const two = Leaf::make(PassiveRef<Entity>(one));
    one->parent(two);
    ObjectPath const path;
    EXPECT_EQ(one->getChildObject(Onk(), path), nullptr);
    EXPECT_EQ(one->_parentGroupNode(), nullptr);
}

TEST(ManagedEntityTests, GetChildObjectThroughAChainOf100000LeavesIsTheGroupsAnswer) {
    Document const document;
    StrongRef<Group> const group = Group::make(document.segment());
    std::vector<StrongRef<Leaf>> chain = makeLeaves(group, 1);
    for (int i = 0; i < 100000; ++i) chain.push_back(Leaf::make(PassiveRef<Entity>(chain.back())));
    ObjectPath const path;
    Vn::Testing::onSmallStack([&] {
        EXPECT_EQ(chain.back()->getChildObject(Onk(L"CmnData", 0), path),
                  static_cast<IScriptableObject *>(chain.front().get()));
        EXPECT_EQ(chain.back()->getChildObject(Onk(L"CmnData", 1), path), nullptr);
        chain.front()->parent(chain.back());
        EXPECT_EQ(chain.back()->getChildObject(Onk(L"CmnData", 0), path), nullptr);
    });
    chain.front()->nullParent();
}

TEST(ManagedEntityTests, ParentsThatLeadInACircleAreNotSaved) {
    TemporaryFile const file;
    Document const document;
    StrongRef<Leaf> const one = Leaf::make(document.segment());
    StrongRef<Leaf> const two = Leaf::make(PassiveRef<Entity>(one));
    StrongRef<Leaf> const below = Leaf::make(PassiveRef<Entity>(two));
    ASSERT_TRUE(DocumentFile::saveAs(document.asset(), file.path()));
    auto const isRefused = [](Status const & status) {
        return status.code() == StatusCorrupt &&
               status.cause().find("the parents of entity ") != std::string::npos &&
               status.cause().find(" lead in a circle") != std::string::npos;
    };
    document.step([&] { one->parent(two); });
    EXPECT_TRUE(isRefused(DocumentFile::save(document.asset())));
    EXPECT_TRUE(isRefused(DocumentFile::saveAs(document.asset(), file.path())));
    document.undo();
    document.step([&] { two->parent(two); });
    EXPECT_TRUE(isRefused(DocumentFile::save(document.asset())));
    document.undo();
    document.step([&] { below->parent(one); });
    Status const saved = DocumentFile::save(document.asset());
    EXPECT_TRUE(saved.ok()) << saved.toString();
    StrongRef<Asset> asset;
    EXPECT_TRUE(DocumentFile::load(file.path(), nullptr, asset));
}

TEST(ManagedEntityTests, TheNodeSourceHasTheInterfaceIdOfItsFullName) {
    UniqueString const * const id = Scene::INodeSource::interfaceId();
    EXPECT_EQ(id, UniqueString::find("Vn::Scene::INodeSource", false));
}

} // namespace

} // namespace Vn::Managed::Testing
