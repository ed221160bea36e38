#include "Server/CommonData/Managed/ManagedRootCollection.h"

#include <string>

#include <gtest/gtest.h>

#include "Tests/CommonData/Managed/ManagedTesting.h"

namespace Vn::Managed::Testing {

namespace {

class Collection : public Persisted<Collection, ManagedRootCollection> {
public:
    static constexpr PersistedClass c_class{"Vn::Managed::Testing::Collection",
                                            "1A5B0C3E-0001-4000-8000-000000000005", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Collection> make(Segment * segment, std::string const & key,
                                             EntityMetaType * type) {
        return create(segment, key, type);
    }
    using ManagedRootCollection::addRootElement;
    using ManagedRootCollection::installMetaType;
    using ManagedRootCollection::removeRootElement;
    std::wstring entityText() const { return Entity::onToString(); }

private:
    friend PersistedAccess;
    Collection(Segment * segment, std::string const & key, EntityMetaType * type)
        : Persisted(segment, key, type) {
        initializeMemberSetIfNeeded();
    }
    Collection(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet *) {}
};

class CollectionMetaType final : public PersistedMetaType<Collection> {
} s_collection;

EntityMetaType * Collection::s_metaType() { return &s_collection; }

class ManagedRootCollectionTests : public testing::Test {
protected:
    StrongRef<Collection> collect(std::string const & key,
                                  EntityMetaType * type = Leaf::s_metaType()) const {
        return Collection::make(m_document.segment(), key, type);
    }
    StrongRef<Leaf> leaf() const { return Leaf::make(m_document.segment()); }
    std::size_t subscriptions() const {
        return m_document.segment()->entityEventSource()->subscriptions();
    }

    Document const m_document;
};

TEST_F(ManagedRootCollectionTests, ACollectionIsARootUnderItsKeyAndFollowsItsType) {
    StrongRef<Collection> const collection = collect("Leaves");
    EXPECT_EQ(m_document.segment()->rootEntity("Leaves"), collection);
    EXPECT_EQ(collection->rootId(), "Leaves");
    EXPECT_EQ(collection->rootElements(), 0U);
    StrongRef<Leaf> const first = leaf();
    StrongRef<Group> const group = Group::make(m_document.segment());
    StrongRef<Leaf> const second = leaf();
    ASSERT_EQ(collection->rootElements(), 2U);
    EXPECT_EQ(collection->rootElement(0), first);
    EXPECT_EQ(collection->rootElement(1), second);
}

TEST_F(ManagedRootCollectionTests, ItDoesNotOwnItsElements) {
    StrongRef<Collection> const collection = collect("Leaves");
    PassiveRef<Entity> const gone{leaf()};
    EXPECT_FALSE(gone);
    EXPECT_EQ(collection->rootElements(), 0U);
}

TEST_F(ManagedRootCollectionTests, OfTwoWithOneKeyTheFirstIsTheRootAndBothFollow) {
    StrongRef<Collection> const first = collect("Leaves");
    StrongRef<Collection> const second = collect("Leaves");
    EXPECT_EQ(m_document.segment()->rootEntity("Leaves"), first);
    EXPECT_EQ(second->rootId(), "Leaves");
    StrongRef<Leaf> const element = leaf();
    EXPECT_EQ(first->rootElement(0), element);
    EXPECT_EQ(second->rootElement(0), element);
}

TEST_F(ManagedRootCollectionTests, ADeletedElementLeavesTheListAndAReplayRestoresTheListItself) {
    StrongRef<Collection> const collection = collect("Leaves");
    StrongRef<Group> const group = Group::make(m_document.segment());
    auto const held = leaf();
    m_document.step([&] { makeLeaves(group, 2); });
    ASSERT_EQ(collection->rootElements(), 3U);
    auto const id = group->child(0)->id();
    m_document.step([&] { group->removeChild(group->child(0)); });
    ASSERT_EQ(collection->rootElements(), 2U);
    EXPECT_EQ(collection->rootElement(1), group->child(0));
    m_document.undo();
    ASSERT_EQ(collection->rootElements(), 3U);
    ASSERT_NE(collection->rootElement(1), nullptr);
    EXPECT_EQ(collection->rootElement(1)->id(), id);
    m_document.redo();
    ASSERT_EQ(collection->rootElements(), 2U);
    m_document.undo();
    m_document.undo();
    ASSERT_EQ(collection->rootElements(), 1U);
    EXPECT_EQ(collection->rootElement(0), held);
}

TEST_F(ManagedRootCollectionTests, AnElementThatDiedWithoutAnEventLeavesASlot) {
    StrongRef<Collection> const collection = collect("Leaves");
    StrongRef<Plain> plain = Plain::make(m_document.segment()); // of no type that is followed
    collection->addRootElement(plain);
    StrongRef<Leaf> const element = leaf();
    plain.reset();
    ASSERT_EQ(collection->rootElements(), 2U);
    EXPECT_EQ(collection->rootElement(0), nullptr);
    EXPECT_EQ(collection->rootElement(1), element);
}

TEST_F(ManagedRootCollectionTests, AnElementOfAnotherDocumentIsIgnored) {
    StrongRef<Collection> const collection = collect("Leaves");
    Document const other;
    collection->addRootElement(StrongRef<Entity>(Leaf::make(other.segment())));
    EXPECT_EQ(collection->rootElements(), 0U);
}

TEST_F(ManagedRootCollectionTests, AnElementAddedTwiceIsListedTwiceAndRemovedOnce) {
    StrongRef<Collection> const collection = collect("Leaves");
    StrongRef<Leaf> const element = leaf();
    collection->addRootElement(element);
    EXPECT_EQ(collection->rootElements(), 2U);
    collection->removeRootElement(element);
    EXPECT_EQ(collection->rootElements(), 1U);
}

TEST_F(ManagedRootCollectionTests, RemovingAnAbsentElementOpensABracketAllTheSame) {
    StrongRef<Collection> const collection = collect("Groups", Group::s_metaType());
    StrongRef<Leaf> const element = leaf();
    Recorder recorder(*collection);
    collection->removeRootElement(element);
    ASSERT_EQ(recorder.m_told.size(), 2U);
    EXPECT_EQ(recorder.m_told[0].type, DataChange::ChangeStructural);
    EXPECT_EQ(recorder.m_told[1].type, DataChange::ChangeStructural);
    EXPECT_FALSE(recorder.m_told[0].hasDetails);
    collection->unsubscribe(&recorder);
}

TEST_F(ManagedRootCollectionTests, ALoadedCollectionFollowsNothingBeforeItsTypeIsInstalled) {
    StrongRef<Entity> const loaded = s_collection.createEntity(m_document.segment(), 1000);
    auto * const collection = query<Collection>(loaded.get());
    EXPECT_EQ(subscriptions(), 0U);
    StrongRef<Leaf> const before = leaf();
    EXPECT_EQ(collection->rootElements(), 0U);
    collection->installMetaType(Leaf::s_metaType());
    EXPECT_EQ(subscriptions(), 1U);
    StrongRef<Leaf> const after = leaf();
    ASSERT_EQ(collection->rootElements(), 1U);
    EXPECT_EQ(collection->rootElement(0), after);
}

TEST_F(ManagedRootCollectionTests, ItIsSubscribedUntilItEnds) {
    m_document.segment()->addRoot(nullptr, "Leaves");
    StrongRef<Collection> collection = collect("Leaves");
    EXPECT_EQ(subscriptions(), 1U);
    m_document.segment()->addRoot(nullptr, "Leaves");
    collection.reset();
    m_document.asset().history().clear();
    EXPECT_EQ(subscriptions(), 0U);
}

TEST_F(ManagedRootCollectionTests, ACollectionThatFollowsTwoTypesIsSubscribedToNoneOnceItEnds) {
    m_document.segment()->addRoot(nullptr, "Leaves");
    StrongRef<Collection> collection = collect("Leaves");
    collection->installMetaType(ManagedGroupEntity::s_metaType());
    EXPECT_EQ(subscriptions(), 2U);
    m_document.segment()->addRoot(nullptr, "Leaves");
    collection.reset();
    m_document.asset().history().clear();
    EXPECT_EQ(subscriptions(), 0U);
}

TEST_F(ManagedRootCollectionTests, AReplayedCreationSubscribesNothingFurther) {
    m_document.step([&] { collect("Leaves"); });
    PassiveRef<Entity> const collection = m_document.segment()->rootEntity("Leaves");
    m_document.undo();
    EXPECT_FALSE(collection);
    m_document.redo();
    ASSERT_TRUE(collection);
    EXPECT_EQ(subscriptions(), 1U);
    StrongRef<Leaf> const element = leaf();
    EXPECT_EQ(query<Collection>(collection.get())->rootElement(0), element);
}

TEST_F(ManagedRootCollectionTests, ACollectionOutOfTheDocumentDoesNotFollow) {
    m_document.step([&] { collect("Leaves"); });
    StrongRef<Entity> const root = m_document.segment()->rootEntity("Leaves");
    auto * const collection = query<Collection>(root.get());
    m_document.step([&] { m_document.segment()->addRoot(nullptr, "Leaves"); });
    EXPECT_EQ(m_document.segment()->rootEntity("Leaves"), nullptr);
    m_document.undo();
    EXPECT_EQ(m_document.segment()->rootEntity("Leaves"), root);
    StrongRef<Leaf> const element = leaf();
    EXPECT_EQ(collection->rootElement(0), element);
}

TEST_F(ManagedRootCollectionTests, ADeletedCollectionKeepsTheListThatItComesBackWith) {
    StrongRef<Leaf> const before = leaf();
    m_document.step([&] { collect("Leaves"); });
    auto * const collection = query<Collection>(m_document.segment()->rootEntity("Leaves").get());
    m_document.step([&] { collection->addRootElement(before); });
    m_document.step([&] { m_document.segment()->addRoot(nullptr, "Leaves"); });
    StrongRef<Group> group;
    m_document.step([&] { makeLeaves(group = Group::make(m_document.segment()), 2); });
    m_document.undo();
    m_document.undo();
    EXPECT_EQ(m_document.segment()->rootEntity("Leaves"), collection);
    ASSERT_EQ(collection->rootElements(), 1U);
    EXPECT_EQ(collection->rootElement(0), before);
}

TEST_F(ManagedRootCollectionTests, QueryInterfaceKnowsItAndItsBase) {
    StrongRef<Collection> const collection = collect("Leaves");
    EXPECT_EQ(collection->queryInterface(ManagedRootCollection::interfaceId()), collection.get());
    EXPECT_EQ(collection->queryInterface(ManagedEntity::interfaceId()), collection.get());
    EXPECT_EQ(collection->queryInterface(ManagedGroupEntity::interfaceId()), nullptr);
}

TEST_F(ManagedRootCollectionTests, TheDebugLineHasTheKeyAndTheCountAndEndsInABlank) {
    StrongRef<Collection> const collection = collect("Leaves");
    StrongRef<Leaf> const element = leaf();
    EXPECT_EQ(collection->toString(), L"ManagedRootCollection (base ManagedEntity (base " +
                                          collection->entityText() +
                                          L") : HasParent: 0) root id Leaves : rooted objects: 1 ");
}

} // namespace

} // namespace Vn::Managed::Testing
